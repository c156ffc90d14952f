#include "Vantrel/limits/UsageInterpretation.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace vantrel::limits {
namespace {

using nlohmann::json;

// 2025-07-15 10:30 UTC, 12:30 in Prague (summer time).
constexpr double now = 1752575400;
const UsageContext prague{now, "Europe/Prague", "cs_CZ", "Mac"};

constexpr const char* baseTooltip = "Sdílený limit účtu Codex, ne tokeny této konverzace.";

UsagePresentation interpret(const std::string& document, const UsageContext& context = prague)
{
    return interpretUsage(json::parse(document), context);
}

// A document whose only bucket carries the given members.
std::string withBucket(const std::string& members)
{
    return R"({"buckets": [{)" + members + "}]}";
}

void expectNoBuckets(const UsagePresentation& presentation)
{
    for (const LimitRowUsage* row : {&presentation.quota, &presentation.weekly}) {
        EXPECT_EQ(row->caption, std::nullopt);
        EXPECT_EQ(row->value, std::nullopt);
        EXPECT_EQ(row->tooltip, std::nullopt);
    }
    EXPECT_EQ(presentation.creditText, std::nullopt);
    EXPECT_EQ(presentation.statusText, "API nevrátilo limity účtu");
    EXPECT_EQ(presentation.statusColour, StatusColour::Unchanged);
    EXPECT_EQ(presentation.lastUsage, std::nullopt);
    EXPECT_FALSE(presentation.clearsLastFetchFailed);
}

TEST(UsageInterpretation, TypicalDocumentFillsBothRowsTheCreditAndTheStatus)
{
    std::ifstream file(VANTREL_FIXTURES "/limits/typical.json");
    const UsagePresentation presentation = interpretUsage(json::parse(file), prague);

    EXPECT_EQ(presentation.quota.caption, "Zbývá · 5 h");
    EXPECT_EQ(presentation.quota.value, 72.5);
    EXPECT_EQ(presentation.quota.tooltip, std::string(baseTooltip) + " Obnova: 15. 7. 16:30 SELČ");
    EXPECT_EQ(presentation.weekly.caption, "Zbývá · týden");
    EXPECT_EQ(presentation.weekly.value, 41);
    EXPECT_EQ(presentation.weekly.tooltip, std::string(baseTooltip) + " Obnova: 20. 7. 09:30 SELČ");
    EXPECT_EQ(presentation.creditText, "Kredity: 12.50 · tokeny: API neposkytuje");
    EXPECT_EQ(presentation.statusText, "Limity 12:30 · Mac každé 2 s");
    EXPECT_EQ(presentation.statusColour, StatusColour::Secondary);
    EXPECT_EQ(presentation.lastUsage, 1752575400.25);
    EXPECT_TRUE(presentation.clearsLastFetchFailed);
}

TEST(UsageInterpretation, WholeTooltipInWinterCarriesTheCzechStandardZoneName)
{
    const auto presentation = interpret(
        withBucket(R"("windows": [{"slot": "primary", "resetsAt": 1736937000, "remainingPercent": 5}])"));
    EXPECT_EQ(presentation.quota.tooltip,
              "Sdílený limit účtu Codex, ne tokeny této konverzace. Obnova: 15. 1. 11:30 SEČ");
}

class DocumentsWithoutBuckets : public testing::TestWithParam<const char*> {};

TEST_P(DocumentsWithoutBuckets, ClearLastUsageAndKeepCaptionsCreditAndFailureFlag)
{
    expectNoBuckets(interpret(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(UsageInterpretation, DocumentsWithoutBuckets,
                         testing::Values(R"({})", R"({"observedAt": 1752575400})", R"({"buckets": null})",
                                         R"({"buckets": "codex"})", R"({"buckets": 3})",
                                         R"({"buckets": true})", R"({"buckets": {"id": "codex"}})",
                                         R"({"buckets": []})", R"({"buckets": ["codex"]})",
                                         R"({"buckets": [{"id": "codex"}, 1]})",
                                         R"({"buckets": [[{"id": "codex"}]]})", R"({"buckets": [null]})",
                                         R"({"Buckets": [{"id": "codex"}]})", R"([{"buckets": [{}]}])",
                                         R"(null)"));

TEST(UsageInterpretation, EmptyBucketObjectIsABucketWithNothingInIt)
{
    const auto presentation = interpret(R"({"buckets": [{}]})");
    EXPECT_EQ(presentation.quota.caption, "Zbývá · krátkodobý limit");
    EXPECT_EQ(presentation.quota.value, std::nullopt);
    EXPECT_EQ(presentation.quota.tooltip, baseTooltip);
    EXPECT_EQ(presentation.weekly.caption, "Zbývá · dlouhodobý limit");
    EXPECT_EQ(presentation.weekly.value, std::nullopt);
    EXPECT_EQ(presentation.weekly.tooltip, baseTooltip);
    EXPECT_EQ(presentation.creditText, "Kredity / tokeny: API neposkytuje zůstatek");
    EXPECT_EQ(presentation.statusText, "Limity 12:30 · Mac každé 2 s");
    EXPECT_EQ(presentation.statusColour, StatusColour::Secondary);
    EXPECT_EQ(presentation.lastUsage, now);
    EXPECT_TRUE(presentation.clearsLastFetchFailed);
}

struct BucketChoice {
    const char* buckets;
    const char* expectedCredit;
};

class BucketChoices : public testing::TestWithParam<BucketChoice> {};

TEST_P(BucketChoices, CodexBucketWinsElseTheFirst)
{
    const auto presentation = interpret(std::string(R"({"buckets": )") + GetParam().buckets + "}");
    EXPECT_EQ(presentation.creditText,
              std::string("Kredity: ") + GetParam().expectedCredit + " · tokeny: API neposkytuje");
}

INSTANTIATE_TEST_SUITE_P(
    UsageInterpretation, BucketChoices,
    testing::Values(
        BucketChoice{R"([{"id": "other", "creditBalance": "A"}, {"id": "codex", "creditBalance": "B"}])",
                     "B"},
        BucketChoice{R"([{"id": "x", "creditBalance": "A"}, {"id": "y", "creditBalance": "B"}])", "A"},
        BucketChoice{R"([{"creditBalance": "A"}, {"id": "codex", "creditBalance": "B"}])", "B"},
        BucketChoice{R"([{"id": "codex", "creditBalance": "A"}, {"id": "codex", "creditBalance": "B"}])",
                     "A"},
        BucketChoice{R"([{"id": "x", "creditBalance": "A"}, {"id": "Codex", "creditBalance": "B"}])", "A"},
        BucketChoice{R"([{"id": "x", "creditBalance": "A"}, {"id": "codex ", "creditBalance": "B"}])", "A"},
        BucketChoice{R"([{"id": "x", "creditBalance": "A"}, {"id": ["codex"], "creditBalance": "B"}])", "A"},
        BucketChoice{R"([{"id": "x", "creditBalance": "A"}, {"id": 7, "creditBalance": "B"}])", "A"}));

struct CreditCase {
    const char* member;
    const char* expected;
};

class CreditLines : public testing::TestWithParam<CreditCase> {};

TEST_P(CreditLines, StringBalanceIsShownVerbatimAnythingElseFallsBack)
{
    EXPECT_EQ(interpret(withBucket(GetParam().member)).creditText, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    UsageInterpretation, CreditLines,
    testing::Values(CreditCase{R"("creditBalance": "12.50 USD")",
                               "Kredity: 12.50 USD · tokeny: API neposkytuje"},
                    CreditCase{R"("creditBalance": "")", "Kredity:  · tokeny: API neposkytuje"},
                    CreditCase{R"("creditBalance": 5)", "Kredity / tokeny: API neposkytuje zůstatek"},
                    CreditCase{R"("creditBalance": 5.5)", "Kredity / tokeny: API neposkytuje zůstatek"},
                    CreditCase{R"("creditBalance": null)", "Kredity / tokeny: API neposkytuje zůstatek"},
                    CreditCase{R"("creditBalance": true)", "Kredity / tokeny: API neposkytuje zůstatek"},
                    CreditCase{R"("creditBalance": ["1"])", "Kredity / tokeny: API neposkytuje zůstatek"},
                    CreditCase{R"("id": "codex")", "Kredity / tokeny: API neposkytuje zůstatek"}));

struct SpendCase {
    const char* members;
    bool spend;
};

class SpendFlags : public testing::TestWithParam<SpendCase> {};

TEST_P(SpendFlags, SpendControlOrLimitReachedTurnsTheStatusOrange)
{
    const auto presentation = interpret(withBucket(GetParam().members));
    if (GetParam().spend) {
        EXPECT_EQ(presentation.statusText, "Účet hlásí omezení čerpání");
        EXPECT_EQ(presentation.statusColour, StatusColour::Orange);
    } else {
        EXPECT_EQ(presentation.statusText, "Limity 12:30 · Mac každé 2 s");
        EXPECT_EQ(presentation.statusColour, StatusColour::Secondary);
    }
    EXPECT_EQ(presentation.lastUsage, now);
    EXPECT_TRUE(presentation.clearsLastFetchFailed);
}

INSTANTIATE_TEST_SUITE_P(
    UsageInterpretation, SpendFlags,
    testing::Values(SpendCase{R"("spendControlReached": true)", true},
                    SpendCase{R"("spendControlReached": false, "limitReached": true)", true},
                    SpendCase{R"("spendControlReached": true, "limitReached": false)", true},
                    SpendCase{R"("limitReached": true)", true},
                    SpendCase{R"("spendControlReached": "true", "limitReached": true)", true},
                    SpendCase{R"("spendControlReached": false, "limitReached": false)", false},
                    SpendCase{R"("spendControlReached": false)", false}, SpendCase{R"("id": "codex")", false},
                    SpendCase{R"("spendControlReached": 1)", false},
                    SpendCase{R"("spendControlReached": "true")", false},
                    SpendCase{R"("limitReached": 1)", false}, SpendCase{R"("limitReached": "yes")", false},
                    SpendCase{R"("limitReached": null)", false},
                    SpendCase{R"("spendControlReached": null, "limitReached": [true])", false}));

TEST(UsageInterpretation, ObservedAtBecomesLastUsageAndTheStatusTime)
{
    const auto presentation = interpret(R"({"observedAt": 1736937059.9, "buckets": [{}]})");
    EXPECT_EQ(presentation.lastUsage, 1736937059.9);
    EXPECT_EQ(presentation.statusText, "Limity 11:30 · Mac každé 2 s");
}

class ObservedAtNotANumber : public testing::TestWithParam<const char*> {};

TEST_P(ObservedAtNotANumber, TheCurrentTimeIsUsedInstead)
{
    const auto presentation = interpret(std::string(R"({"buckets": [{}])") + GetParam() + "}",
                                        {1736937000, "Europe/Prague", "cs_CZ", "Mac"});
    // lastUsage is now itself: the staleness warning has a full 121 s to wait.
    EXPECT_EQ(presentation.lastUsage, 1736937000);
    EXPECT_EQ(presentation.statusText, "Limity 11:30 · Mac každé 2 s");
}

INSTANTIATE_TEST_SUITE_P(UsageInterpretation, ObservedAtNotANumber,
                         testing::Values("", R"(, "observedAt": "1752575400")", R"(, "observedAt": null)",
                                         R"(, "observedAt": true)", R"(, "observedAt": [1752575400])",
                                         R"(, "observedAt": {})"));

TEST(UsageInterpretation, IntegerObservedAtBeyondTheInt64RangeIsReadAsADouble)
{
    const auto presentation = interpret(R"({"observedAt": 18446744073709551615, "buckets": [{}]})");
    EXPECT_EQ(presentation.lastUsage, 18446744073709551615.0);
    EXPECT_EQ(presentation.statusColour, StatusColour::Secondary);
}

TEST(UsageInterpretation, StatusTimeFollowsTheZoneAndTheUserLocale)
{
    const std::string document = R"({"observedAt": 1752575400, "buckets": [{}]})";
    EXPECT_EQ(interpret(document, {now, "America/New_York", "en_US", "Mac"}).statusText,
              "Limity 06:30 · Mac každé 2 s");
    EXPECT_EQ(interpret(document, {now, "UTC", "de_DE", "Mac"}).statusText, "Limity 10:30 · Mac každé 2 s");
    EXPECT_EQ(interpret(document, {now, "Europe/Prague", "ar_EG", "Mac"}).statusText,
              "Limity ١٢:٣٠ · Mac každé 2 s");
}

TEST(UsageInterpretation, ResetTimeIsAlwaysCzechWhateverTheUserLocale)
{
    const auto presentation =
        interpret(withBucket(R"("windows": [{"slot": "secondary", "resetsAt": 1736937000}])"),
                  {now, "America/New_York", "en_US", "Mac"});
    EXPECT_EQ(presentation.weekly.tooltip, std::string(baseTooltip) + " Obnova: 15. 1. 05:30 EST");
}

TEST(UsageInterpretation, WarmUpChangesNoResult)
{
    const std::string document = withBucket(R"("windows": [{"slot": "primary", "resetsAt": 1736937000}])");
    const UsagePresentation before = interpret(document);
    warmUpInterpretation();
    EXPECT_EQ(interpret(document), before);
}

TEST(UsageInterpretation, TheStatusLineNamesTheMachineAsTheContextSays)
{
    std::ifstream file(VANTREL_FIXTURES "/limits/typical.json");
    UsageContext context = prague;
    context.machineName = "počítač";
    EXPECT_EQ(interpretUsage(json::parse(file), context).statusText, "Limity 12:30 · počítač každé 2 s");
}

TEST(UsageInterpretation, CurrentContextUsesTheSystemClockZoneAndLocale)
{
    const UsageContext context = currentUsageContext("počítač");
    EXPECT_EQ(context.machineName, "počítač");
    EXPECT_GT(context.now, 1.7e9);
    EXPECT_FALSE(context.timeZone.empty());
    EXPECT_FALSE(context.statusLocale.empty());
}

} // namespace
} // namespace vantrel::limits
