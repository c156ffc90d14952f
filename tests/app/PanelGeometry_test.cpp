#include "Vantrel/app/PanelGeometry.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

struct PlacementCase {
    const char* name;
    int fittingHeight;
    ScreenRect workArea;
    int canvasHeight;
    ScreenRect frame;
};

class PanelPlacementTest : public testing::TestWithParam<PlacementCase> {};

TEST_P(PanelPlacementTest, PlacesThePanelInTheBottomRightCorner)
{
    const PlacementCase& c = GetParam();
    const PanelPlacement placement = placePanel(c.fittingHeight, c.workArea);
    EXPECT_EQ(placement.canvasWidth, 292);
    EXPECT_EQ(placement.canvasHeight, c.canvasHeight);
    EXPECT_EQ(placement.frame, c.frame);
}

INSTANTIATE_TEST_SUITE_P(
    Placements, PanelPlacementTest,
    testing::Values(
        // 20 + 32 = 52 is below the minimum content height.
        PlacementCase{"SmallContentGetsTheMinimum", 20, {0, 0, 1280, 800}, 66, {972, 800 - 16 - 66, 292, 66}},
        PlacementCase{"ContentPlusMargins", 100, {0, 0, 1280, 800}, 132, {972, 800 - 16 - 132, 292, 132}},
        PlacementCase{"ExactlyTheMinimum", 34, {0, 0, 1280, 800}, 66, {972, 718, 292, 66}},
        // Taller than the work area: the canvas keeps its height, the window stops 16 below its top.
        PlacementCase{"TallerThanTheWorkArea", 1000, {0, 0, 1440, 900}, 1032, {1132, 16, 292, 868}},
        PlacementCase{
            "WorkAreaBelowATopPanel", 100, {0, 24, 1280, 776}, 132, {972, 800 - 16 - 132, 292, 132}},
        PlacementCase{"SecondScreenToTheRight", 100, {1920, 0, 1280, 1024}, 132, {2892, 876, 292, 132}},
        PlacementCase{"WorkAreaExactlyTheReserve", 100, {0, 0, 800, 32}, 132, {492, 16, 292, 0}},
        PlacementCase{"WorkAreaLowerThanTheReserve", 100, {0, 0, 800, 20}, 132, {492, 16, 292, -12}}),
    [](const testing::TestParamInfo<PlacementCase>& param) { return std::string(param.param.name); });

TEST(PanelPlacement, RightEdgeIsAlwaysSixteenPixelsInsideTheWorkArea)
{
    const ScreenRect area{100, 50, 1000, 700};
    for (const int fitting : {0, 20, 300, 5000}) {
        const PanelPlacement placement = placePanel(fitting, area);
        EXPECT_EQ(area.x + area.width - (placement.frame.x + placement.frame.width), 16) << fitting;
    }
}

TEST(PanelPlacement, BottomEdgeIsAlwaysSixteenPixelsAboveTheWorkAreaBottom)
{
    const ScreenRect area{0, 30, 1000, 700};
    for (const int fitting : {0, 20, 300, 5000}) {
        const PanelPlacement placement = placePanel(fitting, area);
        EXPECT_EQ(area.y + area.height - (placement.frame.y + placement.frame.height), 16) << fitting;
    }
}

TEST(PanelPlacement, TheWindowIsNeverTallerThanTheWorkAreaLessTheReserve)
{
    const PanelPlacement placement = placePanel(1000, {0, 0, 1440, 900});
    EXPECT_EQ(placement.frame.height, 900 - 32);
    EXPECT_EQ(placement.frame.y, 16);
    EXPECT_GT(placement.canvasHeight, placement.frame.height);
}

} // namespace
} // namespace vantrel
