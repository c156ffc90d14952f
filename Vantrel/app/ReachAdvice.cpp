#include "Vantrel/app/ReachAdvice.h"

namespace vantrel {
namespace {

constexpr int firstGnome43Release = 43;
constexpr int firstGnome45Release = 45;
// GNOME's major versions have two digits; more than four is not a version.
constexpr std::size_t maximumMajorDigits = 4;

std::string enableCommand(std::string_view uuid)
{
    return "`gnome-extensions enable " + std::string(uuid) + "`";
}

std::string gnomeAdvice(const std::string& shellVersion, const std::string& pinClause)
{
    const ExtensionStyle style = extensionStyleFor(shellVersion);
    if (style == ExtensionStyle::tooOld) {
        return "vantrel: GNOME Shell " + shellVersion +
               " tells no application which window is in front, and Vantrel's extension needs GNOME 43 or "
               "later" +
               pinClause + ".";
    }
    std::string command;
    if (style == ExtensionStyle::gnome43) {
        command = enableCommand(gnome43ExtensionUuid);
    } else if (style == ExtensionStyle::gnome45) {
        command = enableCommand(gnome45ExtensionUuid);
    } else {
        command = enableCommand(gnome45ExtensionUuid) + " (GNOME 45 and later) or " +
                  enableCommand(gnome43ExtensionUuid) + " (GNOME 43 and 44)";
    }
    return "vantrel: GNOME Shell tells which window is in front only through Vantrel's extension" +
           pinClause + ". Enable it with " + command +
           "; on Wayland, log out and back in if it was installed during this session.";
}

} // namespace

ExtensionStyle extensionStyleFor(std::string_view shellVersion)
{
    const std::size_t digits = shellVersion.find_first_not_of("0123456789");
    const std::string_view major = shellVersion.substr(0, digits);
    if (major.empty() || major.size() > maximumMajorDigits ||
        (digits != std::string_view::npos && shellVersion[digits] != '.')) {
        return ExtensionStyle::unknown;
    }
    const int number = std::stoi(std::string(major));
    if (number < firstGnome43Release) {
        return ExtensionStyle::tooOld;
    }
    return number < firstGnome45Release ? ExtensionStyle::gnome43 : ExtensionStyle::gnome45;
}

std::string reachAdvice(const FrontmostReach& reach, bool pinned)
{
    const std::string pinClause = pinned ? ", so the panel is pinned" : "";
    switch (reach.missing) {
    case MissingSource::gnomeExtension:
        return gnomeAdvice(reach.shellVersion, pinClause);
    case MissingSource::faultyGnomeExtension:
        return "vantrel: Vantrel's GNOME Shell extension gives no answer Vantrel understands" + pinClause +
               ". Install the extension that came with this Vantrel, then log out and back in.";
    case MissingSource::kwinGrant:
        return "vantrel: KWin does not tell Vantrel which window is in front" + pinClause +
               ". KWin offers it (org_kde_plasma_window_management) only to a program an installed desktop "
               "entry names: start the installed vantrel, or copy its "
               "io.github.vantrel.Vantrel.WindowManagement.desktop into ~/.local/share/applications/.";
    case MissingSource::compositorInterface:
        break;
    }
    return "vantrel: this Wayland compositor tells no application which window is in front" + pinClause +
           ". Vantrel learns it from sway's IPC, zwlr_foreign_toplevel_manager_v1, KWin's window management "
           "and its own GNOME Shell extension; X11 windows it still sees through XWayland.";
}

} // namespace vantrel
