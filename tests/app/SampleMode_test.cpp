#include "Vantrel/app/SampleMode.h"
#include "Vantrel/telemetry/SystemSampler.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tests/telemetry/FixtureTree.h"
#include <sstream>
#include <string>
#include <vector>

namespace vantrel {
namespace {

using testing::FixtureTree;

bool selects(std::vector<std::string> arguments)
{
    std::vector<char*> pointers;
    pointers.reserve(arguments.size());
    for (auto& argument : arguments)
        pointers.push_back(argument.data());
    return selectsSampleMode(pointers);
}

TEST(SampleMode, ExactlyDashDashSampleAnywhereSelectsIt)
{
    struct Case {
        std::vector<std::string> arguments;
        bool selected;
    };
    const std::vector<Case> cases{
        {{"vantrel", "--sample"}, true},
        {{"vantrel", "--sample", "--verbose", "x"}, true},
        {{"vantrel", "x", "-v", "--sample"}, true},
        {{"--sample"}, true}, // the program path is an argument like any other
        {{"vantrel"}, false},
        {{"vantrel", "--sample=1"}, false},
        {{"vantrel", "-sample"}, false},
        {{"vantrel", "--Sample"}, false},
        {{"vantrel", "--SAMPLE"}, false},
        {{"vantrel", "--sample "}, false},
        {{"vantrel", "sample"}, false},
        {{}, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(selects(c.arguments), c.selected) << ::testing::PrintToString(c.arguments);
}

TEST(SampleMode, PrintsOnlyTheSecondReadingAndOneLineFeed)
{
    FixtureTree tree("machine");
    PlatformOptions options;
    options.root = tree.root();
    auto clock = std::make_shared<double>(10.0);
    options.uptime = [clock] { return *clock; };
    options.loadGpuDriverLibraries = false;
    SystemSampler sampler{PlatformSource(options)};

    int waits = 0;
    const auto wait = [&] {
        ++waits;
        // Between the two readings the machine changes: only the later state may be printed.
        tree.write("proc/meminfo", "MemTotal: 1000 kB\nActive: 500 kB\nUnevictable: 0 kB\nSUnreclaim: 0 kB\n"
                                   "KernelStack: 0 kB\nPageTables: 0 kB\n");
        *clock += 1.0;
    };
    std::ostringstream out;
    EXPECT_EQ(runSampleMode(sampler, wait, out), 0);
    EXPECT_EQ(waits, 1);

    const std::string text = out.str();
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text.back(), '\n');
    EXPECT_NE(text[text.size() - 2], '\n');
    EXPECT_EQ(text.find("\n\n"), std::string::npos);
    const auto record = nlohmann::json::parse(text);
    EXPECT_EQ(record["ram"], 50.0);
    EXPECT_EQ(record["cpu"], 0.0);
    EXPECT_EQ(record["network"], 0.0);
    EXPECT_EQ(record["cpuCores"], nlohmann::json::parse("[0.0, 0.0]"));
}

} // namespace
} // namespace vantrel
