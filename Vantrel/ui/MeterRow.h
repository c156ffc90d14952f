#pragma once

#include "Vantrel/ui/Palette.h"

#include <QColor>
#include <QString>
#include <QWidget>

#include <optional>

class QLabel;

namespace vantrel::ui {

class MiniSwitch;
class PastelBar;

// One labelled figure: caption, flexible space, right-aligned number, optional switch; the bar below.
class MeterRow : public QWidget {
    Q_OBJECT

public:
    static constexpr double dimmedAlpha = 0.45;

    // remaining: true when the number is a remaining share (warn when low), false for a load (warn when
    // high). compact: the 9-pixel fonts of the per-core cells.
    explicit MeterRow(const QString& label, bool remaining, const QColor& tint = Palette::cpu(),
                      bool compact = false, QWidget* parent = nullptr);

    QLabel* label() const { return label_; }
    QLabel* value() const { return value_; }
    PastelBar* progress() const { return progress_; }
    MiniSwitch* coreSwitch() const { return coreSwitch_; }

    bool remaining() const { return remaining_; }
    void setRemaining(bool remaining) { remaining_ = remaining; }

    using QWidget::update;
    // Shows one reading; an absent or non-finite value shows "—" with a dimmed empty bar.
    void update(std::optional<double> value, const std::optional<QString>& tooltip);

private:
    QLabel* label_;
    QLabel* value_;
    PastelBar* progress_;
    MiniSwitch* coreSwitch_;
    bool remaining_ = false;
};

} // namespace vantrel::ui
