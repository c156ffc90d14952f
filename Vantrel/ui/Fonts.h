#pragma once

#include <QFont>

namespace vantrel::ui {

// The user-interface font at a size in logical pixels (the overlay's sizes are logical pixels, so the
// text has the same size on every DPI).
QFont systemFont(int pixelSize, QFont::Weight weight = QFont::Normal);

// The user-interface font with tabular (equal-width) digits, so a changing number does not move.
QFont monospacedDigitSystemFont(int pixelSize, QFont::Weight weight = QFont::Normal);

// True when the ten digits of the font have the same advance width.
bool hasTabularDigits(const QFont& font);

} // namespace vantrel::ui
