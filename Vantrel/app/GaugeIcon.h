#pragma once

#include <QIcon>
#include <QIconEngine>

class QPainter;

namespace vantrel {

// How the gauge is drawn: light strokes on the panel's dark face, for trays that show an icon as it is
// drawn; or black strokes on nothing, a template image that the menu bar tints for its own appearance
// (macOS).
enum class GaugeStyle { OnDarkFace, Template };

// The tray icon: a round gauge with a scale of dots and a needle at half, painted for the exact size the
// tray asks for, so it is sharp at every size and scale.
class GaugeIconEngine : public QIconEngine {
public:
    explicit GaugeIconEngine(GaugeStyle style = GaugeStyle::OnDarkFace) : style_(style) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QIconEngine* clone() const override;
    QString key() const override;

private:
    GaugeStyle style_;
};

QIcon gaugeIcon();
// The gauge as a template image: the strokes alone, in an icon marked as a mask.
QIcon gaugeTemplateIcon();

} // namespace vantrel
