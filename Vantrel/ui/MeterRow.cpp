#include "Vantrel/ui/MeterRow.h"

#include "Vantrel/ui/Accessibility.h"
#include "Vantrel/ui/Fonts.h"
#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MiniSwitch.h"
#include "Vantrel/ui/PastelBar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

#include <array>
#include <cmath>
#include <cstdio>

namespace vantrel::ui {
namespace {

constexpr int labelPixelSize = 11;
constexpr int valuePixelSize = 12;
constexpr int compactPixelSize = 9;
constexpr int columnSpacing = 5;
constexpr double remainingWarningBelow = 15.0;
constexpr double loadWarningAbove = 85.0;

const QString& absentText()
{
    static const QString text = QStringLiteral("—");
    return text;
}

// printf rounding (half to even for exact halves), which QString::number does not follow.
QString percentText(double percent)
{
    std::array<char, 32> buffer{};
    const int length = std::snprintf(buffer.data(), buffer.size(), "%.0f %%", percent);
    return QString::fromLatin1(buffer.data(), length);
}

// Every tick sets the same colour and tool tip again; changing a palette or a tool tip is not free
// (events for the widget and its children), so only a real change is applied.
void showTextColor(QLabel* label, const QColor& color)
{
    if (textColor(label) != color) {
        setTextColor(label, color);
    }
}

void showToolTip(QWidget* widget, const QString& text)
{
    if (widget->toolTip() != text) {
        widget->setToolTip(text);
    }
}

} // namespace

MeterRow::MeterRow(const QString& label, bool remaining, const QColor& tint, bool compact, QWidget* parent)
    : QWidget(parent), label_(new QLabel(this)), value_(new QLabel(absentText(), this)),
      progress_(new PastelBar(this)), coreSwitch_(new MiniSwitch(this)), remaining_(remaining)
{
    installAccessibleFactory();

    label_->setText(label);
    label_->setFont(systemFont(compact ? compactPixelSize : labelPixelSize, QFont::Medium));
    setTextColor(label_, SystemColor::secondaryLabel());

    value_->setFont(monospacedDigitSystemFont(compact ? compactPixelSize : valuePixelSize, QFont::DemiBold));
    value_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    coreSwitch_->setHidden(true);

    auto* textLine = new QHBoxLayout;
    textLine->setContentsMargins(0, 0, 0, 0);
    textLine->setSpacing(StackView::defaultSpacing);
    textLine->addWidget(label_);
    textLine->addWidget(flexibleSpace());
    textLine->addWidget(value_);
    textLine->addWidget(coreSwitch_);

    progress_->setTint(tint);
    progress_->setAccessibleName(label);

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(columnSpacing);
    column->addLayout(textLine);
    column->addWidget(progress_);
}

void MeterRow::update(std::optional<double> value, const std::optional<QString>& tooltip)
{
    if (!value || !std::isfinite(*value)) {
        value_->setText(absentText());
        progress_->setDoubleValue(0.0);
        progress_->setAlphaValue(dimmedAlpha);
        progress_->setAccessibilityValue(QStringLiteral("Nedostupné"));
        showTextColor(value_, SystemColor::secondaryLabel());
        showToolTip(this, tooltip.value_or(QStringLiteral("Údaj není dostupný.")));
        return;
    }

    double shown = std::min(*value, 100.0);
    shown = shown >= 0.0 ? shown : 0.0;
    value_->setText(percentText(shown));
    progress_->setDoubleValue(shown);
    progress_->setAlphaValue(1.0);
    const bool warning = remaining_ ? shown < remainingWarningBelow : shown > loadWarningAbove;
    showTextColor(value_, warning ? SystemColor::systemOrange() : SystemColor::label());
    showToolTip(this, tooltip.value_or(QString()));
}

} // namespace vantrel::ui
