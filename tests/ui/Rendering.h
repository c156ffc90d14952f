#pragma once

#include <QImage>
#include <QWidget>

namespace vantrel::ui::testing {

// Paints the widget and its children alone (no window background) into a transparent image.
inline QImage render(QWidget& widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

inline int alphaAt(const QImage& image, int x, int y)
{
    return qAlpha(image.pixel(x, y));
}

} // namespace vantrel::ui::testing
