#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <array>
#include <cstdio>
#include <regex>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

struct ProgramRun {
    std::string output;
    int status = -1;
};

// Runs the built program without a display, so a normal start can never open a window, and with a kill
// timer, so a normal start that waits for a display cannot hang the test.
ProgramRun runVantrel(const std::string& arguments)
{
    const std::string command = "env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=xcb timeout -s KILL 30 '" +
                                std::string(VANTREL_EXECUTABLE) + "' " + arguments + " 2>/dev/null";
    ProgramRun run;
    FILE* pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr)
        return run;
    std::array<char, 4096> chunk{};
    std::size_t got = 0;
    while ((got = std::fread(chunk.data(), 1, chunk.size(), pipe)) > 0)
        run.output.append(chunk.data(), got);
    const int status = ::pclose(pipe);
    run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

TEST(SampleModeBinary, PrintsTheWholeRecordInShape)
{
    const ProgramRun run = runVantrel("--sample");
    EXPECT_EQ(run.status, 0);
    const std::string& text = run.output;
    ASSERT_GE(text.size(), 2U);
    // One line feed ends the output, and only one.
    EXPECT_EQ(text.back(), '\n');
    EXPECT_NE(text[text.size() - 2], '\n');

    // One member per line, two spaces of indentation per level, keys in ascending order.
    const std::vector<std::string> keys{
        "cpu",     "cpuCores",           "gpu", "gpuCoreCount", "gpuPerCoreAvailable",
        "network", "networkExplanation", "ram"};
    std::vector<std::string> seen;
    const std::regex member(R"re(^  "([A-Za-z]+)": (.*[^ ])$)re");
    const std::regex core(R"(^    (null|-?[0-9]+(\.[0-9]+)?([eE][-+]?[0-9]+)?),?$)");
    std::size_t lines = 0;
    std::size_t start = 0;
    while (start < text.size()) {
        const std::size_t end = text.find('\n', start);
        const std::string line = text.substr(start, end - start);
        start = end + 1;
        ++lines;
        std::smatch match;
        if (line == "{" || line == "}" || line == "  ]," || std::regex_match(line, core))
            continue;
        ASSERT_TRUE(std::regex_match(line, match, member)) << line;
        seen.push_back(match[1]);
    }
    EXPECT_EQ(seen, keys);
    EXPECT_GT(lines, keys.size() + 1);

    const auto record = nlohmann::json::parse(text);
    EXPECT_TRUE(record["cpu"].is_number());
    EXPECT_TRUE(record["ram"].is_number());
    EXPECT_TRUE(record["cpuCores"].is_array());
    EXPECT_EQ(record["gpuPerCoreAvailable"], false);
    // A slash inside a string is written escaped ("Mb/s" as "Mb\/s").
    std::string explanation = record["networkExplanation"];
    for (std::size_t at = explanation.find('/'); at != std::string::npos; at = explanation.find('/', at + 2))
        explanation.replace(at, 1, "\\/");
    EXPECT_NE(text.find("  \"networkExplanation\": \"" + explanation + "\",\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("NaN"), std::string::npos);
}

TEST(SampleModeBinary, DashDashSampleAnywhereSelectsTheMode)
{
    for (const char* arguments : {"--verbose x --sample", "--sample=1 --sample -sample"}) {
        const ProgramRun run = runVantrel(arguments);
        EXPECT_EQ(run.status, 0) << arguments;
        EXPECT_TRUE(nlohmann::json::parse(run.output).is_object()) << arguments;
        EXPECT_EQ(run.output.front(), '{') << arguments;
    }
}

TEST(SampleModeBinary, LookAlikesStartTheApplicationInstead)
{
    for (const char* arguments : {"--sample=1", "-sample", "--Sample", ""}) {
        const ProgramRun run = runVantrel(arguments);
        EXPECT_EQ(run.output.find('{'), std::string::npos) << arguments << ": " << run.output;
        EXPECT_EQ(run.output.find("\"cpu\""), std::string::npos) << arguments;
    }
}

} // namespace
