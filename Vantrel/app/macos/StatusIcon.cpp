#include "Vantrel/app/StatusIcon.h"

#include "Vantrel/app/GaugeIcon.h"

namespace vantrel {

// The menu bar tints a template image for its own appearance, light or dark, as it does its other items.
QIcon statusItemIcon()
{
    return gaugeTemplateIcon();
}

} // namespace vantrel
