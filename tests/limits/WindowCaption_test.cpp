#include "Vantrel/limits/WindowCaption.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vantrel::limits {
namespace {

constexpr double twoTo62 = 4611686018427387904.0;
constexpr double twoTo63 = 9223372036854775808.0;

struct CaptionCase {
    double minutes;
    const char* caption;
};

class DurationCaptions : public testing::TestWithParam<CaptionCase> {};

TEST_P(DurationCaptions, WeekWholeHoursOrMinutes)
{
    EXPECT_EQ(durationCaption(GetParam().minutes), GetParam().caption);
}

INSTANTIATE_TEST_SUITE_P(WindowCaption, DurationCaptions,
                         testing::Values(CaptionCase{10080, "týden"}, CaptionCase{300, "5 h"},
                                         CaptionCase{60, "1 h"}, CaptionCase{0, "0 h"},
                                         CaptionCase{-0.0, "0 h"}, CaptionCase{-60, "-1 h"},
                                         CaptionCase{-120, "-2 h"}, CaptionCase{20160, "336 h"},
                                         CaptionCase{90, "90 min"}, CaptionCase{90.5, "90 min"},
                                         CaptionCase{59.999, "59 min"}, CaptionCase{0.5, "0 min"},
                                         CaptionCase{-0.5, "0 min"}, CaptionCase{-90.5, "-90 min"},
                                         CaptionCase{10081, "10081 min"}, CaptionCase{10080.5, "10080 min"},
                                         CaptionCase{60 * twoTo62, "4611686018427387904 h"},
                                         CaptionCase{-twoTo63, "-9223372036854775808 min"}));

class DurationsBeyondInt64 : public testing::TestWithParam<double> {};

TEST_P(DurationsBeyondInt64, StopTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(durationCaption(GetParam()), "window duration .* does not fit a 64-bit integer");
}

INSTANTIATE_TEST_SUITE_P(WindowCaption, DurationsBeyondInt64,
                         testing::Values(twoTo63, 1e19, -1e19, 60 * twoTo63, -60 * twoTo63 * 2, 1e300, -1e300,
                                         std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity(),
                                         std::numeric_limits<double>::quiet_NaN()));

} // namespace
} // namespace vantrel::limits
