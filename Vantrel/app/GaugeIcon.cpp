#include "Vantrel/app/GaugeIcon.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QtMath>

#include <algorithm>
#include <array>
#include <cmath>

namespace vantrel {
namespace {

// The scale runs clockwise over the upper three quarters of the dial, from lower left to lower right.
constexpr std::array<double, 7> scaleAngles{225.0, 180.0, 135.0, 90.0, 45.0, 0.0, -45.0};
constexpr double needleAngle = 90.0; // half of the scale: straight up

QPointF onCircle(QPointF centre, double radius, double degrees)
{
    const double radians = qDegreesToRadians(degrees);
    return {centre.x() + radius * std::cos(radians), centre.y() - radius * std::sin(radians)};
}

// Strokes snapped to whole pixels: thin lines stay sharp at 16 px, and grow with the icon.
double strokeFor(double side, double fraction)
{
    return std::max(1.0, std::round(side * fraction));
}

void paintGauge(QPainter& painter, const QRectF& area, const QColor& ink, const QColor& face)
{
    const double side = std::min(area.width(), area.height());
    const double ring = strokeFor(side, 1.0 / 14.0);
    const double needle = strokeFor(side, 1.0 / 11.0);
    // The needle is vertical: centred on a pixel for an odd width, between two for an even one, so its
    // edges fall on pixel boundaries.
    const double offset = static_cast<int>(needle) % 2 == 1 ? 0.5 : 0.0;
    const QPointF centre(area.x() + std::floor(area.width() / 2.0) + offset,
                         area.y() + std::floor(area.height() / 2.0) + offset);
    const double radius = side / 2.0 - ring / 2.0 - side / 32.0;
    const double dot = std::max(0.75, side / 26.0);

    QPainterPath scale;
    for (const double angle : scaleAngles) {
        scale.addEllipse(onCircle(centre, radius * 0.66, angle), dot, dot);
    }
    const QPointF tip = onCircle(centre, radius * 0.62, needleAngle);

    painter.setRenderHint(QPainter::Antialiasing);
    // A dark dial face under light strokes: the gauge reads on a dark tray and on a light one alike.
    painter.setPen(Qt::NoPen);
    painter.setBrush(face);
    painter.drawEllipse(centre, radius, radius);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(ink, ring));
    painter.drawEllipse(centre, radius, radius);
    painter.setPen(QPen(ink, needle, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(centre, tip);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    painter.drawPath(scale);
    painter.drawEllipse(centre, needle, needle);
}

} // namespace

void GaugeIconEngine::paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/)
{
    QColor ink(236, 236, 236);
    QColor face(28, 28, 30, 230); // the panel's own backdrop
    if (mode == QIcon::Disabled) {
        ink.setAlphaF(0.4F);
        face.setAlphaF(0.5F);
    }
    if (style_ == GaugeStyle::Template) {
        // A template counts only by its coverage: black strokes, and no face that would cover them.
        ink.setRgb(0, 0, 0, ink.alpha());
        face = Qt::transparent;
    }
    painter->save();
    paintGauge(*painter, QRectF(rect), ink, face);
    painter->restore();
}

QPixmap GaugeIconEngine::pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state)
{
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(0, 0), size), mode, state);
    return pixmap;
}

QIconEngine* GaugeIconEngine::clone() const
{
    return new GaugeIconEngine(*this);
}

QString GaugeIconEngine::key() const
{
    return style_ == GaugeStyle::Template ? QStringLiteral("vantrel-gauge-template")
                                          : QStringLiteral("vantrel-gauge");
}

QIcon gaugeIcon()
{
    return QIcon(new GaugeIconEngine);
}

QIcon gaugeTemplateIcon()
{
    QIcon icon(new GaugeIconEngine(GaugeStyle::Template));
    icon.setIsMask(true);
    return icon;
}

} // namespace vantrel
