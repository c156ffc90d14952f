#include "Vantrel/ui/MiniSwitch.h"

#include <QAccessible>
#include <QAccessibleActionInterface>
#include <QApplication>
#include <QMouseEvent>

#include <gtest/gtest.h>

#include "tests/ui/Rendering.h"

namespace vantrel::ui {
namespace {

using State = MiniSwitch::State;

// Records the state seen by every activated() signal.
struct ActivationLog {
    explicit ActivationLog(MiniSwitch& control)
    {
        QObject::connect(&control, &MiniSwitch::activated, &control,
                         [this, &control] { statesAtSignal.push_back(control.state()); });
    }
    std::vector<State> statesAtSignal;
};

void sendMouse(MiniSwitch& control, QEvent::Type type, QPointF position)
{
    QMouseEvent event(type, position, control.mapToGlobal(position), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(&control, &event);
}

TEST(MiniSwitchTest, IsASmallOffSwitchThatNeverTakesFocus)
{
    const MiniSwitch control;
    EXPECT_EQ(control.state(), State::Off);
    EXPECT_EQ(control.focusPolicy(), Qt::NoFocus);
    EXPECT_LE(control.sizeHint().height(), 16);
    EXPECT_GT(control.sizeHint().width(), control.sizeHint().height());
}

struct ClickCase {
    State before;
    State after;
};

class MiniSwitchClickTest : public ::testing::TestWithParam<ClickCase> {};

TEST_P(MiniSwitchClickTest, PerformClickFlipsThenSignals)
{
    MiniSwitch control;
    control.setState(GetParam().before);
    const ActivationLog log(control);
    control.performClick();
    EXPECT_EQ(control.state(), GetParam().after);
    EXPECT_EQ(log.statesAtSignal, std::vector<State>{GetParam().after});
}

INSTANTIATE_TEST_SUITE_P(States, MiniSwitchClickTest,
                         ::testing::Values(ClickCase{State::Off, State::On}, ClickCase{State::On, State::Off},
                                           ClickCase{State::Mixed, State::On}));

TEST(MiniSwitchTest, SettingTheStateInCodeDoesNotSignal)
{
    MiniSwitch control;
    const ActivationLog log(control);
    control.setState(State::On);
    control.setState(State::Mixed);
    EXPECT_EQ(control.state(), State::Mixed);
    EXPECT_TRUE(log.statesAtSignal.empty());
}

TEST(MiniSwitchTest, AMouseClickOverTheSwitchFlipsIt)
{
    MiniSwitch control;
    control.resize(control.sizeHint());
    const ActivationLog log(control);
    sendMouse(control, QEvent::MouseButtonPress, QPointF(5, 5));
    EXPECT_EQ(control.state(), State::Off);
    sendMouse(control, QEvent::MouseButtonRelease, QPointF(6, 5));
    EXPECT_EQ(control.state(), State::On);
    EXPECT_EQ(log.statesAtSignal, std::vector<State>{State::On});
}

TEST(MiniSwitchTest, ReleasingOutsideTheSwitchCancelsTheClick)
{
    MiniSwitch control;
    control.resize(control.sizeHint());
    const ActivationLog log(control);
    sendMouse(control, QEvent::MouseButtonPress, QPointF(5, 5));
    sendMouse(control, QEvent::MouseButtonRelease, QPointF(80, 40));
    EXPECT_EQ(control.state(), State::Off);
    EXPECT_TRUE(log.statesAtSignal.empty());
}

struct AccessibleStateCase {
    State state;
    bool checked;
    bool mixed;
};

class MiniSwitchAccessibleStateTest : public ::testing::TestWithParam<AccessibleStateCase> {};

TEST_P(MiniSwitchAccessibleStateTest, IsACheckableCheckBox)
{
    MiniSwitch control;
    control.setState(GetParam().state);
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&control);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::CheckBox);
    EXPECT_TRUE(accessible->state().checkable);
    EXPECT_EQ(accessible->state().checked, GetParam().checked);
    EXPECT_EQ(accessible->state().checkStateMixed, GetParam().mixed);
    EXPECT_FALSE(accessible->state().focusable);
}

INSTANTIATE_TEST_SUITE_P(States, MiniSwitchAccessibleStateTest,
                         ::testing::Values(AccessibleStateCase{State::Off, false, false},
                                           AccessibleStateCase{State::On, true, false},
                                           AccessibleStateCase{State::Mixed, false, true}));

TEST(MiniSwitchTest, CarriesItsAccessibleNameAndToolTip)
{
    MiniSwitch control;
    control.setAccessibleName(QStringLiteral("Všechny parametry"));
    control.setToolTip(QStringLiteral("Zobrazit / skrýt jednotlivá jádra"));
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&control);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Všechny parametry"));
    EXPECT_EQ(accessible->text(QAccessible::Description),
              QStringLiteral("Zobrazit / skrýt jednotlivá jádra"));
}

class MiniSwitchActionTest : public ::testing::TestWithParam<QString> {};

TEST_P(MiniSwitchActionTest, AccessibilityActionFlipsAndSignals)
{
    MiniSwitch control;
    const ActivationLog log(control);
    QAccessibleActionInterface* actions = QAccessible::queryAccessibleInterface(&control)->actionInterface();
    ASSERT_NE(actions, nullptr);
    EXPECT_TRUE(actions->actionNames().contains(GetParam()));
    actions->doAction(GetParam());
    EXPECT_EQ(control.state(), State::On);
    EXPECT_EQ(log.statesAtSignal, std::vector<State>{State::On});
}

INSTANTIATE_TEST_SUITE_P(Actions, MiniSwitchActionTest,
                         ::testing::Values(QAccessibleActionInterface::pressAction(),
                                           QAccessibleActionInterface::toggleAction()));

// Total opacity of a vertical band of the picture.
int coverage(const QImage& image, int fromX, int toX)
{
    int sum = 0;
    for (int x = fromX; x < toX; ++x) {
        for (int y = 0; y < image.height(); ++y) {
            sum += testing::alphaAt(image, x, y) * qGray(image.pixel(x, y)) / 255;
        }
    }
    return sum;
}

TEST(MiniSwitchTest, DrawsThePaleKnobAtTheEndOfItsState)
{
    MiniSwitch control;
    control.resize(control.sizeHint());
    const int width = control.width();
    const QImage off = testing::render(control);
    control.setState(State::On);
    const QImage on = testing::render(control);
    EXPECT_GT(coverage(off, 0, width / 3), coverage(off, 2 * width / 3, width));
    EXPECT_LT(coverage(on, 0, width / 3), coverage(on, 2 * width / 3, width));
    EXPECT_EQ(testing::alphaAt(off, 0, 0), 0); // a pill: transparent corners
}

} // namespace
} // namespace vantrel::ui
