#include "Vantrel/app/linux/LinuxTrayHosts.h"

namespace vantrel {

LinuxTrayHosts::LinuxTrayHosts()
    : statusNotifier_(QDBusConnection::sessionBus()), xembed_(XEmbedTray::create())
{
    connect(&statusNotifier_, &StatusNotifierHost::changed, this, &TrayHosts::changed);
    if (xembed_) {
        connect(xembed_.get(), &XEmbedTray::changed, this, [this] {
            // Told only once the session bus has answered too.
            if (statusNotifier_.known()) {
                emit changed();
            }
        });
    }
}

std::optional<TrayHostFacts> LinuxTrayHosts::facts()
{
    if (!statusNotifier_.known()) {
        return std::nullopt;
    }
    return TrayHostFacts{statusNotifier_.registered(), xembed_ && xembed_->present()};
}

} // namespace vantrel
