#pragma once

#include "Vantrel/app/Desktop.h"
#include "Vantrel/app/x11/X11Desktop.h"

#include <memory>

namespace vantrel {

// The desktop of this session: in a Wayland session, the first source of the window in front that
// connects (see frontmostSources) beside the X11 desktop that keeps the panel. Where none does, the
// session tells nothing (and XWayland X11 windows only); in an X11 session the X11 desktop serves alone.
std::unique_ptr<Desktop> createSessionDesktop(std::unique_ptr<X11Desktop> x11);

} // namespace vantrel
