#include "Vantrel/app/SessionChoice.h"

#include <gtest/gtest.h>

namespace vantrel {
namespace {

using Sources = std::vector<FrontmostSource>;

struct ChoiceCase {
    const char* description;
    SessionFacts facts;
    Sources sources;
    bool unmanagedPanel;
};

class SessionChoiceTest : public testing::TestWithParam<ChoiceCase> {};

TEST_P(SessionChoiceTest, TriesTheMostTellingSourceFirst)
{
    EXPECT_EQ(frontmostSources(GetParam().facts), GetParam().sources) << GetParam().description;
}

TEST_P(SessionChoiceTest, LeavesThePanelUnmanagedOnlyUnderWlrootsAndGnomeShell)
{
    EXPECT_EQ(panelMustBeUnmanaged(GetParam().facts), GetParam().unmanagedPanel) << GetParam().description;
}

const std::vector<std::string> wlroots{"wl_compositor", "xdg_wm_base", "zwlr_foreign_toplevel_manager_v1"};
const std::vector<std::string> kwin{"wl_compositor", "org_kde_plasma_window_management"};
const std::vector<std::string> bare{"wl_compositor", "xdg_wm_base", "wl_seat"};

constexpr auto x11 = FrontmostSource::x11;
constexpr auto swayIpc = FrontmostSource::swayIpc;
constexpr auto foreignToplevel = FrontmostSource::wlrForeignToplevel;
constexpr auto kde = FrontmostSource::kdeWindowManagement;
constexpr auto gnome = FrontmostSource::gnomeExtension;

INSTANTIATE_TEST_SUITE_P(
    Sessions, SessionChoiceTest,
    testing::Values(
        ChoiceCase{"no Wayland display", {"", "GNOME", "", {}}, {x11}, false},
        ChoiceCase{"X11 session with a stale SWAYSOCK", {"", "", "/run/sway.sock", wlroots}, {x11}, false},
        ChoiceCase{
            "sway", {"wayland-1", "sway", "/run/sway.sock", wlroots}, {swayIpc, foreignToplevel}, true},
        ChoiceCase{"sway whose registry could not be read",
                   {"wayland-1", "sway", "/run/s.sock", {}},
                   {swayIpc},
                   true},
        ChoiceCase{"sway without its socket", {"wayland-1", "sway", "", wlroots}, {foreignToplevel}, true},
        ChoiceCase{"Hyprland", {"wayland-1", "Hyprland", "", wlroots}, {foreignToplevel}, true},
        ChoiceCase{"sway unreachable but for its name", {"wayland-1", "sway", "", {}}, {}, true},
        ChoiceCase{"labwc without the protocol", {"wayland-0", "wlroots", "", bare}, {}, true},
        ChoiceCase{"X11 i3 with a sway-named desktop", {"", "sway", "", {}}, {x11}, false},
        ChoiceCase{"KWin granting window management", {"wayland-0", "KDE", "", kwin}, {kde}, false},
        ChoiceCase{"KWin not granting it", {"wayland-0", "KDE", "", bare}, {kde}, false},
        ChoiceCase{"KWin whose registry could not be read", {"wayland-0", "KDE", "", {}}, {kde}, false},
        ChoiceCase{"KWin granting it, named otherwise", {"wayland-0", "", "", kwin}, {kde}, false},
        ChoiceCase{"a desktop named like KDE", {"wayland-0", "KDE-ish", "", bare}, {}, false},
        ChoiceCase{"GNOME", {"wayland-0", "GNOME", "", bare}, {gnome}, true},
        ChoiceCase{"Ubuntu's GNOME", {"wayland-0", "ubuntu:GNOME", "", bare}, {gnome}, true},
        ChoiceCase{"GNOME Classic", {"wayland-0", "GNOME-Classic:GNOME", "", bare}, {gnome}, true},
        ChoiceCase{"Weston", {"wayland-0", "", "", bare}, {}, false},
        ChoiceCase{"a desktop named like GNOME", {"wayland-0", "GNOMEish", "", bare}, {}, false}));

struct ListCase {
    const char* currentDesktop;
    const char* desktop;
    bool listed;
};

class ListsDesktopTest : public testing::TestWithParam<ListCase> {};

TEST_P(ListsDesktopTest, ComparesWholeEntries)
{
    EXPECT_EQ(listsDesktop(GetParam().currentDesktop, GetParam().desktop), GetParam().listed)
        << GetParam().currentDesktop;
}

INSTANTIATE_TEST_SUITE_P(Lists, ListsDesktopTest,
                         testing::Values(ListCase{"GNOME", "GNOME", true},
                                         ListCase{"ubuntu:GNOME", "GNOME", true},
                                         ListCase{"GNOME:ubuntu", "GNOME", true},
                                         ListCase{"", "GNOME", false}, ListCase{"gnome", "GNOME", false},
                                         ListCase{":", "GNOME", false}, ListCase{"KDE::GNOME", "GNOME", true},
                                         ListCase{"GNOME-Classic", "GNOME", false}));

struct MissingCase {
    const char* currentDesktop;
    MissingSource missing;
};

class MissingSourceTest : public testing::TestWithParam<MissingCase> {};

TEST_P(MissingSourceTest, NamesWhatTheDesktopLacks)
{
    EXPECT_EQ(missingSourceIn({"wayland-0", GetParam().currentDesktop, "", bare}), GetParam().missing)
        << GetParam().currentDesktop;
}

INSTANTIATE_TEST_SUITE_P(Desktops, MissingSourceTest,
                         testing::Values(MissingCase{"GNOME", MissingSource::gnomeExtension},
                                         MissingCase{"ubuntu:GNOME", MissingSource::gnomeExtension},
                                         MissingCase{"KDE", MissingSource::kwinGrant},
                                         MissingCase{"sway", MissingSource::compositorInterface},
                                         MissingCase{"", MissingSource::compositorInterface},
                                         MissingCase{"gnome", MissingSource::compositorInterface}));

} // namespace
} // namespace vantrel
