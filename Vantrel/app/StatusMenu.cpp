#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/StatusItem.h"
#include "Vantrel/ui/MiniSwitch.h"

#include <QAction>
#include <QKeySequence>

namespace vantrel {

void AppDelegate::createStatusItem()
{
    statusItem = std::make_unique<StatusItem>();
    QMenu& menu = statusItem->menu();
    menu.addAction(QString::fromUtf8("Zobrazit / skrýt údaje"), this, &AppDelegate::toggleFromMenu);
    menu.addAction(QString::fromUtf8("Obnovit limity"), this, &AppDelegate::refresh);
    QAction* everywhere = menu.addAction(QString::fromUtf8("Zobrazovat i nad jinými aplikacemi"));
    everywhere->setCheckable(true);
    connect(everywhere, &QAction::triggered, this, [this, everywhere] { toggleEverywhere(everywhere); });
    everywhereEntry = everywhere;
    menu.addSeparator();
    QAction* quitEntry = menu.addAction(QString::fromUtf8("Ukončit Vantrel"), this, &AppDelegate::quit);
    quitEntry->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    // Without a tray host this shows nothing and says nothing; Qt embeds the item once a host appears.
    statusItem->show();
}

void AppDelegate::toggleFromMenu()
{
    using State = ui::MiniSwitch::State;
    showSwitch->setState(showSwitch->state() == State::On ? State::Off : State::On);
    toggleShow();
    // Chosen from the tray, the panel comes up whatever is in front; the next switch of application
    // applies the usual rule again.
    orderFrontRegardless();
}

void AppDelegate::toggleEverywhere(QAction* sender)
{
    automaticPin_.userChose();
    pinnedEverywhere = !pinnedEverywhere;
    sender->setChecked(pinnedEverywhere);
    focusChanged();
}

} // namespace vantrel
