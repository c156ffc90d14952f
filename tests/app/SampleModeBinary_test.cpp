#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cstdio>
#include <filesystem>
#include <regex>
#include <string>
#include <sys/wait.h>
#include <vector>

namespace {

struct ProgramRun {
    std::string output;
    int status = -1;
};

// Runs a program without a display, so a normal start can never open a window, and with a kill timer, so
// a normal start that waits for a display cannot hang the test. Standard error is kept only when asked.
ProgramRun runProgram(const std::filesystem::path& executable, const std::string& arguments,
                      bool withErrors = false)
{
    const std::string command = "env -u DISPLAY -u WAYLAND_DISPLAY QT_QPA_PLATFORM=xcb timeout -s KILL 30 '" +
                                executable.string() + "' " + arguments +
                                (withErrors ? " 2>&1" : " 2>/dev/null");
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

ProgramRun runVantrel(const std::string& arguments)
{
    return runProgram(VANTREL_EXECUTABLE, arguments);
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

// The executable alone, without the panel module beside it: the sample mode needs none of the panel's
// libraries, and the normal start says in one line what is missing.
TEST(SampleModeBinary, SamplesWithoutThePanelModule)
{
    const std::filesystem::path directory =
        std::filesystem::path(testing::TempDir()) / "vantrel-alone" / "bin";
    std::filesystem::create_directories(directory);
    const std::filesystem::path executable = directory / "vantrel";
    std::filesystem::copy_file(VANTREL_EXECUTABLE, executable,
                               std::filesystem::copy_options::overwrite_existing);

    const ProgramRun sample = runProgram(executable, "--sample");
    EXPECT_EQ(sample.status, 0);
    EXPECT_TRUE(nlohmann::json::parse(sample.output).is_object());

    const ProgramRun start = runProgram(executable, "", true);
    EXPECT_EQ(start.status, 1);
    EXPECT_EQ(start.output.rfind("vantrel: cannot load the panel: ", 0), 0U) << start.output;
    EXPECT_NE(start.output.find("lib/vantrel/vantrel_panel.so"), std::string::npos) << start.output;
    EXPECT_EQ(std::count(start.output.begin(), start.output.end(), '\n'), 1) << start.output;
}

} // namespace
