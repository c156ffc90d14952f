#pragma once

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

class QDBusMessage;

namespace vantrel {

// Whether a StatusNotifierItem host runs: the IsStatusNotifierHostRegistered property of
// org.kde.StatusNotifierWatcher on the session bus, read again whenever the watcher comes, goes or
// announces a host. Every read is asynchronous: a watcher that never answers holds nothing up.
class StatusNotifierHost : public QObject {
    Q_OBJECT

public:
    explicit StatusNotifierHost(QDBusConnection bus, QObject* parent = nullptr);

    // Whether the first read has been answered (or failed).
    bool known() const { return known_; }
    bool registered() const { return registered_; }

signals:
    // The first read was answered, or the answer changed.
    void changed();

private:
    Q_SLOT void read();
    void answered(const QDBusMessage& answer, unsigned generation);

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    unsigned generation_ = 0; // of the newest read: the answer to an older one is stale
    bool known_ = false;
    bool registered_ = false;
};

} // namespace vantrel
