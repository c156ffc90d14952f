#include "Vantrel/app/StatusItem.h"

#include "Vantrel/app/PlatformWording.h"
#include "Vantrel/app/StatusIcon.h"

#include <QCursor>

namespace vantrel {

StatusItem::StatusItem(QObject* parent) : QSystemTrayIcon(statusItemIcon(), parent)
{
    setToolTip(QString::fromUtf8(platformWording.statusItemToolTip));
    setContextMenu(&menu_);
    connect(this, &QSystemTrayIcon::activated, this, [this](ActivationReason reason) {
        if (reason == Trigger) {
            menu_.popup(QCursor::pos());
        }
    });
}

} // namespace vantrel
