#pragma once

#include "Vantrel/app/Desktop.h"
#include "Vantrel/app/macos/AppKitCalls.h"

namespace vantrel {

// The desktop as macOS presents it: NSWorkspace names the application in front and says when another one
// becomes active; the window server always composites.
class MacDesktop : public Desktop {
    Q_OBJECT

public:
    MacDesktop();

    std::optional<FrontmostWindow> frontmostWindow() override;
    bool hasCompositor() override;
    void prepareToShow(QWidget& window) override;
    void didShow(QWidget& window) override;

private:
    appkit::ActivationObserver activations_;
};

} // namespace vantrel
