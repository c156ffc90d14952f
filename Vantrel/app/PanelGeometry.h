#pragma once

namespace vantrel {

// The panel's fixed width and the margins that place it in the bottom-right corner of the work area.
inline constexpr int panelWidth = 292;
inline constexpr int contentMargin = 32; // 16 above and 16 below the content inside the canvas
inline constexpr int minimumContentHeight = 66;
inline constexpr int rightOffset = 308; // left edge = right edge of the work area − 308: a 16 px gap
inline constexpr int bottomMargin = 16;
inline constexpr int verticalReserve = 32; // 16 below the panel, at least 16 above it
// Where the content sits inside the canvas: 18 px from the sides, 16 px from the top.
inline constexpr int contentSideInset = 18;
inline constexpr int contentTopInset = 16;
inline constexpr int contentWidth = panelWidth - 2 * contentSideInset;

// A rectangle in screen pixels; y grows downwards, as on X11.
struct ScreenRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    friend bool operator==(const ScreenRect&, const ScreenRect&) = default;
};

struct PanelPlacement {
    int canvasWidth = 0;
    int canvasHeight = 0; // the whole content, scrolled when the window is lower
    ScreenRect frame;     // the window
    friend bool operator==(const PanelPlacement&, const PanelPlacement&) = default;
};

// Where the panel goes for content of the given fitting height on a work area. The panel grows upwards
// from a fixed bottom-right corner and is never taller than the work area less the reserve; a work area
// lower than the reserve gives a zero or negative height, passed on as it is.
PanelPlacement placePanel(int fittingHeight, const ScreenRect& workArea);

} // namespace vantrel
