#include "Vantrel/ui/Layout.h"

#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/Palette.h"
#include "Vantrel/ui/PastelBar.h"

#include <QBoxLayout>
#include <QFrame>
#include <QtGlobal>

namespace vantrel::ui {
namespace {

constexpr int coresPerLine = 4;
constexpr int coreLineSpacing = 10;
constexpr bool compactCells = true;

} // namespace

StackView::StackView(Qt::Orientation orientation, int spacing, QWidget* parent)
    : QWidget(parent), orientation_(orientation),
      layout_(new QBoxLayout(orientation == Qt::Vertical ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight,
                             this))
{
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(spacing);
}

int StackView::spacing() const
{
    return layout_->spacing();
}

void StackView::setSpacing(int spacing)
{
    layout_->setSpacing(spacing);
}

void StackView::setDistribution(Distribution distribution)
{
    distribution_ = distribution;
    for (QWidget* view : arrangedViews()) {
        fitToDistribution(view);
    }
}

void StackView::addArrangedView(QWidget* view)
{
    fitToDistribution(view);
    layout_->addWidget(view);
}

void StackView::removeArrangedView(QWidget* view)
{
    layout_->removeWidget(view);
}

QList<QWidget*> StackView::arrangedViews() const
{
    QList<QWidget*> views;
    views.reserve(layout_->count());
    for (int index = 0; index < layout_->count(); ++index) {
        if (QWidget* view = layout_->itemAt(index)->widget()) {
            views.append(view);
        }
    }
    return views;
}

void StackView::fitToDistribution(QWidget* view) const
{
    QSizePolicy policy = view->sizePolicy();
    if (orientation_ == Qt::Vertical) {
        // Every view of a column spans its full width, even one that would rather keep its natural width.
        if ((policy.horizontalPolicy() & QSizePolicy::GrowFlag) == 0) {
            policy.setHorizontalPolicy(QSizePolicy::Preferred);
        }
    } else if (distribution_ == Distribution::FillEqually) {
        // Ignoring the views' own widths leaves the equal stretch factors alone to share the width.
        policy.setHorizontalPolicy(QSizePolicy::Ignored);
        policy.setHorizontalStretch(1);
    }
    view->setSizePolicy(policy);
}

StackView* vertical(const QList<QWidget*>& views, int spacing)
{
    auto* stack = new StackView(Qt::Vertical, spacing);
    for (QWidget* view : views) {
        stack->addArrangedView(view);
    }
    return stack;
}

StackView* horizontal(const QList<QWidget*>& views, int spacing)
{
    auto* stack = new StackView(Qt::Horizontal, spacing);
    for (QWidget* view : views) {
        stack->addArrangedView(view);
    }
    return stack;
}

QWidget* flexibleSpace()
{
    auto* space = new QWidget;
    space->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Minimum);
    return space;
}

QWidget* separator()
{
    auto* rule = new QFrame;
    rule->setFrameShape(QFrame::HLine);
    rule->setFrameShadow(QFrame::Plain);
    rule->setLineWidth(1);
    rule->setFixedHeight(1);
    setTextColor(rule, SystemColor::separator());
    return rule;
}

void buildCoreGrid(StackView* container, int count, const QColor& tint, std::vector<MeterRow*>& rows)
{
    for (QWidget* view : container->arrangedViews()) {
        container->removeArrangedView(view);
        delete view;
    }
    if (count < 0) {
        qFatal("buildCoreGrid: negative core count %d", count);
    }

    std::vector<MeterRow*> created;
    created.reserve(static_cast<std::size_t>(count));
    for (int core = 1; core <= count; ++core) {
        created.push_back(new MeterRow(QString::number(core), false, tint, compactCells));
    }
    rows = std::move(created);

    for (int start = 0; start < count; start += coresPerLine) {
        auto* line = new StackView(Qt::Horizontal, coreLineSpacing);
        line->setDistribution(StackView::Distribution::FillEqually);
        const int end = std::min(start + coresPerLine, count);
        for (int index = start; index < end; ++index) {
            line->addArrangedView(rows[static_cast<std::size_t>(index)]);
        }
        // Padding keeps the cells of a short last line as wide as those of a full one.
        for (int padding = end - start; padding < coresPerLine; ++padding) {
            line->addArrangedView(new QWidget);
        }
        container->addArrangedView(line);
    }

    int core = 1;
    for (MeterRow* row : rows) {
        row->progress()->setAccessibleName(QStringLiteral("Jádro %1").arg(core++));
        row->update(std::nullopt, std::nullopt);
    }
}

} // namespace vantrel::ui
