#include "Vantrel/app/StatusItem.h"

#include "Vantrel/app/GaugeIcon.h"
#include "Vantrel/app/PlatformWording.h"

#include <QCursor>

namespace vantrel {

StatusItem::StatusItem(QObject* parent) : QSystemTrayIcon(gaugeIcon(), parent)
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
