#include "Vantrel/app/wayland/GnomeFocus.h"

#include <gtest/gtest.h>

namespace vantrel::gnome {
namespace {

using State = FrontmostReach::State;

FocusMessage dictionary(FocusDescription description)
{
    return {{}, std::move(description)};
}

FrontmostWindow window(const char* appId, const char* instance, std::optional<std::int64_t> pid)
{
    return {appId, instance, pid, false, std::nullopt};
}

struct MessageCase {
    const char* description;
    FocusMessage message;
    State state;
    MissingSource missing; // where nothing is told
    std::optional<FrontmostWindow> window;
};

class GnomeFocusTest : public testing::TestWithParam<MessageCase> {};

TEST_P(GnomeFocusTest, ReadsTheExtensionsMessages)
{
    const FocusAnswer answer = readFocusMessage(GetParam().message);
    EXPECT_EQ(answer.reach.state, GetParam().state) << GetParam().description;
    if (GetParam().state == State::tellsNothing) {
        EXPECT_EQ(answer.reach.missing, GetParam().missing) << GetParam().description;
    }
    EXPECT_EQ(answer.window, GetParam().window) << GetParam().description;
}

constexpr auto told = State::tells;
constexpr auto nothing = State::tellsNothing;
constexpr auto absent = MissingSource::gnomeExtension;
constexpr auto faulty = MissingSource::faultyGnomeExtension;

INSTANTIATE_TEST_SUITE_P(
    Messages, GnomeFocusTest,
    testing::Values(
        MessageCase{"a native window",
                    dictionary({{"wm-class", "codex"},
                                {"wm-class-instance", "codex"},
                                {"pid", 4242U},
                                {"client-type", "wayland"}}),
                    told, absent, window("codex", "", 4242)},
        MessageCase{"an X11 window",
                    dictionary({{"wm-class", "Codex"},
                                {"wm-class-instance", "codex-x11"},
                                {"pid", 77U},
                                {"client-type", "x11"}}),
                    told, absent, window("Codex", "codex-x11", 77)},
        MessageCase{"no window has the focus", dictionary({}), told, absent, std::nullopt},
        MessageCase{"a native window without app_id, known by its process",
                    dictionary({{"pid", 4242U}, {"client-type", "wayland"}}), told, absent,
                    window("", "", 4242)},
        MessageCase{"an X11 window without WM_CLASS whose process is unknown",
                    dictionary({{"client-type", "x11"}}), told, absent, std::nullopt},
        MessageCase{"a process id 0 is no process",
                    dictionary({{"wm-class", "codex"}, {"pid", 0U}, {"client-type", "wayland"}}), told,
                    absent, window("codex", "", std::nullopt)},
        MessageCase{"keys of other names are left alone",
                    dictionary({{"wm-class", "codex"},
                                {"title", "secret"},
                                {"client-type", "wayland"},
                                {"sandboxed", std::monostate{}}}),
                    told, absent, window("codex", "", std::nullopt)},
        MessageCase{"the largest process id",
                    dictionary({{"wm-class", "Codex"}, {"pid", 4294967295U}, {"client-type", "x11"}}), told,
                    absent, window("Codex", "", 4294967295)},
        MessageCase{"nobody owns the name",
                    {"org.freedesktop.DBus.Error.ServiceUnknown", std::nullopt},
                    nothing,
                    absent,
                    std::nullopt},
        MessageCase{"the owner left",
                    {"org.freedesktop.DBus.Error.NameHasNoOwner", std::nullopt},
                    nothing,
                    absent,
                    std::nullopt},
        MessageCase{"no answer in time",
                    {"org.freedesktop.DBus.Error.NoReply", std::nullopt},
                    nothing,
                    faulty,
                    std::nullopt},
        MessageCase{"an owner without the method",
                    {"org.freedesktop.DBus.Error.UnknownMethod", std::nullopt},
                    nothing,
                    faulty,
                    std::nullopt},
        MessageCase{"an answer that is no dictionary", {{}, std::nullopt}, nothing, faulty, std::nullopt},
        MessageCase{"a process id of another type",
                    dictionary({{"wm-class", "codex"}, {"pid", "4242"}, {"client-type", "wayland"}}), nothing,
                    faulty, std::nullopt},
        MessageCase{"a class of another type", dictionary({{"wm-class", 12U}, {"client-type", "wayland"}}),
                    nothing, faulty, std::nullopt},
        MessageCase{"an instance of another type",
                    dictionary({{"wm-class", "Codex"},
                                {"wm-class-instance", std::monostate{}},
                                {"client-type", "x11"}}),
                    nothing, faulty, std::nullopt},
        MessageCase{"an unknown client type",
                    dictionary({{"wm-class", "codex"}, {"client-type", "xwayland"}}), nothing, faulty,
                    std::nullopt},
        MessageCase{"a client type of another type", dictionary({{"wm-class", "codex"}, {"client-type", 1U}}),
                    nothing, faulty, std::nullopt},
        MessageCase{"a window without its client type", dictionary({{"wm-class", "codex"}, {"pid", 4U}}),
                    nothing, faulty, std::nullopt},
        MessageCase{"only keys of other names", dictionary({{"title", "x"}}), nothing, faulty,
                    std::nullopt}));

} // namespace
} // namespace vantrel::gnome
