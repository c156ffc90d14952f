#include "Vantrel/app/PanelGeometry.h"

#include <algorithm>

namespace vantrel {

PanelPlacement placePanel(int fittingHeight, const ScreenRect& workArea)
{
    const int contentHeight = std::max(fittingHeight + contentMargin, minimumContentHeight);
    const int room = workArea.height - verticalReserve;
    const int height = room < contentHeight ? room : contentHeight;
    const int left = workArea.x + workArea.width - rightOffset;
    const int bottom = workArea.y + workArea.height - bottomMargin;
    return {panelWidth, contentHeight, {left, bottom - height, panelWidth, height}};
}

} // namespace vantrel
