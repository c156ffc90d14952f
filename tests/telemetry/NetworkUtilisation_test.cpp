#include "Vantrel/telemetry/NetworkUtilisation.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

const std::string figureSentence =
    " Mb/s. Vytížení = vyšší z příjmu a odesílání / rychlost linky; nejde o rychlost internetového tarifu.";

InterfaceSample link(std::string name, std::uint64_t received, std::uint64_t sent, std::uint64_t speed)
{
    return InterfaceSample{std::move(name), received, sent, speed};
}

TEST(NetworkUtilisation, BusierDirectionOverLinkSpeed)
{
    const auto previous = link("en0", 1'000, 5'000, 1'000'000'000);
    const auto current = link("en0", 1'000 + 25'000'000, 5'000 + 1'000'000, 1'000'000'000);
    const auto reading = networkUtilisation(current, previous, 10.0, 12.0);
    ASSERT_TRUE(reading.utilisation.has_value());
    EXPECT_DOUBLE_EQ(*reading.utilisation, 10.0);
    EXPECT_EQ(reading.explanation, "en0: 1000" + figureSentence);
}

TEST(NetworkUtilisation, SendingCanBeTheBusierDirection)
{
    const auto reading = networkUtilisation(link("en0", 0, 50'000'000, 1'000'000'000),
                                            link("en0", 0, 0, 1'000'000'000), 0.0, 2.0);
    EXPECT_DOUBLE_EQ(*reading.utilisation, 20.0);
}

TEST(NetworkUtilisation, BurstAboveTheLinkSpeedIsExactly100)
{
    const auto reading =
        networkUtilisation(link("en0", 500'000'000, 0, 1'000'000), link("en0", 0, 0, 1'000'000), 1.0, 2.0);
    EXPECT_EQ(reading.utilisation, 100.0);
}

TEST(NetworkUtilisation, SpeedIsShownInWholeMegabitsTruncated)
{
    struct Case {
        std::uint64_t speed;
        std::string megabits;
    };
    for (const auto& c : {Case{866'700'000, "866"}, Case{500'000, "0"}, Case{1'000'000'000, "1000"}}) {
        const auto first = networkUtilisation(link("en0", 0, 0, c.speed), std::nullopt, 0.0, 1.0);
        EXPECT_EQ(first.explanation, "První vzorek: en0, " + c.megabits + " Mb/s.");
        const auto second =
            networkUtilisation(link("en0", 0, 0, c.speed), link("en0", 0, 0, c.speed), 0.0, 1.0);
        EXPECT_EQ(second.explanation, "en0: " + c.megabits + figureSentence);
    }
}

TEST(NetworkUtilisation, NoIntervalToMeasureGivesTheFirstSampleText)
{
    struct Case {
        const char* why = "";
        std::optional<InterfaceSample> previous;
        double previousTime = 0;
        InterfaceSample current;
    };
    const std::vector<Case> cases{
        {"first reading", std::nullopt, 1.0, link("en0", 10, 10, 100'000'000)},
        {"other interface", link("en1", 0, 0, 100'000'000), 1.0, link("en0", 10, 10, 100'000'000)},
        {"same instant", link("en0", 0, 0, 100'000'000), 2.0, link("en0", 10, 10, 100'000'000)},
        {"clock went back", link("en0", 0, 0, 100'000'000), 3.0, link("en0", 10, 10, 100'000'000)},
        {"received went down", link("en0", 20, 0, 100'000'000), 1.0, link("en0", 10, 10, 100'000'000)},
        {"sent went down", link("en0", 0, 20, 100'000'000), 1.0, link("en0", 10, 10, 100'000'000)},
    };
    for (const auto& c : cases) {
        const auto reading = networkUtilisation(c.current, c.previous, c.previousTime, 2.0);
        EXPECT_FALSE(reading.utilisation.has_value()) << c.why;
        EXPECT_EQ(reading.explanation, "První vzorek: en0, 100 Mb/s.") << c.why;
    }
}

TEST(NetworkUtilisation, AfterAResetTheNextIntervalGivesAFigure)
{
    const auto before = link("en0", 5'000'000, 0, 8'000'000);
    const auto reset = link("en0", 0, 0, 8'000'000);
    const auto after = link("en0", 1'000'000, 0, 8'000'000);
    EXPECT_FALSE(networkUtilisation(reset, before, 0.0, 1.0).utilisation.has_value());
    EXPECT_EQ(networkUtilisation(after, reset, 1.0, 2.0).utilisation, 100.0);
}

TEST(NetworkUtilisation, NoInterfaceIsUnavailable)
{
    const auto reading = networkUtilisation(std::nullopt, link("en0", 0, 0, 1), 0.0, 1.0);
    EXPECT_FALSE(reading.utilisation.has_value());
    EXPECT_EQ(reading.explanation, "Rychlost aktivního síťového rozhraní není dostupná.");
}

TEST(NetworkUtilisation, UnknownLinkSpeedCannotGiveAPercentage)
{
    const auto reading = networkUtilisation(link("eth0", 100, 100, 0), link("eth0", 0, 0, 0), 0.0, 1.0);
    EXPECT_FALSE(reading.utilisation.has_value());
    EXPECT_EQ(reading.explanation, "eth0: systém neudává kapacitu linky. Procento nelze určit.");
}

} // namespace
} // namespace vantrel
