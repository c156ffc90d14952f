#include "Vantrel/app/linux/SessionBusCalls.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <utility>

namespace vantrel {

void whenAnswered(QObject* context, const QDBusPendingCall& call,
                  std::function<void(const QDBusMessage&)> handle)
{
    auto* watcher = new QDBusPendingCallWatcher(call, context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [handle = std::move(handle)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         handle(finished->reply());
                     });
}

QDBusMessage propertyRequest(const QString& service, const QString& path, const QString& interface,
                             const QString& property)
{
    QDBusMessage request = QDBusMessage::createMethodCall(
        service, path, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"));
    request << interface << property;
    return request;
}

QVariant propertyValue(const QDBusMessage& answer)
{
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QLatin1String("v")) {
        return {};
    }
    return qdbus_cast<QDBusVariant>(answer.arguments().constFirst()).variant();
}

} // namespace vantrel
