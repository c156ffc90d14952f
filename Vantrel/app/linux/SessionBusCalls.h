#pragma once

#include <QDBusMessage>
#include <QDBusPendingCall>
#include <QString>
#include <QVariant>

#include <functional>

class QObject;

namespace vantrel {

// Calls whose answers arrive in the event loop: a peer that never answers holds nothing up.
// Runs handle with the answer, or with the error the call ended in (its timeout included), while context
// lives.
void whenAnswered(QObject* context, const QDBusPendingCall& call,
                  std::function<void(const QDBusMessage&)> handle);

// org.freedesktop.DBus.Properties.Get of one property.
QDBusMessage propertyRequest(const QString& service, const QString& path, const QString& interface,
                             const QString& property);

// The property's value in an answer to propertyRequest; nothing valid for an error or an answer of
// another type.
QVariant propertyValue(const QDBusMessage& answer);

} // namespace vantrel
