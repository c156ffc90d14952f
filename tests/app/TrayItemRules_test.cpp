#include "Vantrel/app/TrayItemRules.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

constexpr TrayHostFacts none{false, false};
constexpr TrayHostFacts statusNotifier{true, false};
constexpr TrayHostFacts xembed{false, true};
constexpr TrayHostFacts both{true, true};

constexpr auto sni = TrayItemKind::statusNotifierItem;
constexpr auto embedded = TrayItemKind::xembed;

TEST(TrayItemKind, FollowsQtsChoiceAndWaitsWhileNoHostRuns)
{
    EXPECT_EQ(trayItemKindFor(none), std::nullopt);
    EXPECT_EQ(trayItemKindFor(statusNotifier), sni);
    EXPECT_EQ(trayItemKindFor(xembed), embedded);
    // KDE Plasma on X11 offers both; Qt prefers the StatusNotifierItem.
    EXPECT_EQ(trayItemKindFor(both), sni);
}

struct ShownCase {
    TrayItemKind kind;
    TrayHostFacts hosts;
    bool shown;
};

class TrayItemShownTest : public testing::TestWithParam<ShownCase> {};

TEST_P(TrayItemShownTest, OnlyAHostOfTheItemsOwnKindShowsIt)
{
    EXPECT_EQ(trayItemShown(GetParam().kind, GetParam().hosts), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Hosts, TrayItemShownTest,
                         testing::Values(ShownCase{sni, none, false}, ShownCase{sni, statusNotifier, true},
                                         ShownCase{sni, xembed, false}, ShownCase{sni, both, true},
                                         ShownCase{embedded, none, false},
                                         ShownCase{embedded, statusNotifier, false},
                                         ShownCase{embedded, xembed, true}, ShownCase{embedded, both, true}));

using Notices = std::vector<std::optional<TrayNotice>>;
constexpr auto noHost = TrayNotice::noHost;
constexpr auto arrived = TrayNotice::hostArrived;
constexpr std::nullopt_t quiet = std::nullopt;

struct NoticeCase {
    const char* description;
    std::vector<bool> shown; // each observation in turn
    Notices notices;
};

class TrayNoticesTest : public testing::TestWithParam<NoticeCase> {};

TEST_P(TrayNoticesTest, SaysEachThingOnceARun)
{
    TrayNotices notices;
    Notices said;
    for (const bool shown : GetParam().shown) {
        said.push_back(notices.observe(shown));
    }
    EXPECT_EQ(said, GetParam().notices) << GetParam().description;
}

INSTANTIATE_TEST_SUITE_P(
    Runs, TrayNoticesTest,
    testing::Values(
        NoticeCase{"a host all along", {true, true}, {quiet, quiet}},
        NoticeCase{"no host all along", {false, false, false}, {noHost, quiet, quiet}},
        NoticeCase{"none at the start, one later", {false, true}, {noHost, arrived}},
        NoticeCase{"a host that goes and comes back", {true, false, true}, {quiet, noHost, arrived}},
        NoticeCase{"a host that keeps coming and going",
                   {false, true, false, true, false, true},
                   {noHost, arrived, quiet, quiet, quiet, quiet}},
        NoticeCase{"the same answer again", {false, false, true, true}, {noHost, quiet, arrived, quiet}}));

TEST(TrayNoticeLine, SaysWhatServesInsteadAndWhenTheItemIsBack)
{
    EXPECT_EQ(trayNoticeLine(noHost),
              "vantrel: no system tray or StatusNotifierItem host runs, so there is no tray "
              "item; a right click on the panel opens the same menu");
    EXPECT_EQ(trayNoticeLine(arrived), "vantrel: a tray host runs now and shows the tray item");
}

} // namespace
} // namespace vantrel
