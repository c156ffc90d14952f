#pragma once

#include "Vantrel/ui/Palette.h"

#include <QColor>
#include <QVariant>
#include <QWidget>

class QPainter;

namespace vantrel::ui {

// A 6-pixel rounded bar: a translucent track in the tint and a fill proportional to a percentage.
// Exposed to assistive technology as a progress bar from 0 to 100.
class PastelBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int barHeight = 6;
    static constexpr double cornerRadius = 3.0;
    static constexpr double trackAlpha = 0.16;

    explicit PastelBar(QWidget* parent = nullptr);

    double doubleValue() const { return value_; }
    // Stores the value unclamped, repaints, and makes it the accessible value.
    void setDoubleValue(double value);

    const QColor& tint() const { return tint_; }
    // Deliberately does not repaint: the tint is set once, before the bar is first drawn.
    void setTint(const QColor& tint);

    // Opacity of the whole bar, track included, applied when painting (0 to 1).
    double alphaValue() const { return alpha_; }
    void setAlphaValue(double alpha);

    // The value assistive technology reads: a number, or a text such as "Nedostupné".
    const QVariant& accessibilityValue() const { return accessibilityValue_; }
    void setAccessibilityValue(const QVariant& value);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    // Sent with the accessibility event that announces a new accessible value.
    void accessibilityValueChanged(const QVariant& value);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void paintBar(QPainter& painter) const;

    double value_ = 0.0;
    QColor tint_ = Palette::cpu();
    double alpha_ = 1.0;
    QVariant accessibilityValue_;
};

// The fill width of a bar W pixels wide showing value v: W × v / 100 with v clamped to 0…100, where the
// comparisons are written so that NaN gives a full bar.
double pastelBarFillWidth(double width, double value);

} // namespace vantrel::ui
