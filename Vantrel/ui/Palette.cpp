#include "Vantrel/ui/Palette.h"

#include <QWidget>

namespace vantrel::ui {

// Function-local statics: created on first use, one object for the life of the process.
const QColor& Palette::quota()
{
    static const QColor color = QColor::fromRgbF(0.65F, 0.87F, 0.74F, 1.0F);
    return color;
}

const QColor& Palette::weekly()
{
    static const QColor color = QColor::fromRgbF(0.97F, 0.86F, 0.57F, 1.0F);
    return color;
}

const QColor& Palette::cpu()
{
    static const QColor color = QColor::fromRgbF(0.63F, 0.79F, 0.97F, 1.0F);
    return color;
}

const QColor& Palette::ram()
{
    static const QColor color = QColor::fromRgbF(0.96F, 0.70F, 0.75F, 1.0F);
    return color;
}

const QColor& Palette::gpu()
{
    static const QColor color = QColor::fromRgbF(0.79F, 0.70F, 0.95F, 1.0F);
    return color;
}

const QColor& Palette::network()
{
    static const QColor color = QColor::fromRgbF(0.62F, 0.87F, 0.88F, 1.0F);
    return color;
}

const QColor& SystemColor::label()
{
    static const QColor color = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.85F);
    return color;
}

const QColor& SystemColor::secondaryLabel()
{
    static const QColor color = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.55F);
    return color;
}

const QColor& SystemColor::tertiaryLabel()
{
    static const QColor color = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.25F);
    return color;
}

const QColor& SystemColor::systemOrange()
{
    static const QColor color = QColor::fromRgb(255, 159, 10);
    return color;
}

const QColor& SystemColor::separator()
{
    static const QColor color = QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.1F);
    return color;
}

QPalette darkPalette()
{
    QPalette palette;
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        palette.setColor(role, SystemColor::label());
    }
    palette.setColor(QPalette::Window, Qt::transparent);
    palette.setColor(QPalette::Base, Qt::transparent);
    palette.setColor(QPalette::PlaceholderText, SystemColor::tertiaryLabel());
    return palette;
}

void setTextColor(QWidget* widget, const QColor& color)
{
    QPalette palette = widget->palette();
    palette.setColor(QPalette::WindowText, color);
    widget->setPalette(palette);
}

QColor textColor(const QWidget* widget)
{
    return widget->palette().color(QPalette::WindowText);
}

} // namespace vantrel::ui
