#pragma once

#include <QIcon>

namespace vantrel {

// The status item's icon as this platform shows it, defined once per platform.
QIcon statusItemIcon();

} // namespace vantrel
