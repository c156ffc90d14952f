#include "Vantrel/telemetry/linux/KernelFile.h"
#include "Vantrel/telemetry/linux/ProcStat.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vantrel::linux_source {
namespace {

std::string cpuLine(const std::string& name, const std::string& columns)
{
    return name + " " + columns + "\n";
}

TEST(ProcStat, EachColumnMovesItsState)
{
    // Columns: user nice system idle iowait irq softirq steal guest guest_nice.
    struct Case {
        const char* columns;
        TickVector ticks; // user, system, idle, nice
    };
    const std::vector<Case> cases{
        {"1 0 0 0 0 0 0 0 0 0", {1, 0, 0, 0}},
        {"0 1 0 0 0 0 0 0 0 0", {0, 0, 0, 1}},
        {"0 0 1 0 0 0 0 0 0 0", {0, 1, 0, 0}},
        {"0 0 0 1 0 0 0 0 0 0", {0, 0, 1, 0}},
        {"0 0 0 0 1 0 0 0 0 0", {0, 0, 1, 0}},
        {"0 0 0 0 0 1 0 0 0 0", {0, 1, 0, 0}},
        {"0 0 0 0 0 0 1 0 0 0", {0, 1, 0, 0}},
        {"0 0 0 0 0 0 0 1 0 0", {0, 1, 0, 0}},
        {"0 0 0 0 0 0 0 0 1 0", {0, 0, 0, 0}},
        {"0 0 0 0 0 0 0 0 0 1", {0, 0, 0, 0}},
        {"10 20 30 40 50 60 70 80 90 99", {10, 30 + 60 + 70 + 80, 40 + 50, 20}},
    };
    for (const auto& c : cases) {
        const CpuTicks ticks = parseProcStat(cpuLine("cpu ", c.columns) + cpuLine("cpu0", c.columns));
        EXPECT_EQ(ticks.machine, c.ticks) << c.columns;
        ASSERT_TRUE(ticks.cores.has_value());
        EXPECT_EQ(ticks.cores->front(), c.ticks) << c.columns;
    }
}

TEST(ProcStat, CountersKeepTheirLow32Bits)
{
    const CpuTicks ticks = parseProcStat("cpu  4294967301 0 4294967295 0 1 0 0 0 0 0\n");
    EXPECT_EQ(ticks.machine, (TickVector{5, 4294967295U, 1, 0}));
    const CpuTicks summed = parseProcStat("cpu  0 0 4294967295 0 0 2 0 0 0 0\n");
    EXPECT_EQ(summed.machine, (TickVector{0, 1, 0, 0}));
}

TEST(ProcStat, CoresInFileOrder)
{
    const CpuTicks ticks =
        parseProcStat("cpu  6 0 0 0\ncpu3 3 0 0 0\ncpu0 1 0 0 0\ncpu1 2 0 0 0\nintr 5 5\n");
    ASSERT_TRUE(ticks.cores.has_value());
    ASSERT_EQ(ticks.cores->size(), 3U);
    EXPECT_EQ((*ticks.cores)[0][0], 3U);
    EXPECT_EQ((*ticks.cores)[1][0], 1U);
    EXPECT_EQ((*ticks.cores)[2][0], 2U);
}

TEST(ProcStat, OlderKernelsWithFourColumns)
{
    EXPECT_EQ(parseProcStat("cpu  1 2 3 4\n").machine, (TickVector{1, 3, 4, 2}));
}

TEST(ProcStat, MalformedLinesAreAbsent)
{
    struct Case {
        const char* text;
        bool machine;
        bool cores;
    };
    const std::vector<Case> cases{
        {"cpu  1 2 3\ncpu0 1 2 3 4\n", false, true},
        {"cpu  1 2 3 4\ncpu0 1 2 x 4\ncpu1 1 2 3 4\n", true, false},
        {"cpu  1 2 3 4\ncpu0 1 2 -3 4\n", true, false},
        {"cpu  1 2 3 4\n", true, false},
        {"cpu  1 2 3 4 99999999999999999999999\ncpu0 1 2 3 4\n", false, true},
        {"", false, false},
        {"intr 1 2 3\ncpu  1 2 3 4\n", false, false},
        {"garbage\x01\xff", false, false},
    };
    for (const auto& c : cases) {
        const CpuTicks ticks = parseProcStat(c.text);
        EXPECT_EQ(ticks.machine.has_value(), c.machine) << c.text;
        EXPECT_EQ(ticks.cores.has_value(), c.cores) << c.text;
    }
}

TEST(ProcStat, OneHundredTwentyEightCores)
{
    const auto text = readWholeFile(std::string(VANTREL_FIXTURES) + "/telemetry/stat-128-cores/proc/stat");
    ASSERT_TRUE(text.has_value());
    const CpuTicks ticks = parseProcStat(*text);
    ASSERT_TRUE(ticks.cores.has_value());
    ASSERT_EQ(ticks.cores->size(), 128U);
    EXPECT_EQ(ticks.cores->back(), (TickVector{1127, 500 + 254 + 5 + 40, 90000 - 127 + 30, 10}));
}

} // namespace
} // namespace vantrel::linux_source
