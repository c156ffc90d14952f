#include "Vantrel/telemetry/PrimaryInterface.h"

#include <gtest/gtest.h>

#include "tests/telemetry/Properties.h"
#include <vector>

namespace vantrel {
namespace {

using namespace testing;

// "State:/Network/Global/IPv4" and "…/IPv6" as configd publishes them.
PropertyValue globalState(PropertyValue primaryInterface)
{
    return dictionary({{"PrimaryService", text("5F3C8A2E-0000-4000-8000-000000000001")},
                       {"Router", text("192.168.1.1")},
                       {primaryInterfaceKey, std::move(primaryInterface)}});
}

TEST(PrimaryInterface, ChoosesTheInterfaceOfEachStateAsTheRulesSay)
{
    struct Case {
        PropertyValue ipv4;
        PropertyValue ipv6;
        std::optional<std::string> expected;
        const char* what;
    };
    const std::vector<Case> cases{
        {globalState(text("en0")), globalState(text("en1")), "en0", "IPv4 first"},
        {globalState(text("en0")), absent(), "en0", "IPv4 only"},
        {absent(), globalState(text("en1")), "en1", "IPv4 state missing, IPv6 has one"},
        {dictionary({{"Router", text("192.168.1.1")}}), globalState(text("en1")), "en1",
         "IPv4 without the entry"},
        {otherKind(), globalState(text("en1")), "en1", "IPv4 state of another kind"},
        {text("en0"), globalState(text("en1")), "en1", "IPv4 state that is text"},
        {withOtherKey(globalState(text("en0")), integer(4)), globalState(text("en1")), "en1",
         "IPv4 state with a key that is not text"},
        {globalState(integer(4)), globalState(text("en1")), std::nullopt, "IPv4 entry that is not text"},
        {absent(), globalState(integer(6)), std::nullopt, "IPv6 entry that is not text"},
        {absent(), absent(), std::nullopt, "neither state"},
        {dictionary({}), dictionary({}), std::nullopt, "neither entry"},
        {absent(), withOtherKey(globalState(text("en1")), real(1)), std::nullopt,
         "IPv6 state with a key that is not text"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(primaryInterfaceName(c.ipv4, c.ipv6), c.expected) << c.what;
}

TEST(PrimaryInterface, TheNameIsTakenAsItIs)
{
    EXPECT_EQ(primaryInterfaceName(globalState(text("utun3")), absent()), "utun3");
    EXPECT_EQ(primaryInterfaceName(globalState(text("")), absent()), "");
}

} // namespace
} // namespace vantrel
