#include "Vantrel/limits/DateFormatting.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

namespace vantrel::limits {
namespace {

constexpr const char* resetPattern = "d. M. HH:mm z";

// 2025-01-15 10:30 UTC and 2025-07-15 10:30 UTC.
constexpr double winter = 1736937000;
constexpr double summer = 1752575400;

TEST(DateFormatting, CzechShortZoneNamesForPrague)
{
    EXPECT_EQ(formatInstant(winter, "z", "cs_CZ", "Europe/Prague"), "SEČ");
    EXPECT_EQ(formatInstant(summer, "z", "cs_CZ", "Europe/Prague"), "SELČ");
}

struct InstantCase {
    double seconds;
    const char* pattern;
    const char* locale;
    const char* zone;
    const char* expected;
};

class Instants : public testing::TestWithParam<InstantCase> {};

TEST_P(Instants, FollowPatternLocaleAndZone)
{
    const InstantCase& c = GetParam();
    EXPECT_EQ(formatInstant(c.seconds, c.pattern, c.locale, c.zone), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    DateFormatting, Instants,
    testing::Values(InstantCase{winter, resetPattern, "cs_CZ", "Europe/Prague", "15. 1. 11:30 SEČ"},
                    InstantCase{summer, resetPattern, "cs_CZ", "Europe/Prague", "15. 7. 12:30 SELČ"},
                    // Day and month without leading zeros, hours with one.
                    InstantCase{1738371900, resetPattern, "cs_CZ", "Europe/Prague", "1. 2. 02:05 SEČ"},
                    InstantCase{summer, resetPattern, "cs_CZ", "America/New_York", "15. 7. 06:30 EDT"},
                    InstantCase{summer, resetPattern, "cs_CZ", "UTC", "15. 7. 10:30 UTC"},
                    // Fractions of a second and of a minute are cut, not rounded.
                    InstantCase{summer + 59.999, "HH:mm", "cs_CZ", "Europe/Prague", "12:30"},
                    InstantCase{summer, "HH:mm", "en_US", "Europe/Prague", "12:30"},
                    InstantCase{summer + 12 * 3600, "HH:mm", "en_US", "Europe/Prague", "00:30"},
                    InstantCase{summer, "HH:mm", "ar_EG", "Europe/Prague", "١٢:٣٠"},
                    InstantCase{0, "HH:mm", "cs_CZ", "UTC", "00:00"},
                    InstantCase{-60, "HH:mm", "cs_CZ", "UTC", "23:59"}));

TEST(DateFormatting, RepeatedAndInterleavedFormattersStayApart)
{
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(formatInstant(summer, "HH:mm", "cs_CZ", "UTC"), "10:30");
        EXPECT_EQ(formatInstant(summer, "HH:mm", "cs_CZ", "Europe/Prague"), "12:30");
        EXPECT_EQ(formatInstant(summer, resetPattern, "cs_CZ", "Europe/Prague"), "15. 7. 12:30 SELČ");
    }
}

// Restores TZ when the test ends.
class ScopedTimeZone {
public:
    explicit ScopedTimeZone(const char* zone)
    {
        if (const char* previous = std::getenv("TZ")) {
            previous_ = previous;
        }
        setenv("TZ", zone, 1);
    }
    ~ScopedTimeZone()
    {
        if (previous_) {
            setenv("TZ", previous_->c_str(), 1);
        } else {
            unsetenv("TZ");
        }
    }
    ScopedTimeZone(const ScopedTimeZone&) = delete;
    ScopedTimeZone& operator=(const ScopedTimeZone&) = delete;
    ScopedTimeZone(ScopedTimeZone&&) = delete;
    ScopedTimeZone& operator=(ScopedTimeZone&&) = delete;

private:
    std::optional<std::string> previous_;
};

TEST(DateFormatting, SystemZoneIsTheOneSetNow)
{
    {
        const ScopedTimeZone zone("Europe/Prague");
        EXPECT_EQ(systemTimeZoneId(), "Europe/Prague");
    }
    const ScopedTimeZone zone("America/New_York");
    EXPECT_EQ(systemTimeZoneId(), "America/New_York");
}

TEST(DateFormatting, UserLocaleIsNamed)
{
    EXPECT_FALSE(userLocaleId().empty());
}

} // namespace
} // namespace vantrel::limits
