#include "Vantrel/telemetry/PropertyValue.h"

#include <gtest/gtest.h>

#include "tests/telemetry/Properties.h"
#include <cmath>
#include <limits>
#include <vector>

namespace vantrel {
namespace {

using namespace testing;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

TEST(PropertyValue, EntryOfATextKeyedDictionary)
{
    const PropertyValue statistics =
        dictionary({{"Renderer Utilization %", integer(3)}, {"Device Utilization %", integer(12)}});
    const PropertyValue* found = textKeyedEntry(statistics, "Device Utilization %");
    ASSERT_NE(found, nullptr);
    EXPECT_EQ(realOf(*found), 12.0);
    EXPECT_EQ(textKeyedEntry(statistics, "device utilization %"), nullptr);
    EXPECT_EQ(textKeyedEntry(statistics, "Device Utilization"), nullptr);
}

TEST(PropertyValue, NoEntryWhereThereIsNoTextKeyedDictionary)
{
    const std::vector<PropertyValue> notDictionaries{absent(), otherKind(), integer(1), real(1), text("Key")};
    for (const auto& value : notDictionaries)
        EXPECT_EQ(textKeyedEntry(value, "Key"), nullptr);
    // One key of another kind spoils the whole dictionary, the text-keyed entries included.
    for (const auto& key : {integer(7), real(7), otherKind(), absent()})
        EXPECT_EQ(textKeyedEntry(withOtherKey(dictionary({{"Key", integer(1)}}), key), "Key"), nullptr);
    EXPECT_EQ(textKeyedEntry(dictionary({}), "Key"), nullptr);
}

TEST(PropertyValue, OfTwoEqualKeysTheFirstIsRead)
{
    EXPECT_EQ(realOf(*textKeyedEntry(dictionary({{"Key", integer(1)}, {"Key", integer(2)}}), "Key")), 1.0);
}

TEST(PropertyValue, RealValueOfNumbersOnly)
{
    struct Case {
        PropertyValue value;
        std::optional<double> expected;
    };
    const std::vector<Case> cases{
        {integer(40), 40.0},         {integer(-1), -1.0},
        {real(12.5), 12.5},          {real(150), 150.0},
        {text("40"), std::nullopt},  {absent(), std::nullopt},
        {otherKind(), std::nullopt}, {dictionary({}), std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(realOf(c.value), c.expected);
    EXPECT_TRUE(std::isnan(*realOf(real(nan))));
}

TEST(PropertyValue, IntegerValueOfNumbersOnly)
{
    struct Case {
        PropertyValue value;
        std::optional<std::int64_t> expected;
    };
    const std::vector<Case> cases{
        {integer(16), 16},
        {integer(-3), -3},
        {real(16.0), 16},
        {real(16.9), 16},
        {real(-0.5), 0},
        {real(nan), std::nullopt},
        {real(infinity), std::nullopt},
        {real(-infinity), std::nullopt},
        {real(9223372036854775808.0), std::nullopt},
        {real(-9223372036854775808.0), std::numeric_limits<std::int64_t>::min()},
        {real(1e300), std::nullopt},
        {text("16"), std::nullopt},
        {absent(), std::nullopt},
        {otherKind(), std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(integerOf(c.value), c.expected) << ::testing::PrintToString(c.value.value.index());
}

TEST(PropertyValue, TextOfTextOnly)
{
    ASSERT_NE(textOf(text("en0")), nullptr);
    EXPECT_EQ(*textOf(text("en0")), "en0");
    EXPECT_EQ(textOf(integer(0)), nullptr);
    EXPECT_EQ(textOf(absent()), nullptr);
}

} // namespace
} // namespace vantrel
