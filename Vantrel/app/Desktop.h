#pragma once

#include "Vantrel/app/FrontmostReach.h"
#include "Vantrel/app/FrontmostWindow.h"

#include <QObject>

#include <optional>

class QWidget;

namespace vantrel {

// What the application needs from the desktop beyond Qt: the window in front and news of its change,
// whether a compositor blends translucent windows, and a panel that stays on every workspace. One
// implementation per kind of desktop; tests use their own.
class Desktop : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // The window that has the focus now; nothing when no window has it.
    virtual std::optional<FrontmostWindow> frontmostWindow() = 0;
    // Whether the desktop can tell the window in front at all: some Wayland sessions cannot, or only later.
    virtual FrontmostReach frontmostReach() { return {}; }
    virtual bool hasCompositor() = 0;
    // Around QWidget::show() of the panel: properties a window manager reads when it maps the window,
    // then the same requests for one that is already managed.
    virtual void prepareToShow(QWidget& window) = 0;
    virtual void didShow(QWidget& window) = 0;

signals:
    // The active window changed (a short spell of no active window between two switches is left out).
    void frontmostChanged();
    void frontmostReachChanged();
};

} // namespace vantrel
