#include "Vantrel/app/ReachAdvice.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>
#include <string>

namespace vantrel {
namespace {

struct StyleCase {
    const char* version;
    ExtensionStyle style;
};

class ExtensionStyleTest : public testing::TestWithParam<StyleCase> {};

TEST_P(ExtensionStyleTest, ReadsTheMajorVersion)
{
    EXPECT_EQ(extensionStyleFor(GetParam().version), GetParam().style) << GetParam().version;
}

INSTANTIATE_TEST_SUITE_P(
    Versions, ExtensionStyleTest,
    testing::Values(StyleCase{"43.9", ExtensionStyle::gnome43}, StyleCase{"43", ExtensionStyle::gnome43},
                    StyleCase{"43.alpha", ExtensionStyle::gnome43},
                    StyleCase{"44.rc", ExtensionStyle::gnome43}, StyleCase{"45.0", ExtensionStyle::gnome45},
                    StyleCase{"46.beta.1", ExtensionStyle::gnome45},
                    StyleCase{"50.1", ExtensionStyle::gnome45}, StyleCase{"42.9", ExtensionStyle::tooOld},
                    StyleCase{"3.38.4", ExtensionStyle::tooOld}, StyleCase{"0.1", ExtensionStyle::tooOld},
                    StyleCase{"", ExtensionStyle::unknown}, StyleCase{"GNOME 43", ExtensionStyle::unknown},
                    StyleCase{"43rc", ExtensionStyle::unknown}, StyleCase{"-43", ExtensionStyle::unknown},
                    StyleCase{".43", ExtensionStyle::unknown},
                    StyleCase{"99999999999999999999.1", ExtensionStyle::unknown},
                    StyleCase{"04.3", ExtensionStyle::tooOld}));

FrontmostReach nothing(MissingSource missing, const char* version = "")
{
    return {FrontmostReach::State::tellsNothing, missing, version};
}

struct AdviceCase {
    const char* description;
    FrontmostReach reach;
    bool pinned;
    std::string expected;
};

class ReachAdviceTest : public testing::TestWithParam<AdviceCase> {};

TEST_P(ReachAdviceTest, SaysWhatIsMissingAndWhatToEnable)
{
    EXPECT_EQ(reachAdvice(GetParam().reach, GetParam().pinned), GetParam().expected)
        << GetParam().description;
}

INSTANTIATE_TEST_SUITE_P(
    Sessions, ReachAdviceTest,
    testing::Values(
        AdviceCase{
            "GNOME 43", nothing(MissingSource::gnomeExtension, "43.9"), true,
            "vantrel: GNOME Shell tells which window is in front only through Vantrel's extension, so the "
            "panel is pinned. Enable it with `gnome-extensions enable "
            "vantrel-focus-gnome43@vantrel.github.io`; "
            "on Wayland, log out and back in if it was installed during this session."},
        AdviceCase{
            "GNOME 46, unpinned by the user", nothing(MissingSource::gnomeExtension, "46.0"), false,
            "vantrel: GNOME Shell tells which window is in front only through Vantrel's extension. Enable it "
            "with `gnome-extensions enable vantrel-focus@vantrel.github.io`; on Wayland, log out and back in "
            "if it was installed during this session."},
        AdviceCase{
            "GNOME of a version not told", nothing(MissingSource::gnomeExtension), true,
            "vantrel: GNOME Shell tells which window is in front only through Vantrel's extension, so the "
            "panel is pinned. Enable it with `gnome-extensions enable vantrel-focus@vantrel.github.io` "
            "(GNOME 45 and later) or `gnome-extensions enable vantrel-focus-gnome43@vantrel.github.io` "
            "(GNOME 43 and 44); on Wayland, log out and back in if it was installed during this session."},
        AdviceCase{"GNOME 42", nothing(MissingSource::gnomeExtension, "42.9"), true,
                   "vantrel: GNOME Shell 42.9 tells no application which window is in front, and Vantrel's "
                   "extension needs GNOME 43 or later, so the panel is pinned."},
        AdviceCase{
            "an extension that answers garbage", nothing(MissingSource::faultyGnomeExtension, "43.9"), true,
            "vantrel: Vantrel's GNOME Shell extension gives no answer Vantrel understands, so the panel is "
            "pinned. Install the extension that came with this Vantrel, then log out and back in."},
        AdviceCase{
            "KWin", nothing(MissingSource::kwinGrant), true,
            "vantrel: KWin does not tell Vantrel which window is in front, so the panel is pinned. KWin "
            "offers it (org_kde_plasma_window_management) only to a program an installed desktop entry "
            "names: start the installed vantrel, or copy its io.github.vantrel.Vantrel.WindowManagement."
            "desktop into ~/.local/share/applications/."},
        AdviceCase{
            "another compositor", nothing(MissingSource::compositorInterface), true,
            "vantrel: this Wayland compositor tells no application which window is in front, so the panel "
            "is pinned. Vantrel learns it from sway's IPC, zwlr_foreign_toplevel_manager_v1, KWin's window "
            "management and its own GNOME Shell extension; X11 windows it still sees through XWayland."}));

std::string uuidIn(const std::string& style)
{
    std::ifstream metadata(std::string(VANTREL_FIXTURES) + "/../../resources/gnome-shell/" + style +
                           "/metadata.json");
    return nlohmann::json::parse(metadata).at("uuid").get<std::string>();
}

TEST(ReachAdvice, NamesTheUuidsTheExtensionIsBuiltUnder)
{
    EXPECT_EQ(uuidIn("gnome43"), gnome43ExtensionUuid);
    EXPECT_EQ(uuidIn("gnome45"), gnome45ExtensionUuid);
}

} // namespace
} // namespace vantrel
