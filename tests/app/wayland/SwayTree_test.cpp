#include "Vantrel/app/wayland/SwayTree.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace vantrel::sway {
namespace {

FrontmostWindow window(std::string appId, std::string instanceName, std::optional<std::int64_t> pid)
{
    FrontmostWindow result;
    result.appId = std::move(appId);
    result.instanceName = std::move(instanceName);
    result.pid = pid;
    return result;
}

std::string fixture(const char* name)
{
    std::ifstream file(std::string(VANTREL_FIXTURES) + "/app/wayland/" + name);
    std::ostringstream contents;
    contents << file.rdbuf();
    return contents.str();
}

// Trees that sway 1.7 gave with a native window of app_id "codex" (process 14685) and an XWayland window
// of class "Codex", instance "codex" (process 14694).
TEST(SwayTree, TheFocusedNativeWindowIsItsAppIdAndProcess)
{
    EXPECT_EQ(focusedWindow(fixture("sway-tree-native.json")), window("codex", "", 14685));
}

TEST(SwayTree, TheFocusedXWaylandWindowIsItsClassInstanceAndProcess)
{
    EXPECT_EQ(focusedWindow(fixture("sway-tree-x11.json")), window("Codex", "codex", 14694));
}

TEST(SwayTree, AnEmptyWorkspaceInFocusIsNoWindow)
{
    EXPECT_EQ(focusedWindow(fixture("sway-tree-empty.json")), std::nullopt);
}

struct TreeCase {
    const char* description;
    std::string json;
    std::optional<FrontmostWindow> expected;
};

class SwayTreeTest : public testing::TestWithParam<TreeCase> {};

TEST_P(SwayTreeTest, ReadsTheFocusedWindowOrNothing)
{
    EXPECT_EQ(focusedWindow(GetParam().json), GetParam().expected) << GetParam().description;
}

std::string deeplyNested(int depth)
{
    std::string json;
    for (int level = 0; level < depth; ++level) {
        json += R"({"nodes":[)";
    }
    json += R"({"type":"con","focused":true,"app_id":"codex"})";
    for (int level = 0; level < depth; ++level) {
        json += "]}";
    }
    return json;
}

INSTANTIATE_TEST_SUITE_P(
    Trees, SwayTreeTest,
    testing::Values(
        TreeCase{
            "a floating window",
            R"({"nodes":[],"floating_nodes":[{"type":"floating_con","focused":true,"app_id":"chatgpt","pid":7}]})",
            window("chatgpt", "", 7)},
        TreeCase{
            "the first focused node wins",
            R"({"nodes":[{"type":"con","focused":true,"app_id":"a"},{"type":"con","focused":true,"app_id":"b"}]})",
            window("a", "", std::nullopt)},
        TreeCase{"a window with a process but no identity yet",
                 R"({"nodes":[{"type":"con","focused":true,"app_id":null,"pid":12}]})", window("", "", 12)},
        TreeCase{"a window with neither",
                 R"({"nodes":[{"type":"con","focused":true,"app_id":null,"pid":0}]})", std::nullopt},
        TreeCase{"a focused workspace", R"({"nodes":[{"type":"workspace","focused":true,"name":"2"}]})",
                 std::nullopt},
        TreeCase{"nothing focused", R"({"nodes":[{"type":"con","focused":false,"app_id":"codex"}]})",
                 std::nullopt},
        TreeCase{"values of the wrong type",
                 R"({"nodes":[{"type":"con","focused":true,"app_id":5,"pid":"12",
                     "window_properties":{"class":"Codex","instance":["x"]}}]})",
                 window("Codex", "", std::nullopt)},
        TreeCase{"a negative process",
                 R"({"nodes":[{"type":"con","focused":true,"app_id":"codex","pid":-3}]})",
                 window("codex", "", std::nullopt)},
        TreeCase{"children that are not a list", R"({"nodes":{"type":"con","focused":true,"app_id":"x"}})",
                 std::nullopt},
        TreeCase{"an array", R"([{"type":"con","focused":true,"app_id":"codex"}])", std::nullopt},
        TreeCase{"not JSON", "i3-ipc garbage", std::nullopt}, TreeCase{"nothing", "", std::nullopt},
        TreeCase{"a truncated tree", R"({"nodes":[{"type":"con","focused":true,"app_id":"co)", std::nullopt},
        TreeCase{"nesting sway never makes", deeplyNested(200), std::nullopt},
        TreeCase{"nesting sway does make", deeplyNested(10), window("codex", "", std::nullopt)}));

} // namespace
} // namespace vantrel::sway
