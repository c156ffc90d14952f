#pragma once

#include "Vantrel/app/FrontmostReach.h"

#include <string>
#include <string_view>
#include <vector>

namespace vantrel {

// Where Vantrel learns which window is in front.
enum class FrontmostSource {
    x11,                 // _NET_ACTIVE_WINDOW: an X11 session
    swayIpc,             // sway's IPC, which also tells the process
    wlrForeignToplevel,  // zwlr_foreign_toplevel_manager_v1: sway, Hyprland, niri, labwc, Wayfire, …
    kdeWindowManagement, // org_kde_plasma_window_management: KWin
    gnomeExtension,      // Vantrel's GNOME Shell extension on the session bus
};

// What a session offers, as the environment and the Wayland registry tell it.
struct SessionFacts {
    std::string waylandDisplay; // WAYLAND_DISPLAY
    std::string currentDesktop; // XDG_CURRENT_DESKTOP, a colon-separated list
    std::string swaySocket;     // SWAYSOCK
    // The interfaces the registry announced; empty when no Wayland connection could be made.
    std::vector<std::string> globals;
};

// The sources to try, most telling first; the first that connects serves. Without WAYLAND_DISPLAY the
// session is X11's. On Wayland: sway's IPC where its socket is named (it tells the process, the protocol
// does not), then the wlroots protocol, then KWin's and GNOME Shell's own ways (KWin's where it offers
// its protocol or calls itself KDE: it offers the protocol only to programs its desktop entries allow).
// An empty list: the session tells no client.
std::vector<FrontmostSource> frontmostSources(const SessionFacts& facts);

// In a Wayland session where none of those sources serves: what the session lacks, by its desktop.
MissingSource missingSourceIn(const SessionFacts& facts);

// Whether the panel must be an unmanaged (override-redirect) X11 window on a Wayland session. wlroots
// compositors (known by sway's socket, their protocol or their desktop name) place XWayland's floating
// windows themselves (sway centres them) and would focus it. GNOME Shell places it as asked, but opens
// every new window that a window kept above others would cover without the focus and below the focused
// window. KWin honours the position asked for and keeps the window manager's other services (every
// workspace, no taskbar entry), which an unmanaged window goes without.
bool panelMustBeUnmanaged(const SessionFacts& facts);

// Whether XDG_CURRENT_DESKTOP lists the desktop; desktop names are compared exactly, case included.
bool listsDesktop(std::string_view currentDesktop, std::string_view desktop);

} // namespace vantrel
