#pragma once

#include <optional>
#include <string_view>

namespace vantrel {

// The tray hosts that run now: a StatusNotifierItem host registered with org.kde.StatusNotifierWatcher on
// the session bus (KDE Plasma, waybar's tray, GNOME Shell's AppIndicator extension), and an XEmbed system
// tray, the owner of the X selection _NET_SYSTEM_TRAY_S<screen> (trayer, stalonetray, X11 panels).
struct TrayHostFacts {
    bool statusNotifierHost = false;
    bool xembedTray = false;

    friend bool operator==(const TrayHostFacts&, const TrayHostFacts&) = default;
};

// How the tray item reaches its host. Qt 6.4 chooses once per process, when the first tray item is made:
// a StatusNotifierItem if a host of that kind is registered then, else an XEmbed icon.
enum class TrayItemKind { statusNotifierItem, xembed };

// The kind an item made now would get; nothing while no host runs: made then, the item would be an XEmbed
// icon for good and never join a StatusNotifierItem host that starts later (waybar or KDE Plasma starting
// after Vantrel at login).
std::optional<TrayItemKind> trayItemKindFor(const TrayHostFacts& hosts);

// Whether an item of this kind is in a host now. Qt follows the hosts of the item's kind: it embeds the
// icon in an XEmbed tray that comes later, and registers the item again with a watcher that restarts.
bool trayItemShown(TrayItemKind kind, const TrayHostFacts& hosts);

enum class TrayNotice {
    noHost,      // no host shows the tray item: the panel's own menu serves
    hostArrived, // a host shows it again
};

// What to say on standard error as the tray item comes and goes: the first time no host shows it, and the
// first time one shows it after that; nothing more in a run. The panel's own menu is there all along, so
// later comings and goings change nothing the user has to do.
class TrayNotices {
public:
    std::optional<TrayNotice> observe(bool itemShown);

private:
    bool toldNoHost_ = false;
    bool toldArrival_ = false;
};

// The line for standard error, without its line feed.
std::string_view trayNoticeLine(TrayNotice notice);

} // namespace vantrel
