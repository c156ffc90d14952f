#pragma once

#include <QObject>
#include <QTimer>

namespace vantrel {

// Window managers clear the active window for a moment between two switches. Reporting that moment would
// hide the panel and show it again at once, a flicker; so "no active window" is reported only once it
// has lasted the grace period, and a real window arriving in the meantime cancels it.
class FocusSettler : public QObject {
    Q_OBJECT

public:
    static constexpr int defaultGraceMs = 250;

    explicit FocusSettler(int graceMs = defaultGraceMs, QObject* parent = nullptr);

    // One change of the active window, as the desktop announced it.
    void activeWindowChanged(bool noWindow);

signals:
    void settled();

private:
    QTimer noWindowTimer_;
};

} // namespace vantrel
