#pragma once

#include <QWidget>

namespace vantrel::ui {

// A small on/off switch drawn as a dark pill. It never takes keyboard focus: the overlay is used with
// the mouse and through assistive technology, whose press and toggle actions flip it.
class MiniSwitch : public QWidget {
    Q_OBJECT

public:
    enum class State { Off, On, Mixed };

    explicit MiniSwitch(QWidget* parent = nullptr);

    State state() const { return state_; }
    // Programmatic change: repaints, notifies assistive technology, does not emit activated().
    void setState(State state);

    // What a click does: Off becomes On, On becomes Off, Mixed becomes On; then activated() is emitted.
    void performClick();

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    // The user flipped the switch (mouse or accessibility action); state() is already the new state.
    void activated();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    State state_ = State::Off;
    bool pressed_ = false;
};

} // namespace vantrel::ui
