#include "Vantrel/app/AutomaticPin.h"
#include "Vantrel/app/ReachAdvice.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

using State = FrontmostReach::State;

// One event: the session's reach as it now is, or the user's choice from the menu (which flips the pin).
struct Event {
    enum class Kind { reach, userFlips } kind;
    State state = State::tells;
};

constexpr Event reach(State state)
{
    return {Event::Kind::reach, state};
}
constexpr Event userFlips{Event::Kind::userFlips};
constexpr Event pending = reach(State::pending);
constexpr Event tells = reach(State::tells);
constexpr Event silent = reach(State::tellsNothing);

struct PinCase {
    const char* description;
    std::vector<Event> events;
    bool pinned;       // at the end
    std::size_t lines; // printed in all
};

class AutomaticPinTest : public testing::TestWithParam<PinCase> {};

TEST_P(AutomaticPinTest, PinsWhereNothingTellsUntilTheUserChooses)
{
    AutomaticPin policy;
    bool pinned = false;
    std::size_t lines = 0;
    for (const Event& event : GetParam().events) {
        if (event.kind == Event::Kind::userFlips) {
            policy.userChose();
            pinned = !pinned;
            continue;
        }
        const auto step = policy.follow({event.state, MissingSource::gnomeExtension, "44.2"}, pinned);
        pinned = step.pinned.value_or(pinned);
        lines += step.lines.size();
    }
    EXPECT_EQ(pinned, GetParam().pinned) << GetParam().description;
    EXPECT_EQ(lines, GetParam().lines) << GetParam().description;
}

INSTANTIATE_TEST_SUITE_P(
    Sequences, AutomaticPinTest,
    testing::Values(PinCase{"the desktop tells", {tells}, false, 0},
                    PinCase{"no answer yet", {pending}, false, 0},
                    PinCase{"nothing tells", {pending, silent}, true, 1},
                    PinCase{"nothing tells, said again", {silent, silent, silent}, true, 1},
                    PinCase{"the extension enabled later", {silent, pending, tells}, false, 2},
                    PinCase{"answers that keep coming", {silent, tells, tells, tells}, false, 2},
                    PinCase{"disabled again", {silent, tells, silent}, true, 3},
                    PinCase{"the desktop falls silent after telling", {tells, silent}, true, 1},
                    PinCase{"unpinned by the user", {silent, userFlips, tells, silent}, false, 1},
                    PinCase{"pinned again by the user", {silent, userFlips, userFlips, tells}, true, 1},
                    PinCase{"pinned by the user while told", {tells, userFlips, silent, tells}, true, 1},
                    PinCase{"unpinned by the user after Vantrel lifted its pin",
                            {silent, tells, userFlips, userFlips, silent},
                            false,
                            2}));

TEST(AutomaticPin, TheAdviceSaysThePanelIsPinnedOnlyWhenItIs)
{
    const FrontmostReach reach{State::tellsNothing, MissingSource::gnomeExtension, "43.9"};
    AutomaticPin byVantrel;
    EXPECT_EQ(byVantrel.follow(reach, false).lines, std::vector{reachAdvice(reach, true)});
    AutomaticPin afterAnUnpin;
    afterAnUnpin.userChose();
    const auto step = afterAnUnpin.follow(reach, false);
    EXPECT_FALSE(step.pinned.has_value());
    EXPECT_EQ(step.lines, std::vector{reachAdvice(reach, false)});
}

TEST(AutomaticPin, APinItDidNotSetItLeavesAlone)
{
    AutomaticPin policy;
    const auto step = policy.follow({}, true);
    EXPECT_FALSE(step.pinned.has_value());
    EXPECT_TRUE(step.lines.empty());
}

} // namespace
} // namespace vantrel
