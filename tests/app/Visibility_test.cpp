#include "Vantrel/app/OverlayPanel.h"
#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"

#include <QGuiApplication>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>

#include "DelegateFixture.h"

namespace vantrel::testing {
namespace {

using ui::MiniSwitch;

QRect workArea()
{
    return QGuiApplication::primaryScreen()->availableGeometry();
}

class VisibilityTest : public DelegateFixture {
protected:
    AppDelegate& shownPanel() { return withShownPanel(); }
};

struct FrontCase {
    const char* description;
    std::optional<FrontmostWindow> frontmost;
    bool shown;
};

class FrontmostRuleTest : public VisibilityTest, public ::testing::WithParamInterface<FrontCase> {};

FrontmostWindow ownWindow()
{
    FrontmostWindow window = windowOfProcess("", 77);
    window.ownProcess = true;
    return window;
}

TEST_P(FrontmostRuleTest, ShowsThePanelOnlyForCompanionApplications)
{
    processes[4242] = {"Codex", false, false};
    processes[4343] = {"bash", false, true};
    entryNames["codex-desktop"] = "Codex";
    entryNames["org.example.Chat"] = "ChatGPT";
    entryNames["Vantrel"] = "Vantrel Monitor";
    AppDelegate& app = withPanel();
    desktop.frontmost = GetParam().frontmost;
    app.focusChanged();
    EXPECT_EQ(app.panel->isVisible(), GetParam().shown) << GetParam().description;
}

TEST_P(FrontmostRuleTest, WhenPinnedShowsThePanelForEveryApplication)
{
    AppDelegate& app = withPanel();
    app.pinnedEverywhere = true;
    desktop.frontmost = GetParam().frontmost;
    app.focusChanged();
    EXPECT_TRUE(app.panel->isVisible()) << GetParam().description;
}

INSTANTIATE_TEST_SUITE_P(
    Applications, FrontmostRuleTest,
    ::testing::Values(FrontCase{"Codex", windowOfClass("Codex"), true},
                      FrontCase{"ChatGPT", windowOfClass("ChatGPT"), true},
                      FrontCase{"process Codex, Electron class", windowOfProcess("Electron", 4242), true},
                      FrontCase{"this program itself", ownWindow(), true},
                      FrontCase{"entry named Codex", windowOfClass("codex-desktop"), true},
                      FrontCase{"entry named ChatGPT", windowOfClass("org.example.Chat"), true},
                      FrontCase{"terminal without the Codex CLI", windowOfProcess("XTerm", 4343), false},
                      FrontCase{"a listed class whose entry names it otherwise", windowOfClass("Vantrel"),
                                false},
                      FrontCase{"Vantrel Solvane", windowOfClass("Vantrel Solvane"), true},
                      FrontCase{"codex", windowOfClass("codex"), false},
                      FrontCase{"CHATGPT", windowOfClass("CHATGPT"), false},
                      FrontCase{"Codex Beta", windowOfClass("Codex Beta"), false},
                      FrontCase{"xterm", windowOfClass("XTerm"), false},
                      FrontCase{"no window", std::nullopt, false}));

TEST_F(VisibilityTest, AnApplicationSwitchComesThroughTheDesktopsNotice)
{
    AppDelegate& app = delegate();
    desktop.frontmost = windowOfClass("xterm");
    app.applicationDidFinishLaunching();
    EXPECT_FALSE(app.panel->isVisible());
    desktop.switchTo(windowOfClass("Codex"));
    EXPECT_TRUE(app.panel->isVisible());
    desktop.switchTo(windowOfClass("ChatGPT"));
    EXPECT_TRUE(app.panel->isVisible());
    desktop.switchTo(windowOfClass("Codex Beta"));
    EXPECT_FALSE(app.panel->isVisible());
}

TEST_F(VisibilityTest, ACodexCliStartedOrEndedInTheTerminalInFrontShowsOrHidesThePanelAtTheNextTick)
{
    processes[4343] = {"bash", false, true};
    AppDelegate& app = withPanel();
    desktop.frontmost = windowOfProcess("XTerm", 4343);
    app.focusChanged();
    EXPECT_FALSE(app.panel->isVisible());

    processes[4343].runsCodexCli = true;
    app.sample();
    EXPECT_TRUE(app.panel->isVisible());
    processes[4343].runsCodexCli = false;
    app.sample();
    EXPECT_FALSE(app.panel->isVisible());
}

TEST_F(VisibilityTest, ProcessesAreReadAtATickOnlyWhileATerminalIsInFront)
{
    processes[4242] = {"Codex", false, false};
    processes[4343] = {"bash", false, true};
    AppDelegate& app = withPanel();
    desktop.frontmost = windowOfProcess("Electron", 4242);
    app.focusChanged();
    EXPECT_EQ(processInspections, 1);
    app.sample();
    app.sample();
    EXPECT_EQ(processInspections, 1);

    desktop.frontmost = windowOfProcess("XTerm", 4343);
    app.focusChanged();
    EXPECT_EQ(processInspections, 2);
    app.sample();
    EXPECT_EQ(processInspections, 3);

    desktop.frontmost = windowOfClass("Codex");
    app.focusChanged();
    app.sample();
    EXPECT_EQ(processInspections, 3);
}

TEST_F(VisibilityTest, AnUnchangedTerminalAtATickLeavesAPinnedOrShownPanelAlone)
{
    processes[4343] = {"bash", true, true};
    AppDelegate& app = withPanel();
    desktop.frontmost = windowOfProcess("XTerm", 4343);
    app.focusChanged();
    ASSERT_TRUE(app.panel->isVisible());
    const int shownBefore = desktop.shown;
    app.sample();
    EXPECT_TRUE(app.panel->isVisible());
    EXPECT_EQ(desktop.shown, shownBefore);
}

TEST_F(VisibilityTest, ShowingPreparesTheWindowForEveryWorkspaceEachTime)
{
    AppDelegate& app = shownPanel();
    EXPECT_EQ(desktop.preparedToShow, 1);
    EXPECT_EQ(desktop.shown, 1);
    app.focusChanged(); // already shown: nothing to prepare
    EXPECT_EQ(desktop.shown, 1);
    desktop.frontmost = windowOfClass("xterm");
    app.focusChanged();
    desktop.frontmost = windowOfClass("Codex");
    app.focusChanged();
    EXPECT_EQ(desktop.preparedToShow, 2);
    EXPECT_EQ(desktop.shown, 2);
}

TEST_F(VisibilityTest, AHiddenPanelKeepsItsContentAndSize)
{
    AppDelegate& app = shownPanel();
    const QRect shownGeometry = app.panel->geometry();
    desktop.frontmost = windowOfClass("xterm");
    app.focusChanged();
    EXPECT_FALSE(app.panel->isVisible());
    EXPECT_EQ(app.panel->geometry(), shownGeometry);
    EXPECT_EQ(app.root->parentWidget(), app.canvas);
}

TEST_F(VisibilityTest, WithTheFiguresSwitchedOffThePanelStillShowsItsHeader)
{
    AppDelegate& app = shownPanel();
    app.showSwitch->performClick();
    EXPECT_TRUE(app.body->isHidden());
    app.focusChanged();
    EXPECT_TRUE(app.panel->isVisible());
    EXPECT_EQ(app.panel->height(), std::max(app.root->sizeHint().height() + 32, 66));
}

TEST_F(VisibilityTest, ThePanelSitsSixteenPixelsFromTheRightAndTheBottomOfTheWorkArea)
{
    const AppDelegate& app = shownPanel();
    const QRect frame = app.panel->geometry();
    const QRect area = workArea();
    EXPECT_EQ(frame.width(), 292);
    EXPECT_EQ(frame.x(), area.x() + area.width() - 308);
    EXPECT_EQ(area.x() + area.width() - (frame.x() + frame.width()), 16);
    EXPECT_EQ(area.y() + area.height() - (frame.y() + frame.height()), 16);
    EXPECT_EQ(frame.height(), app.root->sizeHint().height() + 32);
    EXPECT_EQ(app.canvas->size(), QSize(292, frame.height()));
}

TEST_F(VisibilityTest, ContentTallerThanTheScreenScrollsAndShowsItsTop)
{
    processors = 256; // 64 lines of cores
    AppDelegate& app = shownPanel();
    const QRect area = workArea();
    const int contentHeight = app.root->sizeHint().height() + 32;
    ASSERT_GT(contentHeight, area.height());
    EXPECT_EQ(app.panel->height(), area.height() - 32);
    EXPECT_EQ(app.panel->y(), area.y() + 16);
    EXPECT_EQ(app.canvas->height(), contentHeight);
    EXPECT_EQ(app.scroll->verticalScrollBar()->value(), 0);

    // Scrolled down by the user, the next resize shows the top again.
    app.scroll->verticalScrollBar()->setValue(app.scroll->verticalScrollBar()->maximum());
    ASSERT_GT(app.scroll->verticalScrollBar()->value(), 0);
    app.resize();
    EXPECT_EQ(app.scroll->verticalScrollBar()->value(), 0);
    // The right edge does not move with the content.
    EXPECT_EQ(area.x() + area.width() - (app.panel->x() + app.panel->width()), 16);
}

TEST_F(VisibilityTest, TheDetailsSwitchHidesTheTelemetryBlockAndShrinksThePanel)
{
    AppDelegate& app = shownPanel();
    const int fullHeight = app.panel->height();
    const int bottom = app.panel->geometry().bottom();
    app.detailSwitch->performClick();
    EXPECT_TRUE(app.details->isHidden());
    EXPECT_LT(app.panel->height(), fullHeight);
    EXPECT_EQ(app.panel->geometry().bottom(), bottom); // grows and shrinks upwards
    app.detailSwitch->performClick();
    EXPECT_FALSE(app.details->isHidden());
    EXPECT_EQ(app.panel->height(), fullHeight);
}

TEST_F(VisibilityTest, TheShowSwitchHidesTheBody)
{
    AppDelegate& app = shownPanel();
    app.showSwitch->performClick();
    EXPECT_EQ(app.showSwitch->state(), MiniSwitch::State::Off);
    EXPECT_TRUE(app.body->isHidden());
    app.showSwitch->performClick();
    EXPECT_FALSE(app.body->isHidden());
}

TEST_F(VisibilityTest, TheMixedStateCountsAsShown)
{
    AppDelegate& app = shownPanel();
    app.detailSwitch->setState(MiniSwitch::State::Mixed);
    app.toggleDetails();
    EXPECT_FALSE(app.details->isHidden());
    app.showSwitch->setState(MiniSwitch::State::Mixed);
    app.toggleShow();
    EXPECT_FALSE(app.body->isHidden());
}

TEST_F(VisibilityTest, OnlyTheGpuCoreSwitchOffHidesOnlyTheGpuBlock)
{
    AppDelegate& app = shownPanel();
    const int fullHeight = app.panel->height();
    app.gpu->coreSwitch()->performClick();
    EXPECT_TRUE(app.gpuDetail->isHidden());
    EXPECT_FALSE(app.cpuDetail->isHidden());
    EXPECT_LT(app.panel->height(), fullHeight);
}

TEST_F(VisibilityTest, EitherCoreSwitchReappliesBothBlocks)
{
    AppDelegate& app = shownPanel();
    app.cpu->coreSwitch()->performClick();
    EXPECT_TRUE(app.cpuDetail->isHidden());
    EXPECT_FALSE(app.gpuDetail->isHidden());
    // Changed without a click, then the other switch is clicked: both follow their own switch.
    app.cpu->coreSwitch()->setState(MiniSwitch::State::On);
    app.gpu->coreSwitch()->performClick();
    EXPECT_FALSE(app.cpuDetail->isHidden());
    EXPECT_TRUE(app.gpuDetail->isHidden());
}

TEST_F(VisibilityTest, TheSwitchesDoNotBringAHiddenPanelUp)
{
    AppDelegate& app = withPanel();
    app.toggleDetails();
    app.toggleCores();
    app.toggleShow();
    EXPECT_FALSE(app.panel->isVisible());
}

TEST_F(VisibilityTest, AScreenChangeWhileHiddenPlacesThePanelWithoutShowingIt)
{
    AppDelegate& app = withPanel();
    const QRect placed = app.panel->geometry();
    app.panel->setGeometry(10, 10, 292, 50);
    app.screenChanged();
    EXPECT_FALSE(app.panel->isVisible());
    EXPECT_EQ(app.panel->geometry(), placed);
}

TEST_F(VisibilityTest, AScreenChangeWhileShownKeepsThePanelShown)
{
    AppDelegate& app = shownPanel();
    app.screenChanged();
    EXPECT_TRUE(app.panel->isVisible());
}

} // namespace
} // namespace vantrel::testing
