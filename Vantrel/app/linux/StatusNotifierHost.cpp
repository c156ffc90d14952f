#include "Vantrel/app/linux/StatusNotifierHost.h"

#include "Vantrel/app/linux/SessionBusCalls.h"

#include <QDBusMessage>

#include <utility>

namespace vantrel {
namespace {

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString watcherInterface = QStringLiteral("org.kde.StatusNotifierWatcher");
constexpr int answerTimeoutMs = 2000;

} // namespace

StatusNotifierHost::StatusNotifierHost(QDBusConnection bus, QObject* parent)
    : QObject(parent), bus_(std::move(bus)),
      watcher_(watcherService, bus_, QDBusServiceWatcher::WatchForOwnerChange)
{
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this, &StatusNotifierHost::read);
    // KDE's watcher also announces a host that leaves; waybar's goes with its host.
    for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus_.connect(watcherService, watcherPath, watcherInterface, QString::fromLatin1(signal), this,
                     SLOT(read()));
    }
    read();
}

void StatusNotifierHost::read()
{
    QDBusMessage get = propertyRequest(watcherService, watcherPath, watcherInterface,
                                       QStringLiteral("IsStatusNotifierHostRegistered"));
    // Asking must not start a watcher that is not running.
    get.setAutoStartService(false);
    const unsigned generation = ++generation_;
    whenAnswered(this, bus_.asyncCall(get, answerTimeoutMs),
                 [this, generation](const QDBusMessage& answer) { answered(answer, generation); });
}

void StatusNotifierHost::answered(const QDBusMessage& answer, unsigned generation)
{
    if (generation != generation_) {
        return;
    }
    // No watcher, an error or an answer of another type: no host.
    const QVariant value = propertyValue(answer);
    const bool registered = value.typeId() == QMetaType::Bool && value.toBool();
    if (known_ && registered == registered_) {
        return;
    }
    known_ = true;
    registered_ = registered;
    emit changed();
}

} // namespace vantrel
