#include "Vantrel/app/ElidingLabel.h"

#include <QPainter>
#include <QStyle>

namespace vantrel {

ElidingLabel::ElidingLabel(const QString& text, QWidget* parent) : QLabel(text, parent)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize ElidingLabel::minimumSizeHint() const
{
    return {0, QLabel::minimumSizeHint().height()};
}

QSize ElidingLabel::sizeHint() const
{
    return {0, QLabel::sizeHint().height()};
}

void ElidingLabel::paintEvent(QPaintEvent* /*event*/)
{
    QPainter painter(this);
    const QRect area = contentsRect();
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, area.width());
    style()->drawItemText(&painter, area, static_cast<int>(alignment()), palette(), isEnabled(), shown,
                          foregroundRole());
}

} // namespace vantrel
