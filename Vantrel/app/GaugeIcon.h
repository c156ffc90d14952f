#pragma once

#include <QIcon>
#include <QIconEngine>

class QPainter;

namespace vantrel {

// The tray icon: a round gauge with a scale of dots and a needle at half, painted for the exact size the
// tray asks for, so it is sharp at every size and scale.
class GaugeIconEngine : public QIconEngine {
public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QIconEngine* clone() const override;
    QString key() const override;
};

QIcon gaugeIcon();

} // namespace vantrel
