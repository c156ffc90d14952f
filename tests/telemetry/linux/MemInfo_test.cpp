#include "Vantrel/telemetry/linux/MemInfo.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace vantrel::linux_source {
namespace {

const std::string base = "MemTotal:       1000 kB\n"
                         "MemFree:         100 kB\n"
                         "Active:          100 kB\n"
                         "Active(anon):     70 kB\n"
                         "Inactive:        300 kB\n"
                         "Unevictable:      10 kB\n"
                         "Zswap:            20 kB\n"
                         "Zswapped:         80 kB\n"
                         "SUnreclaim:       30 kB\n"
                         "KernelStack:      40 kB\n"
                         "PageTables:       50 kB\n"
                         "SReclaimable:    500 kB\n";

std::string withLine(const std::string& name, const std::string& value)
{
    std::string text = base;
    const auto at = text.find("\n" + name + ":");
    const auto start = at == std::string::npos ? 0 : at + 1;
    const auto end = text.find('\n', start);
    return text.replace(start, end - start, name + ": " + value);
}

std::string without(const std::string& name)
{
    std::string text = base;
    const auto start = text.find(name + ":");
    return text.erase(start, text.find('\n', start) + 1 - start);
}

TEST(MemInfo, FieldsMapToActiveWiredCompressedAndTotal)
{
    const auto counts = parseMemInfo(base);
    ASSERT_TRUE(counts.has_value());
    EXPECT_EQ(counts->active, 100U);
    EXPECT_EQ(counts->wired, 10U + 30 + 40 + 50);
    EXPECT_EQ(counts->compressed, 20U);
    EXPECT_EQ(counts->unitBytes, 1024U);
    EXPECT_EQ(counts->totalBytes, 1000U * 1024);
}

TEST(MemInfo, EachNeededLineMovesTheRightPart)
{
    struct Case {
        const char* name;
        std::uint64_t active, wired, compressed;
    };
    const std::vector<Case> cases{
        {"Active", 101, 130, 20},       {"Unevictable", 100, 131, 20}, {"SUnreclaim", 100, 131, 20},
        {"KernelStack", 100, 131, 20},  {"PageTables", 100, 131, 20},  {"Zswap", 100, 130, 21},
        {"Active(anon)", 100, 130, 20}, {"Zswapped", 100, 130, 20},    {"SReclaimable", 100, 130, 20},
        {"Inactive", 100, 130, 20},     {"MemFree", 100, 130, 20},
    };
    for (const auto& c : cases) {
        const auto original = parseMemInfo(base);
        std::string text = base;
        const auto start = text.find(std::string("\n") + c.name + ":") + 1;
        const auto end = text.find('\n', start);
        const auto digits = text.find_last_of("0123456789", end);
        text[digits] = static_cast<char>(text[digits] + 1);
        const auto counts = parseMemInfo(text);
        ASSERT_TRUE(counts.has_value()) << c.name;
        EXPECT_EQ(counts->active, c.active) << c.name;
        EXPECT_EQ(counts->wired, c.wired) << c.name;
        EXPECT_EQ(counts->compressed, c.compressed) << c.name;
        EXPECT_EQ(counts->totalBytes, original->totalBytes) << c.name;
    }
}

TEST(MemInfo, MissingZswapCountsAsNoCompression)
{
    const auto counts = parseMemInfo(without("Zswap"));
    ASSERT_TRUE(counts.has_value());
    EXPECT_EQ(counts->compressed, 0U);
}

TEST(MemInfo, MissingOrZeroTotalOrAnyOtherNeededLineIsAbsent)
{
    EXPECT_FALSE(parseMemInfo(withLine("MemTotal", "0 kB")).has_value());
    for (const char* name : {"MemTotal", "Active", "Unevictable", "SUnreclaim", "KernelStack", "PageTables"})
        EXPECT_FALSE(parseMemInfo(without(name)).has_value()) << name;
    EXPECT_FALSE(parseMemInfo(withLine("Active", "lots kB")).has_value());
    EXPECT_FALSE(parseMemInfo("").has_value());
}

} // namespace
} // namespace vantrel::linux_source
