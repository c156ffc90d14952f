#include "Vantrel/app/SessionChoice.h"

#include <algorithm>
#include <array>

namespace vantrel {
namespace {

bool offers(const SessionFacts& facts, std::string_view interface)
{
    return std::find(facts.globals.begin(), facts.globals.end(), interface) != facts.globals.end();
}

// The names wlroots compositors give themselves in XDG_CURRENT_DESKTOP.
constexpr std::array<std::string_view, 7> wlrootsDesktops{"sway",    "Hyprland", "niri", "labwc",
                                                          "wlroots", "Wayfire",  "river"};

bool isWlroots(const SessionFacts& facts)
{
    return !facts.swaySocket.empty() || offers(facts, "zwlr_foreign_toplevel_manager_v1") ||
           std::any_of(wlrootsDesktops.begin(), wlrootsDesktops.end(), [&facts](std::string_view desktop) {
               return listsDesktop(facts.currentDesktop, desktop);
           });
}

} // namespace

bool listsDesktop(std::string_view currentDesktop, std::string_view desktop)
{
    while (true) {
        const auto colon = currentDesktop.find(':');
        if (currentDesktop.substr(0, colon) == desktop) {
            return true;
        }
        if (colon == std::string_view::npos) {
            return false;
        }
        currentDesktop.remove_prefix(colon + 1);
    }
}

std::vector<FrontmostSource> frontmostSources(const SessionFacts& facts)
{
    if (facts.waylandDisplay.empty()) {
        return {FrontmostSource::x11};
    }
    std::vector<FrontmostSource> sources;
    if (!facts.swaySocket.empty()) {
        sources.push_back(FrontmostSource::swayIpc);
    }
    if (offers(facts, "zwlr_foreign_toplevel_manager_v1")) {
        sources.push_back(FrontmostSource::wlrForeignToplevel);
    }
    if (offers(facts, "org_kde_plasma_window_management") || listsDesktop(facts.currentDesktop, "KDE")) {
        sources.push_back(FrontmostSource::kdeWindowManagement);
    }
    if (listsDesktop(facts.currentDesktop, "GNOME")) {
        sources.push_back(FrontmostSource::gnomeExtension);
    }
    return sources;
}

MissingSource missingSourceIn(const SessionFacts& facts)
{
    if (listsDesktop(facts.currentDesktop, "GNOME")) {
        return MissingSource::gnomeExtension;
    }
    if (listsDesktop(facts.currentDesktop, "KDE")) {
        return MissingSource::kwinGrant;
    }
    return MissingSource::compositorInterface;
}

bool panelMustBeUnmanaged(const SessionFacts& facts)
{
    return !facts.waylandDisplay.empty() && (isWlroots(facts) || listsDesktop(facts.currentDesktop, "GNOME"));
}

} // namespace vantrel
