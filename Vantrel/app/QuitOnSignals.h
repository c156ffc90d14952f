#pragma once

#include <QObject>

#include <memory>

class QSocketNotifier;

namespace vantrel {

// A termination request (SIGTERM when the session ends, SIGINT, SIGHUP) quits the event loop the way the
// menu's last entry does, so the limits script is asked to stop and nothing is left running. A second
// request while quitting ends the program at once: each handler acts once, then the default returns.
// One instance at a time, while the application exists; the default handlers come back when it goes.
class QuitOnSignals : public QObject {
    Q_OBJECT

public:
    explicit QuitOnSignals(QObject* parent = nullptr);
    ~QuitOnSignals() override;
    QuitOnSignals(const QuitOnSignals&) = delete;
    QuitOnSignals& operator=(const QuitOnSignals&) = delete;

private:
    std::unique_ptr<QSocketNotifier> notifier_;
};

} // namespace vantrel
