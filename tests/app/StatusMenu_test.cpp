#include "Vantrel/app/OverlayPanel.h"
#include "Vantrel/app/PlatformWording.h"
#include "Vantrel/app/StatusItem.h"
#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeySequence>
#include <QLabel>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollArea>

#include "DelegateFixture.h"
#include <string>

namespace vantrel::testing {
namespace {

using ui::MiniSwitch;

class StatusMenuTest : public DelegateFixture {
protected:
    QList<QAction*> entries() { return delegate().statusItem->menu().actions(); }
    QAction* entry(int position) { return entries().at(position - 1); }
};

TEST_F(StatusMenuTest, TheItemShowsTheGaugeAndItsTip)
{
    const AppDelegate& app = withPanel();
    EXPECT_FALSE(app.statusItem->icon().isNull());
    EXPECT_EQ(app.statusItem->toolTip(), QString::fromUtf8(platformWording.statusItemToolTip));
    EXPECT_EQ(app.statusItem->contextMenu(), &app.statusItem->menu());
}

TEST_F(StatusMenuTest, TheMenuHasFiveEntriesTheFourthASeparator)
{
    withPanel();
    const QList<QAction*> actions = entries();
    ASSERT_EQ(actions.size(), 5);
    EXPECT_EQ(actions.at(0)->text(), QString::fromUtf8("Zobrazit / skrýt údaje"));
    EXPECT_EQ(actions.at(1)->text(), QString::fromUtf8("Obnovit limity"));
    EXPECT_EQ(actions.at(2)->text(), QString::fromUtf8("Zobrazovat i nad jinými aplikacemi"));
    EXPECT_TRUE(actions.at(3)->isSeparator());
    EXPECT_EQ(actions.at(4)->text(), QString::fromUtf8("Ukončit Vantrel"));
    for (const QAction* action : actions) {
        EXPECT_TRUE(action->isEnabled());
    }
}

TEST_F(StatusMenuTest, OnlyTheLastEntryHasAShortcut)
{
    withPanel();
    const QList<QAction*> actions = entries();
    for (int index = 0; index < 4; ++index) {
        EXPECT_TRUE(actions.at(index)->shortcut().isEmpty()) << index;
    }
    EXPECT_EQ(actions.at(4)->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_Q));
}

TEST_F(StatusMenuTest, TheThirdEntryStartsWithoutACheckMark)
{
    const AppDelegate& app = withPanel();
    EXPECT_TRUE(entry(3)->isCheckable());
    EXPECT_FALSE(entry(3)->isChecked());
    EXPECT_FALSE(app.pinnedEverywhere);
    EXPECT_FALSE(entry(1)->isCheckable());
}

TEST_F(StatusMenuTest, TheFirstEntryTwiceLeavesTheFiguresAsTheyWereAndThePanelInFront)
{
    const AppDelegate& app = withPanel();
    desktop.frontmost = windowOfClass("xterm");
    entry(1)->trigger();
    EXPECT_EQ(app.showSwitch->state(), MiniSwitch::State::Off);
    EXPECT_TRUE(app.body->isHidden());
    EXPECT_TRUE(app.panel->isVisible());
    entry(1)->trigger();
    EXPECT_EQ(app.showSwitch->state(), MiniSwitch::State::On);
    EXPECT_FALSE(app.body->isHidden());
    EXPECT_TRUE(app.panel->isVisible());
}

TEST_F(StatusMenuTest, TheFirstEntryTurnsAMixedSwitchOn)
{
    const AppDelegate& app = withPanel();
    app.showSwitch->setState(MiniSwitch::State::Mixed);
    entry(1)->trigger();
    EXPECT_EQ(app.showSwitch->state(), MiniSwitch::State::On);
}

TEST_F(StatusMenuTest, TheFirstEntryShowsThePanelOverAnUnlistedApplicationUntilTheNextSwitch)
{
    AppDelegate& app = delegate();
    desktop.frontmost = windowOfClass("xterm");
    app.applicationDidFinishLaunching();
    ASSERT_FALSE(app.panel->isVisible());
    entry(1)->trigger();
    EXPECT_TRUE(app.panel->isVisible());
    desktop.switchTo(windowOfClass("Firefox"));
    EXPECT_FALSE(app.panel->isVisible());
}

TEST_F(StatusMenuTest, TheThirdEntryPinsThePanelWithACheckMarkAndUnpinsIt)
{
    AppDelegate& app = withPanel();
    desktop.frontmost = windowOfClass("xterm");
    entry(3)->trigger();
    EXPECT_TRUE(app.pinnedEverywhere);
    EXPECT_TRUE(entry(3)->isChecked());
    EXPECT_TRUE(app.panel->isVisible());
    entry(3)->trigger();
    EXPECT_FALSE(app.pinnedEverywhere);
    EXPECT_FALSE(entry(3)->isChecked());
    EXPECT_FALSE(app.panel->isVisible());
}

TEST_F(StatusMenuTest, UnpinningOverACompanionKeepsThePanelUp)
{
    AppDelegate& app = withPanel();
    desktop.frontmost = windowOfClass("Codex");
    entry(3)->trigger();
    entry(3)->trigger();
    EXPECT_FALSE(entry(3)->isChecked());
    EXPECT_TRUE(app.panel->isVisible());
}

TEST_F(StatusMenuTest, TheCheckMarkAndThePinNeverDisagree)
{
    const AppDelegate& app = withPanel();
    for (int round = 0; round < 5; ++round) {
        entry(3)->trigger();
        EXPECT_EQ(entry(3)->isChecked(), app.pinnedEverywhere) << round;
    }
}

TEST_F(StatusMenuTest, RefreshStartsALimitsRun)
{
    const AppDelegate& app = withPanel();
    entry(2)->trigger();
    EXPECT_TRUE(app.isFetching);
    EXPECT_TRUE(waitUntil([&] { return !app.isFetching; }));
}

class PanelMenuTest : public DelegateFixture {
protected:
    QAction* panelEntry(int position) { return delegate().panelMenu->actions().at(position - 1); }
    QAction* trayEntry(int position) { return delegate().statusItem->menu().actions().at(position - 1); }

    // A right click on the view at this point of the screen, as Qt reports one from an X server: the
    // button goes down, the menu is asked for, the button comes up.
    static void rightClick(QWidget& view, const QPoint& onScreen)
    {
        const QPointF local = view.mapFromGlobal(QPointF(onScreen));
        QMouseEvent press(QEvent::MouseButtonPress, local, QPointF(onScreen), Qt::RightButton,
                          Qt::RightButton, Qt::NoModifier);
        QApplication::sendEvent(&view, &press);
        QContextMenuEvent request(QContextMenuEvent::Mouse, local.toPoint(), onScreen);
        QApplication::sendEvent(&view, &request);
        QMouseEvent release(QEvent::MouseButtonRelease, local, QPointF(onScreen), Qt::RightButton,
                            Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&view, &release);
    }
};

TEST_F(PanelMenuTest, ThePanelsMenuShowsTheTrayMenusOwnEntries)
{
    const AppDelegate& app = withPanel();
    ASSERT_NE(app.panelMenu, nullptr);
    EXPECT_EQ(app.panelMenu->actions(), app.statusItem->menu().actions());
    EXPECT_EQ(app.panelMenu->actions(), app.menuEntries);
    ASSERT_EQ(app.panelMenu->actions().size(), 5);
    EXPECT_EQ(panelEntry(1)->text(), QString::fromUtf8("Zobrazit / skrýt údaje"));
    EXPECT_TRUE(panelEntry(4)->isSeparator());
    EXPECT_EQ(panelEntry(5)->text(), QString::fromUtf8("Ukončit Vantrel"));
}

TEST_F(PanelMenuTest, ARightClickAnywhereOnThePanelOpensTheMenuWhereItWasClicked)
{
    const AppDelegate& app = withShownPanel();
    const QPoint onScreen(120, 140);
    const std::vector<std::pair<const char*, QWidget*>> views{
        {"the panel", app.panel.get()},
        {"the scroller's viewport", app.scroll->viewport()},
        {"a row's caption", app.cpu->label()},
        {"the switch of the figures", app.showSwitch.get()},
        {"the credit line", app.creditLabel.get()},
    };
    for (const auto& [description, view] : views) {
        rightClick(*view, onScreen);
        EXPECT_TRUE(app.panelMenu->isVisible()) << description;
        EXPECT_EQ(app.panelMenu->pos(), onScreen) << description;
        app.panelMenu->hide();
    }
}

TEST_F(PanelMenuTest, AnotherWindowComingToTheFrontClosesTheMenu)
{
    const AppDelegate& app = withShownPanel();
    rightClick(*app.panel, QPoint(120, 140));
    ASSERT_TRUE(app.panelMenu->isVisible());
    desktop.switchTo(windowOfClass("ChatGPT"));
    EXPECT_FALSE(app.panelMenu->isVisible());
    EXPECT_TRUE(app.panel->isVisible());
}

TEST_F(PanelMenuTest, ARightClickOnTheSwitchLeavesItAsItWas)
{
    const AppDelegate& app = withShownPanel();
    rightClick(*app.showSwitch, app.showSwitch->mapToGlobal(QPoint(4, 4)));
    app.panelMenu->hide();
    EXPECT_EQ(app.showSwitch->state(), MiniSwitch::State::On);
    EXPECT_FALSE(app.body->isHidden());
}

TEST_F(PanelMenuTest, PinningFromEitherMenuMarksBoth)
{
    const AppDelegate& app = withPanel();
    desktop.frontmost = windowOfClass("xterm");
    panelEntry(3)->trigger();
    EXPECT_TRUE(app.pinnedEverywhere);
    EXPECT_TRUE(app.panel->isVisible());
    EXPECT_TRUE(panelEntry(3)->isChecked());
    EXPECT_TRUE(trayEntry(3)->isChecked());
    trayEntry(3)->trigger();
    EXPECT_FALSE(app.pinnedEverywhere);
    EXPECT_FALSE(app.panel->isVisible());
    EXPECT_FALSE(panelEntry(3)->isChecked());
    EXPECT_FALSE(trayEntry(3)->isChecked());
}

TEST_F(PanelMenuTest, TheFirstEntryHidesTheFiguresAndKeepsThePanelUp)
{
    const AppDelegate& app = withShownPanel();
    panelEntry(1)->trigger();
    EXPECT_EQ(app.showSwitch->state(), MiniSwitch::State::Off);
    EXPECT_TRUE(app.body->isHidden());
    EXPECT_TRUE(app.panel->isVisible());
}

TEST_F(PanelMenuTest, RefreshFromThePanelStartsALimitsRun)
{
    const AppDelegate& app = withPanel();
    panelEntry(2)->trigger();
    EXPECT_TRUE(app.isFetching);
    EXPECT_TRUE(waitUntil([&] { return !app.isFetching; }));
}

TEST_F(PanelMenuTest, WithoutATrayHostThePanelsMenuIsThereAndPins)
{
    followTrayHosts = true;
    AppDelegate& app = delegate();
    desktop.frontmost = windowOfClass("xterm");
    app.applicationDidFinishLaunching();
    trayHosts.change({false, false});
    ASSERT_EQ(app.statusItem, nullptr);
    ASSERT_EQ(app.panelMenu->actions().size(), 5);
    panelEntry(3)->trigger();
    EXPECT_TRUE(panelEntry(3)->isChecked());
    EXPECT_TRUE(app.panel->isVisible());
}

class TrayHostsTest : public DelegateFixture {
protected:
    TrayHostsTest()
    {
        followTrayHosts = true;
        delegate().applicationDidFinishLaunching();
    }

    // What the delegate tells the user as the hosts change so.
    std::string saidAfter(TrayHostFacts hosts)
    {
        notices.clear();
        trayHosts.change(hosts);
        std::string said;
        for (const std::string& line : notices) {
            said += line + "\n";
        }
        return said;
    }

    static constexpr TrayHostFacts none{false, false};
    static constexpr TrayHostFacts statusNotifier{true, false};
    static constexpr TrayHostFacts xembed{false, true};
    static inline const std::string noHostLine = std::string(trayNoticeLine(TrayNotice::noHost)) + "\n";
    static inline const std::string arrivalLine = std::string(trayNoticeLine(TrayNotice::hostArrived)) + "\n";
};

TEST_F(TrayHostsTest, UntilTheHostsAreKnownNoItemIsMadeAndNothingSaid)
{
    delegate().trayHostsChanged();
    EXPECT_TRUE(notices.empty());
    EXPECT_EQ(delegate().statusItem, nullptr);
    EXPECT_NE(delegate().panel, nullptr);
}

TEST_F(TrayHostsTest, AHostFromTheStartGetsTheItemSilently)
{
    EXPECT_EQ(saidAfter(statusNotifier), "");
    EXPECT_NE(delegate().statusItem, nullptr);
}

TEST_F(TrayHostsTest, WithoutAHostTheItemWaitsAndThatIsSaidOnce)
{
    EXPECT_EQ(saidAfter(none), noHostLine);
    EXPECT_EQ(delegate().statusItem, nullptr);
    EXPECT_EQ(saidAfter(none), "");
    EXPECT_EQ(delegate().statusItem, nullptr);
}

TEST_F(TrayHostsTest, AHostComingLaterGetsTheItemAndThatIsSaid)
{
    saidAfter(none);
    EXPECT_EQ(saidAfter(statusNotifier), arrivalLine);
    ASSERT_NE(delegate().statusItem, nullptr);
    EXPECT_EQ(delegate().statusItem->menu().actions(), delegate().menuEntries);
}

TEST_F(TrayHostsTest, TheItemIsMadeOnceAndKeepsTheKindItWasMadeFor)
{
    saidAfter(xembed);
    const StatusItem* item = delegate().statusItem.get();
    ASSERT_NE(item, nullptr);
    // An XEmbed icon never joins a StatusNotifierItem host.
    EXPECT_EQ(saidAfter(statusNotifier), noHostLine);
    EXPECT_EQ(saidAfter({true, true}), arrivalLine);
    EXPECT_EQ(delegate().statusItem.get(), item);
}

TEST_F(TrayHostsTest, AHostComingAndGoingAgainIsNotToldAgain)
{
    saidAfter(statusNotifier);
    EXPECT_EQ(saidAfter(none), noHostLine);
    EXPECT_EQ(saidAfter(statusNotifier), arrivalLine);
    EXPECT_EQ(saidAfter(none), "");
    EXPECT_EQ(saidAfter(statusNotifier), "");
}

} // namespace
} // namespace vantrel::testing
