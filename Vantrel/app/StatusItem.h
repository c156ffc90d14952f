#pragma once

#include <QMenu>
#include <QSystemTrayIcon>

namespace vantrel {

// The tray item and its menu, which it owns. A left click opens the menu too: the item is the
// application's only handle, and has no action of its own.
class StatusItem : public QSystemTrayIcon {
    Q_OBJECT

public:
    explicit StatusItem(QObject* parent = nullptr);

    QMenu& menu() { return menu_; }

private:
    QMenu menu_;
};

} // namespace vantrel
