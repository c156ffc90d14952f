#pragma once

#include <QColor>
#include <QPalette>

namespace vantrel::ui {

// The six pastel tints, one per kind of figure. Each colour is created once, on first use, and every
// call returns the same object.
class Palette {
public:
    Palette() = delete;

    static const QColor& quota();
    static const QColor& weekly();
    static const QColor& cpu();
    static const QColor& ram();
    static const QColor& gpu();
    static const QColor& network();
};

// The text colours of the dark appearance; the overlay is always dark, whatever the desktop theme.
class SystemColor {
public:
    SystemColor() = delete;

    static const QColor& label();          // white, 85 % opaque
    static const QColor& secondaryLabel(); // white, 55 % opaque
    static const QColor& tertiaryLabel();  // white, 25 % opaque
    static const QColor& systemOrange();   // sRGB (255, 159, 10)
    static const QColor& separator();      // white, 10 % opaque: thin rules
};

// A palette for the dark overlay: default text in SystemColor::label() on a transparent window.
QPalette darkPalette();

// The colour a label's text is drawn in (its WindowText role), set only on that widget.
void setTextColor(QWidget* widget, const QColor& color);
QColor textColor(const QWidget* widget);

} // namespace vantrel::ui
