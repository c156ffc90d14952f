#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"
#include "Vantrel/ui/Palette.h"
#include "Vantrel/ui/PastelBar.h"

#include <QFrame>
#include <QLabel>
#include <QLayout>
#include <QPointer>

#include <gtest/gtest.h>

#include <memory>

namespace vantrel::ui {
namespace {

// Lays the stack out at a given width, as its window would.
void layOut(QWidget& stack, int width)
{
    stack.resize(width, std::max(stack.sizeHint().height(), 1));
    stack.layout()->activate();
    for (QWidget* child : stack.findChildren<QWidget*>()) {
        if (child->layout() != nullptr) {
            child->layout()->activate();
        }
    }
}

TEST(VerticalTest, WithNoViewsIsAnEmptyColumnWithTheSpacing)
{
    const std::unique_ptr<StackView> stack(vertical({}, 12));
    EXPECT_EQ(stack->orientation(), Qt::Vertical);
    EXPECT_TRUE(stack->arrangedViews().isEmpty());
    EXPECT_EQ(stack->spacing(), 12);
    EXPECT_EQ(stack->layout()->contentsMargins(), QMargins());
}

TEST(VerticalTest, StacksTheViewsInOrderEachSpanningTheFullWidth)
{
    auto* caption = new QLabel(QStringLiteral("Všechny parametry"));
    auto* control = new MiniSwitch;
    auto* row = new MeterRow(QStringLiteral("CPU"), false);
    const std::unique_ptr<StackView> stack(vertical({caption, control, row}, 8));
    EXPECT_EQ(stack->arrangedViews(), (QList<QWidget*>{caption, control, row}));
    layOut(*stack, 256);
    int nextTop = 0;
    for (QWidget* view : stack->arrangedViews()) {
        EXPECT_EQ(view->parentWidget(), stack.get());
        EXPECT_EQ(view->geometry().left(), 0);
        EXPECT_EQ(view->width(), 256);
        EXPECT_EQ(view->geometry().top(), nextTop);
        nextTop = view->geometry().bottom() + 1 + 8;
    }
}

TEST(HorizontalTest, FlexibleSpacePushesTheLastViewToTheFarEnd)
{
    auto* caption = new QLabel(QStringLiteral("Zobrazit"));
    auto* control = new MiniSwitch;
    const std::unique_ptr<StackView> line(horizontal({caption, flexibleSpace(), control}, 6));
    EXPECT_EQ(line->orientation(), Qt::Horizontal);
    EXPECT_EQ(line->spacing(), 6);
    layOut(*line, 256);
    EXPECT_EQ(caption->geometry().left(), 0);
    EXPECT_EQ(caption->width(), caption->sizeHint().width());
    EXPECT_EQ(control->geometry().right(), 255);
}

TEST(SeparatorTest, IsAThinHorizontalRuleAcrossTheColumn)
{
    QWidget* rule = separator();
    auto* frame = qobject_cast<QFrame*>(rule);
    ASSERT_NE(frame, nullptr);
    EXPECT_EQ(frame->frameShape(), QFrame::HLine);
    const std::unique_ptr<StackView> stack(vertical({rule}, 0));
    layOut(*stack, 256);
    EXPECT_EQ(rule->geometry(), QRect(0, 0, 256, 1));
}

struct GridCase {
    int count;
    std::vector<std::vector<QString>> lines; // row captions per line; "" marks an empty padding cell
};

class CoreGridTest : public ::testing::TestWithParam<GridCase> {};

TEST_P(CoreGridTest, FillsLinesOfFourEqualCells)
{
    const GridCase& expected = GetParam();
    const std::unique_ptr<StackView> container(vertical({}, 8));
    std::vector<MeterRow*> rows;
    buildCoreGrid(container.get(), expected.count, Palette::gpu(), rows);

    // 4 cells and 3 gaps of 10 share the width: 262 = 4 × 58 + 30.
    layOut(*container, 262);
    const QList<QWidget*> lines = container->arrangedViews();
    ASSERT_EQ(lines.size(), static_cast<qsizetype>(expected.lines.size()));
    for (qsizetype lineIndex = 0; lineIndex < lines.size(); ++lineIndex) {
        auto* line = qobject_cast<StackView*>(lines[lineIndex]);
        ASSERT_NE(line, nullptr);
        EXPECT_EQ(line->orientation(), Qt::Horizontal);
        EXPECT_EQ(line->spacing(), 10);
        EXPECT_EQ(line->distribution(), StackView::Distribution::FillEqually);
        EXPECT_EQ(line->width(), 262);
        const QList<QWidget*> cells = line->arrangedViews();
        const auto& captions = expected.lines[static_cast<std::size_t>(lineIndex)];
        ASSERT_EQ(cells.size(), 4);
        for (qsizetype cell = 0; cell < cells.size(); ++cell) {
            const QString& caption = captions[static_cast<std::size_t>(cell)];
            auto* row = qobject_cast<MeterRow*>(cells[cell]);
            if (caption.isEmpty()) {
                EXPECT_EQ(row, nullptr) << "padding expected at line " << lineIndex << " cell " << cell;
                EXPECT_EQ(cells[cell]->metaObject(), &QWidget::staticMetaObject);
            } else {
                ASSERT_NE(row, nullptr);
                EXPECT_EQ(row->label()->text(), caption);
            }
            EXPECT_EQ(cells[cell]->geometry().left(), static_cast<int>(cell) * (58 + 10));
            EXPECT_EQ(cells[cell]->width(), 58);
        }
    }
}

TEST_P(CoreGridTest, HandsBackTheRowsInCoreOrderShowingNoReading)
{
    const GridCase& expected = GetParam();
    const std::unique_ptr<StackView> container(vertical({}, 8));
    std::vector<MeterRow*> rows;
    buildCoreGrid(container.get(), expected.count, Palette::gpu(), rows);

    ASSERT_EQ(rows.size(), static_cast<std::size_t>(expected.count));
    for (std::size_t index = 0; index < rows.size(); ++index) {
        const MeterRow& row = *rows[index];
        const QString number = QString::number(index + 1);
        EXPECT_EQ(row.label()->text(), number);
        EXPECT_FALSE(row.remaining());
        EXPECT_EQ(row.progress()->tint(), Palette::gpu());
        EXPECT_EQ(row.label()->font().pixelSize(), 9);
        EXPECT_EQ(row.value()->font().pixelSize(), 9);
        EXPECT_EQ(row.progress()->accessibleName(), QStringLiteral("Jádro ") + number);
        EXPECT_EQ(row.value()->text(), QStringLiteral("—"));
        EXPECT_EQ(row.progress()->alphaValue(), MeterRow::dimmedAlpha);
        EXPECT_EQ(row.progress()->accessibilityValue(), QVariant(QStringLiteral("Nedostupné")));
        EXPECT_EQ(row.toolTip(), QStringLiteral("Údaj není dostupný."));
        EXPECT_TRUE(container->isAncestorOf(rows[index]));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Counts, CoreGridTest,
    ::testing::Values(GridCase{0, {}}, GridCase{1, {{"1", "", "", ""}}}, GridCase{4, {{"1", "2", "3", "4"}}},
                      GridCase{5, {{"1", "2", "3", "4"}, {"5", "", "", ""}}},
                      GridCase{10, {{"1", "2", "3", "4"}, {"5", "6", "7", "8"}, {"9", "10", "", ""}}}),
    [](const ::testing::TestParamInfo<GridCase>& param) { return std::to_string(param.param.count); });

TEST(CoreGridTest, ACellOfAShortLineIsAQuarterOfTheWidthLessSpacing)
{
    const std::unique_ptr<StackView> container(vertical({}, 8));
    std::vector<MeterRow*> rows;
    buildCoreGrid(container.get(), 1, Palette::cpu(), rows);
    layOut(*container, 256);
    // (256 − 3 × 10) / 4 = 56.5: the layout rounds each cell to a whole pixel.
    EXPECT_NEAR(rows[0]->width(), 56.5, 0.5);
}

TEST(CoreGridTest, EmptiesTheWholeContainerFirst)
{
    auto* note = new QLabel(QStringLiteral("— = nedostupné."));
    const std::unique_ptr<StackView> container(vertical({note}, 8));
    const QPointer<QLabel> watched(note);
    std::vector<MeterRow*> rows{new MeterRow(QStringLiteral("stale"), false)};
    const std::unique_ptr<MeterRow> stale(rows[0]);

    buildCoreGrid(container.get(), 0, Palette::gpu(), rows);
    EXPECT_TRUE(watched.isNull());
    EXPECT_TRUE(container->arrangedViews().isEmpty());
    EXPECT_TRUE(container->findChildren<QWidget*>().isEmpty());
    EXPECT_TRUE(rows.empty());
}

TEST(CoreGridTest, RebuildingReplacesEveryLineAndRow)
{
    const std::unique_ptr<StackView> container(vertical({}, 8));
    std::vector<MeterRow*> rows;
    buildCoreGrid(container.get(), 10, Palette::cpu(), rows);
    std::vector<QPointer<QWidget>> old;
    for (QWidget* view : container->findChildren<QWidget*>()) {
        old.emplace_back(view);
    }

    buildCoreGrid(container.get(), 6, Palette::cpu(), rows);
    for (const QPointer<QWidget>& view : old) {
        EXPECT_TRUE(view.isNull());
    }
    EXPECT_EQ(container->arrangedViews().size(), 2);
    ASSERT_EQ(rows.size(), 6U);
    for (std::size_t index = 0; index < rows.size(); ++index) {
        EXPECT_EQ(rows[index]->label()->text(), QString::number(index + 1));
        EXPECT_EQ(rows[index]->progress()->accessibleName(), QStringLiteral("Jádro %1").arg(index + 1));
    }
}

TEST(CoreGridDeathTest, ANegativeCountStopsTheProgram)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            const std::unique_ptr<StackView> container(vertical({}, 8));
            std::vector<MeterRow*> rows;
            buildCoreGrid(container.get(), -1, Palette::cpu(), rows);
        },
        "negative core count -1");
}

} // namespace
} // namespace vantrel::ui
