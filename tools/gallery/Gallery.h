#pragma once

#include <QWidget>

namespace vantrel::gallery {

// A panel-wide sheet of rows on the overlay's dark background: limit rows, load rows, warnings,
// unavailable readings, the mini switch in its three states and a 10-core grid.
QWidget* buildGallery();

} // namespace vantrel::gallery
