#include "Vantrel/app/StatusIcon.h"

#include "Vantrel/app/GaugeIcon.h"

namespace vantrel {

// Trays show an icon as it is drawn, on a light or a dark bar: the gauge brings its own dark face.
QIcon statusItemIcon()
{
    return gaugeIcon();
}

} // namespace vantrel
