#pragma once

#include "Vantrel/app/FrontmostReach.h"
#include "Vantrel/app/FrontmostWindow.h"

#include <QObject>

#include <optional>

namespace vantrel {

// One way a Wayland session tells which window is in front (a protocol, a compositor's IPC, a shell
// extension). A source that loses its connection reports nothing in front from then on.
class ToplevelSource : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // The window in front as last told; nothing when none is, or when it is not known.
    virtual std::optional<FrontmostWindow> frontmost() const = 0;
    // Whether the source can tell at all: a protocol or an IPC that connected can; a shell extension
    // only while it runs and answers.
    virtual FrontmostReach reach() const { return {}; }

signals:
    void frontmostChanged();
    void reachChanged();
    // The connection behind the source is gone for good.
    void lost();

protected:
    // After an event that may have changed the window in front.
    void announceIf(bool frontmostChangedNow)
    {
        if (frontmostChangedNow) {
            emit frontmostChanged();
        }
    }
};

} // namespace vantrel
