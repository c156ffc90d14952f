#include "Vantrel/telemetry/TelemetryPresentation.h"

#include <gtest/gtest.h>

#include <vector>

namespace vantrel {
namespace {

std::string coreTooltip(int number)
{
    return "Logické jádro CPU " + std::to_string(number) + ", poslední interval.";
}

TEST(TelemetryPresentation, PerCoreValuesAndNumberedTooltips)
{
    SampleRecord record;
    record.cpuCores = {12.5, std::nullopt, 40.0};
    const auto shown = presentSample(record, 3);
    EXPECT_FALSE(shown.rebuildCoreGridWith.has_value());
    ASSERT_EQ(shown.cores.size(), 3U);
    EXPECT_EQ(shown.cores[0].value, 12.5);
    EXPECT_FALSE(shown.cores[1].value.has_value());
    EXPECT_EQ(shown.cores[2].value, 40.0);
    for (int core = 0; core < 3; ++core)
        EXPECT_EQ(shown.cores[static_cast<std::size_t>(core)].tooltip, coreTooltip(core + 1));
}

TEST(TelemetryPresentation, EmptyPerCoreListKeepsTheGridAndShowsItUnavailable)
{
    SampleRecord record;
    const auto shown = presentSample(record, 4);
    EXPECT_FALSE(shown.rebuildCoreGridWith.has_value());
    ASSERT_EQ(shown.cores.size(), 4U);
    for (std::size_t core = 0; core < 4; ++core) {
        EXPECT_FALSE(shown.cores[core].value.has_value());
        EXPECT_EQ(shown.cores[core].tooltip, coreTooltip(static_cast<int>(core) + 1));
    }
}

TEST(TelemetryPresentation, ChangedCoreCountRebuildsTheGrid)
{
    SampleRecord record;
    record.cpuCores = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
    const auto shown = presentSample(record, 4);
    EXPECT_EQ(shown.rebuildCoreGridWith, 6U);
    ASSERT_EQ(shown.cores.size(), 6U);
    EXPECT_EQ(shown.cores[5].value, 6.0);
    EXPECT_EQ(shown.cores[5].tooltip, coreTooltip(6));
    record.cpuCores.resize(2);
    EXPECT_EQ(presentSample(record, 4).rebuildCoreGridWith, 2U);
}

TEST(TelemetryPresentation, SummaryRowsCarryTheirValuesAndTooltips)
{
    SampleRecord record;
    record.cpu = 33.0;
    record.ram = 44.0;
    record.networkExplanation = "První vzorek: eth0, 1000 Mb/s.";
    const auto shown = presentSample(record, 0);
    EXPECT_EQ(shown.cpu.value, 33.0);
    EXPECT_EQ(shown.cpu.tooltip, "Vytížení všech jader CPU za poslední interval.");
    EXPECT_EQ(shown.ram.value, 44.0);
    EXPECT_EQ(
        shown.ram.tooltip,
        "Aktivní + wired + komprimované fyzické stránky / celková RAM. Nejde o indikátor tlaku na paměť.");
    EXPECT_FALSE(shown.gpu.value.has_value());
    EXPECT_EQ(shown.gpu.tooltip,
              "Vytížení GPU hlášené ovladačem; u více GPU maximum. Některé ovladače údaj neposkytují.");
    EXPECT_FALSE(shown.network.value.has_value());
    EXPECT_EQ(shown.network.tooltip, "První vzorek: eth0, 1000 Mb/s.");
}

TEST(TelemetryPresentation, UnknownLinkSpeedShowsItsExplanationAsTooltip)
{
    SampleRecord record;
    record.networkExplanation = "eth0: systém neudává kapacitu linky. Procento nelze určit.";
    const auto shown = presentSample(record, 2);
    EXPECT_FALSE(shown.network.value.has_value());
    EXPECT_EQ(shown.network.tooltip, "eth0: systém neudává kapacitu linky. Procento nelze určit.");
}

TEST(StalenessWarning, WhenTheLimitsAreOldOrTheFetchFailed)
{
    struct Case {
        std::optional<double> lastUsage;
        bool failed = false;
        double now = 0;
        std::optional<std::string> expected;
    };
    const std::vector<Case> cases{
        {1000.0, false, 1150.0, "Limity: starší údaj (2 min) · nelze obnovit"},
        {1000.0, true, 1030.0, "Limity: starší údaj (0 min) · nelze obnovit"},
        {1000.0, false, 1120.0, std::nullopt},
        {1000.0, false, 1120.9, std::nullopt}, // 120 whole seconds
        {1000.0, false, 1121.0, "Limity: starší údaj (2 min) · nelze obnovit"},
        {1000.0, false, 1000.0 + 3600 * 5 + 59, "Limity: starší údaj (300 min) · nelze obnovit"},
        {std::nullopt, true, 5000.0, std::nullopt},
    };
    for (const auto& c : cases)
        EXPECT_EQ(stalenessWarning(c.lastUsage, c.failed, c.now), c.expected)
            << c.now - c.lastUsage.value_or(0) << " s, failed " << c.failed;
}

} // namespace
} // namespace vantrel
