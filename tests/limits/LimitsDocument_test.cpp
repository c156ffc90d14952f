#include "Vantrel/limits/LimitsDocument.h"
#include "Vantrel/limits/UsageInterpretation.h"

#include <gtest/gtest.h>

#include <string>

namespace vantrel::limits {
namespace {

using namespace std::string_literals;

std::string nestedArrays(std::size_t depth)
{
    return std::string(depth, '[') + std::string(depth, ']');
}

std::string nestedObjects(std::size_t depth)
{
    std::string text;
    for (std::size_t level = 0; level < depth; ++level) {
        text += R"({"a":)";
    }
    text += "1";
    return text + std::string(depth, '}');
}

TEST(LimitsDocument, ObjectIsDecoded)
{
    const auto document = decodeLimitsDocument(R"( {"buckets": [{"id": "codex"}], "observedAt": 1.5} )"
                                               "\n");
    ASSERT_TRUE(document.has_value());
    EXPECT_EQ(document->at("buckets").at(0).at("id"), "codex");
    EXPECT_EQ(document->at("observedAt"), 1.5);
}

TEST(LimitsDocument, EmptyObjectIsADocument)
{
    const auto document = decodeLimitsDocument("{}");
    ASSERT_TRUE(document.has_value());
    EXPECT_TRUE(document->empty());
}

class Rejected : public testing::TestWithParam<std::string> {};

TEST_P(Rejected, IsNoDocument)
{
    EXPECT_EQ(decodeLimitsDocument(GetParam()), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(NotAnObject, Rejected,
                         testing::Values("[]"s, "42"s, R"("x")"s, "null"s, "true"s, R"([{"buckets": []}])"s));

INSTANTIATE_TEST_SUITE_P(NotJson, Rejected,
                         testing::Values(""s, " \n\t"s, R"({"buckets": [)"s, R"({"a": 1)"s, R"({"a": 1} x)"s,
                                         R"({"a": 1}{"b": 2})"s, "{\"a\": \"\xff\"}"s, "{\"a\": \"\xc3\"}"s,
                                         "{\"a\": \"\xed\xa0\x80\"}"s, "\xff{}"s, "{\"a\": 1}\0"s,
                                         "{\"a\": 1}\0{"s, "{\"a\": \"\0\"}"s, "{'a': 1}"s, R"({"a": NaN})"s,
                                         R"({"a": Infinity})"s, R"({"a": 1e400})"s, R"({"a": 01})"s,
                                         R"({/* note */})"s, R"({"a": 1,})"s, "{\"a\": \"line\nbreak\"}"s));

TEST(LimitsDocument, NestingUpToTheLimitIsAccepted)
{
    const std::string deepest = "{\"a\":" + nestedArrays(maximumDocumentDepth - 1) + "}";
    EXPECT_TRUE(decodeLimitsDocument(deepest).has_value());
    EXPECT_TRUE(decodeLimitsDocument(nestedObjects(maximumDocumentDepth)).has_value());
}

TEST(LimitsDocument, NestingBeyondTheLimitIsRejected)
{
    const std::string tooDeep = "{\"a\":" + nestedArrays(maximumDocumentDepth) + "}";
    EXPECT_EQ(decodeLimitsDocument(tooDeep), std::nullopt);
    EXPECT_EQ(decodeLimitsDocument(nestedObjects(maximumDocumentDepth + 1)), std::nullopt);
}

TEST(LimitsDocument, HundredThousandLevelsDoNotCrash)
{
    constexpr std::size_t depth = 100000;
    EXPECT_EQ(decodeLimitsDocument(nestedObjects(depth)), std::nullopt);
    EXPECT_EQ(decodeLimitsDocument(R"({"buckets": [], "padding": )" + nestedArrays(depth) + "}"),
              std::nullopt);
    EXPECT_EQ(decodeLimitsDocument(std::string(depth, '[')), std::nullopt);
    EXPECT_EQ(decodeLimitsDocument("{\"a\":" + std::string(depth, '[')), std::nullopt);
}

TEST(LimitsDocument, OnlyTheMembersThatAreReadAreKept)
{
    const auto document = decodeLimitsDocument(R"({
        "observedAt": 5, "padding": "xxxx", "buckets": [
            {"id": "codex", "creditBalance": "1", "spendControlReached": false, "limitReached": true,
             "planType": "plus", "windows": [
                {"slot": "primary", "windowDurationMins": 300, "resetsAt": 9, "resetPending": false,
                 "remainingPercent": 50, "usedPercent": 50}]}]})");
    const auto expected = nlohmann::json::parse(R"({
        "observedAt": 5, "buckets": [
            {"id": "codex", "creditBalance": "1", "spendControlReached": false, "limitReached": true,
             "windows": [
                {"slot": "primary", "windowDurationMins": 300, "resetsAt": 9, "resetPending": false,
                 "remainingPercent": 50}]}]})");
    EXPECT_EQ(document, expected);
}

struct PruneCase {
    const char* text;
    const char* kept;
};

class ContainersOffTheReadPath : public testing::TestWithParam<PruneCase> {};

TEST_P(ContainersOffTheReadPath, AreEmptiedButKeepTheirType)
{
    EXPECT_EQ(decodeLimitsDocument(GetParam().text), nlohmann::json::parse(GetParam().kept));
}

INSTANTIATE_TEST_SUITE_P(
    LimitsDocument, ContainersOffTheReadPath,
    testing::Values(PruneCase{R"({"buckets": {"id": "codex"}})", R"({"buckets": {}})"},
                    PruneCase{R"({"buckets": [{"id": "codex"}, [1, 2], 3, "x", null]})",
                              R"({"buckets": [{"id": "codex"}, [], 3, "x", null]})"},
                    PruneCase{R"({"observedAt": {"seconds": 5}})", R"({"observedAt": {}})"},
                    PruneCase{R"({"observedAt": [5, [6]]})", R"({"observedAt": []})"},
                    PruneCase{R"({"buckets": [{"windows": {"slot": "primary"}}]})",
                              R"({"buckets": [{"windows": {}}]})"},
                    PruneCase{R"({"buckets": [{"windows": [{"slot": ["primary"]}, 7]}]})",
                              R"({"buckets": [{"windows": [{"slot": []}, 7]}]})"},
                    PruneCase{R"({"buckets": [{"id": {"buckets": [1]}}]})", R"({"buckets": [{"id": {}}]})"},
                    PruneCase{R"({"extra": {"buckets": [{"id": "codex"}]}})", R"({})"},
                    PruneCase{R"({"padding": [[[[1]]]], "buckets": []})", R"({"buckets": []})"}));

// Dropping what is never read changes nothing that is shown.
class DecodedAndFullDocuments : public testing::TestWithParam<const char*> {};

TEST_P(DecodedAndFullDocuments, AreShownAlike)
{
    const UsageContext context{1752575400, "Europe/Prague", "cs_CZ", "Mac"};
    const auto decoded = decodeLimitsDocument(GetParam());
    ASSERT_TRUE(decoded.has_value());
    EXPECT_EQ(interpretUsage(*decoded, context), interpretUsage(nlohmann::json::parse(GetParam()), context));
}

INSTANTIATE_TEST_SUITE_P(
    LimitsDocument, DecodedAndFullDocuments,
    testing::Values(
        R"({})", R"({"buckets": [{"id": "codex"}, 1]})", R"({"buckets": [[{"id": "codex"}]]})",
        R"({"buckets": {"0": {"id": "codex"}}})", R"({"observedAt": {"x": 1}, "buckets": [{}]})",
        R"({"buckets": [{"id": "other", "creditBalance": "A"}, {"id": "codex", "creditBalance": "B", "x": [1]}]})",
        R"({"buckets": [{"windows": [{"slot": "primary", "remainingPercent": 3}, ["secondary"]]}]})",
        R"({"buckets": [{"windows": [{"slot": "secondary", "windowDurationMins": 90, "resetsAt": 1736937000,
                                      "resetPending": true, "remainingPercent": 40, "note": {"a": [1]}}]}]})",
        R"({"buckets": [{"spendControlReached": {"v": true}, "limitReached": true}], "observedAt": 1736937000})"));

} // namespace
} // namespace vantrel::limits
