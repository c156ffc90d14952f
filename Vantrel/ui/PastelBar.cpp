#include "Vantrel/ui/PastelBar.h"

#include "Vantrel/ui/Accessibility.h"

#include <QAccessible>
#include <QPainter>
#include <QPainterPath>

namespace vantrel::ui {

double pastelBarFillWidth(double width, double value)
{
    // Written so that NaN fails both comparisons and ends at 100: a NaN shows a full bar.
    const double lower = value >= 0.0 ? value : 0.0;
    const double clamped = value < 100.0 ? lower : 100.0;
    return width * clamped / 100.0;
}

PastelBar::PastelBar(QWidget* parent) : QWidget(parent), accessibilityValue_(value_)
{
    installAccessibleFactory();
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void PastelBar::setDoubleValue(double value)
{
    value_ = value;
    update();
    setAccessibilityValue(value_);
}

void PastelBar::setTint(const QColor& tint)
{
    tint_ = tint;
}

void PastelBar::setAlphaValue(double alpha)
{
    alpha_ = alpha;
    update();
}

void PastelBar::setAccessibilityValue(const QVariant& value)
{
    accessibilityValue_ = value;
    // Sent unconditionally, as QWidget does for its name: Qt drops it when no assistive technology listens.
    QAccessibleValueChangeEvent event(this, accessibilityValue_);
    QAccessible::updateAccessibility(&event);
    emit accessibilityValueChanged(accessibilityValue_);
}

QSize PastelBar::sizeHint() const
{
    return {0, barHeight};
}

QSize PastelBar::minimumSizeHint() const
{
    return {0, barHeight};
}

void PastelBar::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (alpha_ >= 1.0) {
        paintBar(painter);
        return;
    }
    // The dimming fades the bar as one picture: where the fill covers the track, only the fill shows.
    const qreal ratio = devicePixelRatioF();
    QImage layer(size() * ratio, QImage::Format_ARGB32_Premultiplied);
    layer.setDevicePixelRatio(ratio);
    layer.fill(Qt::transparent);
    QPainter layerPainter(&layer);
    paintBar(layerPainter);
    layerPainter.end();
    painter.setOpacity(alpha_);
    painter.drawImage(QPointF(), layer);
}

void PastelBar::paintBar(QPainter& painter) const
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);

    const QRectF bounds = rect();
    QColor track = tint_;
    track.setAlphaF(static_cast<float>(trackAlpha));
    QPainterPath trackPath;
    trackPath.addRoundedRect(bounds, cornerRadius, cornerRadius);
    painter.fillPath(trackPath, track);

    const double fillWidth = pastelBarFillWidth(bounds.width(), value_);
    if (fillWidth > 0.0) {
        QPainterPath fillPath;
        fillPath.addRoundedRect(QRectF(0.0, 0.0, fillWidth, bounds.height()), cornerRadius, cornerRadius);
        painter.fillPath(fillPath, tint_);
    }
}

} // namespace vantrel::ui
