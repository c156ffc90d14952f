// The two limit rows: window choice, caption, value and tooltip.
#include "Vantrel/limits/UsageInterpretation.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>

namespace vantrel::limits {
namespace {

using nlohmann::json;

const UsageContext prague{1752575400, "Europe/Prague", "cs_CZ", "Mac"};

const std::string baseTooltip = "Sdílený limit účtu Codex, ne tokeny této konverzace.";
const std::string pendingTooltip = baseTooltip + " Čeká se na nový stav po obnově.";

UsagePresentation withWindows(const std::string& windows)
{
    return interpretUsage(json::parse(R"({"buckets": [{"id": "codex", "windows": )" + windows + "}]}"),
                          prague);
}

// A document whose chosen bucket holds one primary window with the given members.
LimitRowUsage primaryRow(const std::string& members)
{
    return withWindows(R"([{"slot": "primary")" + (members.empty() ? "" : ", " + members) + "}]").quota;
}

struct WindowsCase {
    const char* windows;
    std::optional<double> quota;
    std::optional<double> weekly;
};

class WindowChoice : public testing::TestWithParam<WindowsCase> {};

TEST_P(WindowChoice, FirstWindowOfEachSlotFeedsItsRow)
{
    const auto presentation = withWindows(GetParam().windows);
    EXPECT_EQ(presentation.quota.value, GetParam().quota);
    EXPECT_EQ(presentation.weekly.value, GetParam().weekly);
}

INSTANTIATE_TEST_SUITE_P(
    UsageInterpretation, WindowChoice,
    testing::Values(
        WindowsCase{
            R"([{"slot": "primary", "remainingPercent": 10}, {"slot": "secondary", "remainingPercent": 20}])",
            10, 20},
        WindowsCase{
            R"([{"slot": "secondary", "remainingPercent": 20}, {"slot": "primary", "remainingPercent": 10}])",
            10, 20},
        WindowsCase{
            R"([{"slot": "primary", "remainingPercent": 1}, {"slot": "primary", "remainingPercent": 2}])", 1,
            std::nullopt},
        WindowsCase{R"([{"slot": "primary"}, {"slot": "primary", "remainingPercent": 2}])", std::nullopt,
                    std::nullopt},
        WindowsCase{
            R"([{"slot": "Primary", "remainingPercent": 1}, {"slot": "tertiary", "remainingPercent": 2}])",
            std::nullopt, std::nullopt},
        WindowsCase{R"([{"slot": 0, "remainingPercent": 1}, {"remainingPercent": 2}])", std::nullopt,
                    std::nullopt},
        WindowsCase{R"([{"slot": "primary", "remainingPercent": 1}, "secondary"])", std::nullopt,
                    std::nullopt},
        WindowsCase{R"([{"slot": "primary", "remainingPercent": 1}, null])", std::nullopt, std::nullopt},
        WindowsCase{R"({"slot": "primary", "remainingPercent": 1})", std::nullopt, std::nullopt},
        WindowsCase{R"("primary")", std::nullopt, std::nullopt},
        WindowsCase{"null", std::nullopt, std::nullopt}, WindowsCase{"[]", std::nullopt, std::nullopt}));

TEST(UsageInterpretation, MissingWindowLeavesTheRowUnavailableWithTheBareTooltip)
{
    const auto presentation =
        withWindows(R"([{"slot": "primary", "windowDurationMins": 300, "remainingPercent": 50}])");
    EXPECT_EQ(presentation.weekly.caption, "Zbývá · dlouhodobý limit");
    EXPECT_EQ(presentation.weekly.value, std::nullopt);
    EXPECT_EQ(presentation.weekly.tooltip, baseTooltip);
    EXPECT_EQ(presentation.quota.caption, "Zbývá · 5 h");
}

TEST(UsageInterpretation, BucketWithoutWindowsUsesTheFallbackCaptions)
{
    const auto presentation = interpretUsage(json::parse(R"({"buckets": [{"id": "codex"}]})"), prague);
    EXPECT_EQ(presentation.quota.caption, "Zbývá · krátkodobý limit");
    EXPECT_EQ(presentation.weekly.caption, "Zbývá · dlouhodobý limit");
}

struct CaptionCase {
    const char* durationMember;
    const char* caption;
};

class WindowCaptions : public testing::TestWithParam<CaptionCase> {};

TEST_P(WindowCaptions, DurationNamesTheRow)
{
    EXPECT_EQ(primaryRow(GetParam().durationMember).caption, GetParam().caption);
}

INSTANTIATE_TEST_SUITE_P(
    UsageInterpretation, WindowCaptions,
    testing::Values(CaptionCase{R"("windowDurationMins": 300)", "Zbývá · 5 h"},
                    CaptionCase{R"("windowDurationMins": 10080)", "Zbývá · týden"},
                    CaptionCase{R"("windowDurationMins": 10080.0)", "Zbývá · týden"},
                    CaptionCase{R"("windowDurationMins": 90)", "Zbývá · 90 min"},
                    CaptionCase{R"("windowDurationMins": 0)", "Zbývá · 0 h"},
                    CaptionCase{R"("windowDurationMins": 90.5)", "Zbývá · 90 min"},
                    CaptionCase{R"("windowDurationMins": 20160)", "Zbývá · 336 h"},
                    CaptionCase{R"("windowDurationMins": -120)", "Zbývá · -2 h"},
                    CaptionCase{R"("windowDurationMins": "300")", "Zbývá · krátkodobý limit"},
                    CaptionCase{R"("windowDurationMins": null)", "Zbývá · krátkodobý limit"},
                    CaptionCase{R"("windowDurationMins": true)", "Zbývá · krátkodobý limit"},
                    CaptionCase{R"("windowDurationMins": [300])", "Zbývá · krátkodobý limit"},
                    CaptionCase{"", "Zbývá · krátkodobý limit"}));

TEST(UsageInterpretation, SecondaryWindowWithoutDurationUsesItsOwnFallbackCaption)
{
    EXPECT_EQ(withWindows(R"([{"slot": "secondary"}])").weekly.caption, "Zbývá · dlouhodobý limit");
}

TEST(UsageInterpretationDeathTest, DurationBeyondTheInt64RangeStopsTheProgram)
{
    EXPECT_DEATH(primaryRow(R"("windowDurationMins": 1e19)"), "does not fit a 64-bit integer");
    EXPECT_DEATH(primaryRow(R"("windowDurationMins": 18446744073709551615)"),
                 "does not fit a 64-bit integer");
}

struct ValueCase {
    const char* members;
    std::optional<double> value;
    std::string tooltip;
};

class RowValues : public testing::TestWithParam<ValueCase> {};

TEST_P(RowValues, RemainingPercentResetTimeAndPendingReset)
{
    const LimitRowUsage row = primaryRow(GetParam().members);
    EXPECT_EQ(row.value, GetParam().value);
    EXPECT_EQ(row.tooltip, GetParam().tooltip);
}

INSTANTIATE_TEST_SUITE_P(
    UsageInterpretation, RowValues,
    testing::Values(
        // Below 15 the row turns orange by itself: the value is passed on as it is.
        ValueCase{R"("remainingPercent": 12)", 12, baseTooltip},
        ValueCase{R"("remainingPercent": 0)", 0, baseTooltip},
        ValueCase{R"("remainingPercent": 33.3)", 33.3, baseTooltip},
        // The row clamps figures outside 0 to 100.
        ValueCase{R"("remainingPercent": 150)", 150, baseTooltip},
        ValueCase{R"("remainingPercent": -5)", -5, baseTooltip},
        ValueCase{R"("remainingPercent": "40")", std::nullopt, baseTooltip},
        ValueCase{R"("remainingPercent": null)", std::nullopt, baseTooltip},
        ValueCase{R"("remainingPercent": false)", std::nullopt, baseTooltip},
        ValueCase{"", std::nullopt, baseTooltip},
        ValueCase{R"("resetPending": true, "remainingPercent": 40)", std::nullopt, pendingTooltip},
        ValueCase{R"("resetPending": true)", std::nullopt, pendingTooltip},
        ValueCase{R"("resetPending": false, "remainingPercent": 40)", 40, baseTooltip},
        ValueCase{R"("resetPending": "true", "remainingPercent": 40)", 40, baseTooltip},
        ValueCase{R"("resetPending": 1, "remainingPercent": 40)", 40, baseTooltip},
        ValueCase{R"("resetPending": null, "remainingPercent": 40)", 40, baseTooltip},
        ValueCase{R"("resetsAt": 1752589800, "remainingPercent": 40)", 40,
                  baseTooltip + " Obnova: 15. 7. 16:30 SELČ"},
        ValueCase{R"("resetsAt": 1752589859.99, "remainingPercent": 40)", 40,
                  baseTooltip + " Obnova: 15. 7. 16:30 SELČ"},
        ValueCase{R"("resetsAt": 1752589800, "resetPending": true, "remainingPercent": 40)", std::nullopt,
                  baseTooltip + " Obnova: 15. 7. 16:30 SELČ Čeká se na nový stav po obnově."},
        ValueCase{R"("resetsAt": "2025-07-15T14:30:00Z", "remainingPercent": 40)", 40, baseTooltip},
        ValueCase{R"("resetsAt": null, "remainingPercent": 40)", 40, baseTooltip},
        ValueCase{R"("resetsAt": true, "remainingPercent": 40)", 40, baseTooltip}));

TEST(UsageInterpretation, ResetTimeStringLeavesTheRestOfTheRowAlone)
{
    const LimitRowUsage row =
        primaryRow(R"("windowDurationMins": 300, "resetsAt": "2025-07-15", "remainingPercent": 8)");
    EXPECT_EQ(row.caption, "Zbývá · 5 h");
    EXPECT_EQ(row.value, 8);
    EXPECT_EQ(row.tooltip, baseTooltip);
}

class FarResetTimes : public testing::TestWithParam<double> {};

TEST_P(FarResetTimes, AreFormattedWithoutHarm)
{
    const LimitRowUsage row = primaryRow(R"("resetsAt": )" + json(GetParam()).dump());
    ASSERT_TRUE(row.tooltip.has_value());
    EXPECT_EQ(row.tooltip->rfind(baseTooltip + " Obnova: ", 0), 0U);
}

INSTANTIATE_TEST_SUITE_P(UsageInterpretation, FarResetTimes,
                         testing::Values(0.0, -1.0, 1e15, -1e15, 1e300, -1e300,
                                         std::numeric_limits<double>::max()));

} // namespace
} // namespace vantrel::limits
