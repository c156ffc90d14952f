#pragma once

#include "Vantrel/app/TrayItemRules.h"

#include <QObject>

#include <optional>

namespace vantrel {

// Which tray hosts run in the session, and news of their coming and going. One implementation per
// platform; tests use their own.
class TrayHosts : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

    // Nothing until they are known: the session bus answers only after the start.
    virtual std::optional<TrayHostFacts> facts() = 0;

signals:
    // The facts are known for the first time, or changed.
    void changed();
};

} // namespace vantrel
