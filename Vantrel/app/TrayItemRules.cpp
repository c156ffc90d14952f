#include "Vantrel/app/TrayItemRules.h"

namespace vantrel {

std::optional<TrayItemKind> trayItemKindFor(const TrayHostFacts& hosts)
{
    if (hosts.statusNotifierHost) {
        return TrayItemKind::statusNotifierItem;
    }
    if (hosts.xembedTray) {
        return TrayItemKind::xembed;
    }
    return std::nullopt;
}

bool trayItemShown(TrayItemKind kind, const TrayHostFacts& hosts)
{
    return kind == TrayItemKind::statusNotifierItem ? hosts.statusNotifierHost : hosts.xembedTray;
}

std::optional<TrayNotice> TrayNotices::observe(bool itemShown)
{
    if (!itemShown && !toldNoHost_) {
        toldNoHost_ = true;
        return TrayNotice::noHost;
    }
    // Told only after the line about no host, so this is always a host coming after none.
    if (itemShown && toldNoHost_ && !toldArrival_) {
        toldArrival_ = true;
        return TrayNotice::hostArrived;
    }
    return std::nullopt;
}

std::string_view trayNoticeLine(TrayNotice notice)
{
    switch (notice) {
    case TrayNotice::noHost:
        return "vantrel: no system tray or StatusNotifierItem host runs, so there is no tray item; a right "
               "click on the panel opens the same menu";
    case TrayNotice::hostArrived:
        return "vantrel: a tray host runs now and shows the tray item";
    }
    return {};
}

} // namespace vantrel
