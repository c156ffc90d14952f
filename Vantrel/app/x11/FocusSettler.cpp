#include "Vantrel/app/x11/FocusSettler.h"

namespace vantrel {

FocusSettler::FocusSettler(int graceMs, QObject* parent) : QObject(parent)
{
    noWindowTimer_.setSingleShot(true);
    noWindowTimer_.setInterval(graceMs);
    connect(&noWindowTimer_, &QTimer::timeout, this, &FocusSettler::settled);
}

void FocusSettler::activeWindowChanged(bool noWindow)
{
    if (noWindow) {
        // A timer already running keeps its deadline: a burst of empty notices waits one grace period.
        if (!noWindowTimer_.isActive()) {
            noWindowTimer_.start();
        }
        return;
    }
    noWindowTimer_.stop();
    emit settled();
}

} // namespace vantrel
