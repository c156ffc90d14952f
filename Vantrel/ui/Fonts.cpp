#include "Vantrel/ui/Fonts.h"

#include <QApplication>
#include <QFontMetricsF>

namespace vantrel::ui {
namespace {

// Qt 6.4 cannot switch on the OpenType "tnum" feature, so when the desktop font has proportional digits
// (Cantarell, GNOME's font, does) the numbers are set in DejaVu Sans, whose digits are tabular and which
// every Debian desktop ships.
constexpr auto tabularDigitFamily = "DejaVu Sans";

} // namespace

QFont systemFont(int pixelSize, QFont::Weight weight)
{
    QFont font = QApplication::font();
    font.setPixelSize(pixelSize);
    font.setWeight(weight);
    return font;
}

QFont monospacedDigitSystemFont(int pixelSize, QFont::Weight weight)
{
    QFont font = systemFont(pixelSize, weight);
    if (!hasTabularDigits(font)) {
        font.setFamilies({QString::fromLatin1(tabularDigitFamily)});
    }
    return font;
}

bool hasTabularDigits(const QFont& font)
{
    const QFontMetricsF metrics(font);
    const qreal zero = metrics.horizontalAdvance(QLatin1Char('0'));
    for (char digit = '1'; digit <= '9'; ++digit) {
        if (!qFuzzyCompare(metrics.horizontalAdvance(QLatin1Char(digit)), zero)) {
            return false;
        }
    }
    return true;
}

} // namespace vantrel::ui
