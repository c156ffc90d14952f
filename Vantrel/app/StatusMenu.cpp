#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/StatusItem.h"
#include "Vantrel/app/TrayHosts.h"
#include "Vantrel/ui/MiniSwitch.h"

#include <QAction>
#include <QKeySequence>
#include <QMenu>

#include <string>

namespace vantrel {

void AppDelegate::createMenuEntries()
{
    const auto entry = [this](const char* title) { return new QAction(QString::fromUtf8(title), this); };
    QAction* show = entry("Zobrazit / skrýt údaje");
    connect(show, &QAction::triggered, this, &AppDelegate::toggleFromMenu);
    QAction* refreshEntry = entry("Obnovit limity");
    connect(refreshEntry, &QAction::triggered, this, &AppDelegate::refresh);
    QAction* everywhere = entry("Zobrazovat i nad jinými aplikacemi");
    everywhere->setCheckable(true);
    connect(everywhere, &QAction::triggered, this, &AppDelegate::toggleEverywhere);
    everywhereEntry = everywhere;
    auto* separator = new QAction(this);
    separator->setSeparator(true);
    QAction* quitEntry = entry("Ukončit Vantrel");
    quitEntry->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    connect(quitEntry, &QAction::triggered, this, &AppDelegate::quit);
    menuEntries = {show, refreshEntry, everywhere, separator, quitEntry};
}

void AppDelegate::createStatusItem()
{
    statusItem = std::make_unique<StatusItem>();
    statusItem->menu().addActions(menuEntries);
    // From now on Qt follows the hosts of the item's kind by itself; without one it shows nothing and
    // says nothing.
    statusItem->show();
}

void AppDelegate::trayHostsChanged()
{
    const auto hosts = services_.trayHosts->facts();
    if (!hosts) {
        return;
    }
    if (!trayItemKind_) {
        trayItemKind_ = trayItemKindFor(*hosts);
        if (trayItemKind_) {
            createStatusItem();
        }
    }
    const bool shown = trayItemKind_ && trayItemShown(*trayItemKind_, *hosts);
    if (const auto notice = trayNotices_.observe(shown)) {
        services_.notice(std::string(trayNoticeLine(*notice)));
    }
}

// NOLINTNEXTLINE(readability-make-member-function-const): it opens the menu the delegate owns
void AppDelegate::showPanelMenu(const QPoint& position)
{
    panelMenu->popup(position);
}

void AppDelegate::toggleFromMenu()
{
    using State = ui::MiniSwitch::State;
    showSwitch->setState(showSwitch->state() == State::On ? State::Off : State::On);
    toggleShow();
    // Chosen from the menu, the panel comes up whatever is in front; the next switch of application
    // applies the usual rule again.
    orderFrontRegardless();
}

void AppDelegate::toggleEverywhere()
{
    automaticPin_.userChose();
    pinEverywhere(!pinnedEverywhere);
}

void AppDelegate::pinEverywhere(bool pinned)
{
    pinnedEverywhere = pinned;
    everywhereEntry->setChecked(pinned);
    focusChanged();
}

} // namespace vantrel
