#include "Vantrel/app/linux/DesktopEntryNames.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gio/gio.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace vantrel {
namespace {

namespace fs = std::filesystem;

// GLib reads the data directories once per process: they are set before any test looks anything up, the
// user's directory as a copy the tests may write to. The language comes from the test's environment
// (LANG), which the build runs once in Czech and once without a language.
class DesktopEntryTrees : public testing::Environment {
public:
    void SetUp() override
    {
        home = fs::temp_directory_path() / ("vantrel-entries-" + std::to_string(getpid()));
        fs::create_directories(home);
        fs::copy(VANTREL_FIXTURES "/app/xdg/home", home, fs::copy_options::recursive);
        setenv("XDG_DATA_HOME", home.c_str(), 1);
        setenv("XDG_DATA_DIRS", VANTREL_FIXTURES "/app/xdg/data", 1);
    }
    void TearDown() override { fs::remove_all(home); }

    static inline fs::path home;
};

const auto* const trees = testing::AddGlobalTestEnvironment(new DesktopEntryTrees);

bool inCzech()
{
    const char* language = std::getenv("LANG");
    return language != nullptr && std::string(language).starts_with("cs");
}

FrontmostWindow window(const char* appId, const char* instance = "")
{
    FrontmostWindow result;
    result.appId = appId;
    result.instanceName = instance;
    return result;
}

struct EntryCase {
    const char* description;
    FrontmostWindow window;
    std::optional<std::string> name;      // without a language
    std::optional<std::string> czechName; // with LANG=cs_CZ.UTF-8
};

class DesktopEntryNameTest : public testing::TestWithParam<EntryCase> {};

TEST_P(DesktopEntryNameTest, FindsTheEntryAndItsNameInTheUsersLanguage)
{
    DesktopEntryNames names;
    const EntryCase& entry = GetParam();
    EXPECT_EQ(names.nameFor(entry.window), inCzech() ? entry.czechName : entry.name) << entry.description;
}

const std::optional<std::string> none;

INSTANTIATE_TEST_SUITE_P(
    Windows, DesktopEntryNameTest,
    testing::Values(
        EntryCase{"a Wayland app_id names the file", window("org.example.Notes"), "Notes", "Poznámky"},
        EntryCase{"an X11 class names the file", window("codex-desktop"), "Codex", "Codex"},
        EntryCase{"an X11 instance names the file", window("Codex", "codex-desktop"), "Codex", "Codex"},
        EntryCase{"a class in capitals names the file in lower case", window("Codex-Desktop"), "Codex",
                  "Codex"},
        EntryCase{"StartupWMClass before the file named after the class", window("CodexNightly"),
                  "Codex Nightly", "Codex Nightly"},
        EntryCase{"StartupWMClass of the instance", window("Other", "CodexNightly"), "Codex Nightly",
                  "Codex Nightly"},
        EntryCase{"the user's entry before the system's", window("chatgpt"), "ChatGPT", "ChatGPT"},
        EntryCase{"a name in other letter case is kept as it is", window("codex-cli"), "codex", "codex"},
        EntryCase{"an entry kept out of menus still names its windows", window("helper"), "ChatGPT",
                  "ChatGPT"},
        EntryCase{"an entry the user hid is removed", window("retired"), none, none},
        EntryCase{"a broken entry", window("broken"), none, none},
        EntryCase{"an entry that is no application", window("link"), none, none},
        EntryCase{"an entry that is no text", window("binary"), none, none},
        EntryCase{"no entry", window("Unknown", "unknown"), none, none},
        EntryCase{"an empty identity", window(""), none, none}));

TEST(DesktopEntryNames, LooksEachIdentityUpOnce)
{
    DesktopEntryNames names;
    EXPECT_EQ(names.nameFor(window("codex-desktop")), "Codex");
    EXPECT_EQ(names.nameFor(window("Unknown")), none);
    EXPECT_EQ(names.lookups(), 2);
    EXPECT_EQ(names.nameFor(window("codex-desktop")), "Codex");
    EXPECT_EQ(names.nameFor(window("Unknown")), none);
    EXPECT_EQ(names.lookups(), 2);
    EXPECT_EQ(names.nameFor(window("codex-desktop", "codex")), "Codex");
    EXPECT_EQ(names.lookups(), 3);
}

TEST(DesktopEntryNames, AnEntryInstalledLaterIsFoundOnceTheDirectoriesSayTheyChanged)
{
    DesktopEntryNames names;
    EXPECT_EQ(names.nameFor(window("late")), none);
    {
        std::ofstream entry(DesktopEntryTrees::home / "applications" / "late.desktop");
        entry << "[Desktop Entry]\nType=Application\nName=Codex\nExec=true\n";
    }
    // The news arrives through GLib's main loop, which the application's event loop runs.
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    std::optional<std::string> found;
    while (!(found = names.nameFor(window("late"))) && std::chrono::steady_clock::now() < deadline) {
        g_main_context_iteration(nullptr, FALSE);
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_EQ(found, "Codex");
    fs::remove(DesktopEntryTrees::home / "applications" / "late.desktop");
}

} // namespace
} // namespace vantrel
