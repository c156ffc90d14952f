#pragma once

#include <QColor>
#include <QList>
#include <QWidget>

#include <vector>

class QBoxLayout;

namespace vantrel::ui {

class MeterRow;

// A row or column of views with no margins. In a vertical stack every view spans the full width; with
// Distribution::FillEqually a horizontal stack gives every view the same width.
class StackView : public QWidget {
    Q_OBJECT

public:
    enum class Distribution { Fill, FillEqually };
    static constexpr int defaultSpacing = 8;

    explicit StackView(Qt::Orientation orientation, int spacing = defaultSpacing, QWidget* parent = nullptr);

    Qt::Orientation orientation() const { return orientation_; }
    int spacing() const;
    void setSpacing(int spacing);
    Distribution distribution() const { return distribution_; }
    // Applies to the views already arranged and to those added later.
    void setDistribution(Distribution distribution);

    // Appends the view (the stack becomes its parent).
    void addArrangedView(QWidget* view);
    // Takes the view out of the arrangement; its parent stays the stack.
    void removeArrangedView(QWidget* view);
    QList<QWidget*> arrangedViews() const;

private:
    void fitToDistribution(QWidget* view) const;

    Qt::Orientation orientation_;
    Distribution distribution_ = Distribution::Fill;
    QBoxLayout* layout_;
};

// A new vertical stack of the views, in order, each spanning the stack's width.
StackView* vertical(const QList<QWidget*>& views, int spacing);
// A new horizontal stack of the views, in order.
StackView* horizontal(const QList<QWidget*>& views, int spacing = StackView::defaultSpacing);
// An empty view that takes all free room of a horizontal stack, pushing what follows to the far end.
QWidget* flexibleSpace();
// A thin horizontal rule.
QWidget* separator();

// Empties the container (deleting every view in it), then fills it with `count` compact rows "1"…"N" in
// the tint, four to a line of equal cells (the last line padded with empty views), spacing 10; each
// row's bar is named "Jádro N" and the row shows no reading yet. `rows` receives the new rows in core
// order. A negative count stops the program.
void buildCoreGrid(StackView* container, int count, const QColor& tint, std::vector<MeterRow*>& rows);

} // namespace vantrel::ui
