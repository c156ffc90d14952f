#pragma once

#include "Vantrel/app/TrayHosts.h"
#include "Vantrel/app/linux/StatusNotifierHost.h"
#include "Vantrel/app/x11/XEmbedTray.h"

#include <memory>

namespace vantrel {

// A Linux session's tray hosts: a StatusNotifierItem host on the session bus, an XEmbed tray on the X
// display (also XWayland's).
class LinuxTrayHosts : public TrayHosts {
    Q_OBJECT

public:
    LinuxTrayHosts();

    std::optional<TrayHostFacts> facts() override;

private:
    StatusNotifierHost statusNotifier_;
    std::unique_ptr<XEmbedTray> xembed_;
};

} // namespace vantrel
