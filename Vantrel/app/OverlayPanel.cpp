#include "Vantrel/app/OverlayPanel.h"

#include <QContextMenuEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRegion>
#include <QWindow>

namespace vantrel {
namespace {

// The dark "HUD" backdrop: nearly opaque, so figures stay legible over any window.
const QColor translucentBackdrop(28, 28, 30, 224);
const QColor opaqueBackdrop(30, 30, 32);
const QColor rim(255, 255, 255, 26);

} // namespace

OverlayPanel::OverlayPanel(bool translucent, QWidget* parent)
    : QWidget(parent,
              Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus),
      translucent_(translucent)
{
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_X11DoNotAcceptFocus);
    setFocusPolicy(Qt::NoFocus);
    // The translucent visual is chosen when the native window is created, so this comes first.
    setAttribute(Qt::WA_TranslucentBackground, translucent_);
    setAutoFillBackground(false);
}

void OverlayPanel::place(const QRect& frame)
{
    setGeometry(frame);
    // Qt hands a hidden window's new geometry to the native window only when it is shown again; the X
    // window follows at once, so the desktop knows where the panel is before it appears.
    if (!isVisible() && windowHandle() != nullptr) {
        windowHandle()->setGeometry(frame);
    }
}

void OverlayPanel::contextMenuEvent(QContextMenuEvent* event)
{
    emit menuRequested(event->globalPos());
}

void OverlayPanel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    if (!translucent_) {
        // The mask gives the shape; aliased corners are all an unblended window can have.
        painter.fillRect(rect(), opaqueBackdrop);
        return;
    }
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(rect(), Qt::transparent);
    painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
    const QRectF outline = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setPen(QPen(rim, 1.0));
    painter.setBrush(translucentBackdrop);
    painter.drawRoundedRect(outline, cornerRadius, cornerRadius);
}

void OverlayPanel::resizeEvent(QResizeEvent* event)
{
    if (!translucent_) {
        setMask(roundedRegion(size(), cornerRadius));
    }
    QWidget::resizeEvent(event);
}

QRegion roundedRegion(const QSize& size, double radius)
{
    QPainterPath shape;
    shape.addRoundedRect(QRectF(QPointF(0, 0), QSizeF(size)), radius, radius);
    return {shape.toFillPolygon().toPolygon()};
}

} // namespace vantrel
