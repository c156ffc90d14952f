#include "Vantrel/ui/MiniSwitch.h"

#include "Vantrel/ui/Accessibility.h"

#include <QAccessible>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace vantrel::ui {
namespace {

// The mini control size of the dark appearance, in logical pixels.
constexpr int switchWidth = 26;
constexpr int switchHeight = 15;
constexpr double knobInset = 1.5;
constexpr double disabledOpacity = 0.5;

const QColor& onTrackColor()
{
    static const QColor color = QColor::fromRgb(10, 132, 255); // the dark appearance's accent blue
    return color;
}

const QColor& offTrackColor()
{
    static const QColor color = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.2F);
    return color;
}

const QColor& mixedTrackColor()
{
    static const QColor color = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.35F);
    return color;
}

const QColor& knobColor()
{
    static const QColor color = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.95F);
    return color;
}

} // namespace

MiniSwitch::MiniSwitch(QWidget* parent) : QWidget(parent)
{
    installAccessibleFactory();
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void MiniSwitch::setState(State state)
{
    if (state == state_) {
        return;
    }
    state_ = state;
    update();
    QAccessible::State changed;
    changed.checked = true;
    changed.checkStateMixed = true;
    QAccessibleStateChangeEvent event(this, changed);
    QAccessible::updateAccessibility(&event);
}

void MiniSwitch::performClick()
{
    setState(state_ == State::On ? State::Off : State::On);
    emit activated();
}

QSize MiniSwitch::sizeHint() const
{
    return {switchWidth, switchHeight};
}

QSize MiniSwitch::minimumSizeHint() const
{
    return sizeHint();
}

void MiniSwitch::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (!isEnabled()) {
        painter.setOpacity(disabledOpacity);
    }

    // Drawn at its own size, at the leading edge, even when a layout makes the widget larger.
    const QRectF pill = QRectF(0.0, (height() - switchHeight) / 2.0, switchWidth, switchHeight)
                            .intersected(QRectF(rect()))
                            .adjusted(0.5, 0.5, -0.5, -0.5);
    const double radius = pill.height() / 2.0;
    const QColor& track = state_ == State::On      ? onTrackColor()
                          : state_ == State::Mixed ? mixedTrackColor()
                                                   : offTrackColor();
    QPainterPath trackPath;
    trackPath.addRoundedRect(pill, radius, radius);
    painter.fillPath(trackPath, track);

    const double knobDiameter = pill.height() - 2.0 * knobInset;
    const double leftX = pill.left() + knobInset;
    const double rightX = pill.right() - knobInset - knobDiameter;
    const double knobX = state_ == State::On      ? rightX
                         : state_ == State::Mixed ? (leftX + rightX) / 2.0
                                                  : leftX;
    const QRectF knob(knobX, pill.top() + knobInset, knobDiameter, knobDiameter);
    painter.setBrush(pressed_ ? knobColor().darker(115) : knobColor());
    painter.drawEllipse(knob);
}

void MiniSwitch::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    pressed_ = true;
    update();
}

void MiniSwitch::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !pressed_) {
        QWidget::mouseReleaseEvent(event);
        return;
    }
    pressed_ = false;
    update();
    // Like a button: the click counts only when released over the switch.
    if (rect().contains(event->position().toPoint())) {
        performClick();
    }
}

} // namespace vantrel::ui
