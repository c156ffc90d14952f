#include "Vantrel/app/ElidingLabel.h"
#include "Vantrel/app/OverlayPanel.h"
#include "Vantrel/app/PlatformWording.h"
#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"
#include "Vantrel/ui/Palette.h"

#include <QApplication>
#include <QFrame>
#include <QLabel>
#include <QScrollArea>

#include "DelegateFixture.h"

namespace vantrel::testing {
namespace {

using ui::MiniSwitch;
using ui::StackView;

StackView* stackAt(StackView* stack, int index)
{
    return qobject_cast<StackView*>(stack->arrangedViews().at(index));
}

QLabel* labelAt(StackView* stack, int index)
{
    return qobject_cast<QLabel*>(stack->arrangedViews().at(index));
}

void expectFont(const QWidget* widget, int pixelSize, QFont::Weight weight)
{
    ASSERT_NE(widget, nullptr);
    EXPECT_EQ(widget->font().pixelSize(), pixelSize);
    EXPECT_EQ(widget->font().weight(), weight);
}

class PanelBuilderTest : public DelegateFixture {};

TEST_F(PanelBuilderTest, ThePanelIsAFloatingToolWindowThatNeverTakesFocus)
{
    const AppDelegate& app = withPanel();
    const OverlayPanel& panel = *app.panel;
    const Qt::WindowFlags flags = panel.windowFlags();
    EXPECT_EQ(flags & Qt::WindowType_Mask, Qt::Tool);
    EXPECT_TRUE(flags.testFlag(Qt::FramelessWindowHint));
    EXPECT_TRUE(flags.testFlag(Qt::WindowStaysOnTopHint));
    EXPECT_TRUE(flags.testFlag(Qt::WindowDoesNotAcceptFocus));
    EXPECT_TRUE(panel.testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_EQ(panel.focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(panel.width(), 292);
    EXPECT_FALSE(panel.isVisible()); // built, not shown
}

TEST_F(PanelBuilderTest, ThePanelIsDarkWhateverTheDesktopTheme)
{
    const QPalette desktopPalette = QApplication::palette();
    QPalette light = desktopPalette;
    light.setColor(QPalette::WindowText, Qt::black);
    light.setColor(QPalette::Window, Qt::white);
    QApplication::setPalette(light);
    const AppDelegate& app = withPanel();
    QLabel* title = labelAt(stackAt(stackAt(app.root, 0), 0), 0);
    const QColor titleColour = textColour(*title);
    QApplication::setPalette(desktopPalette);
    EXPECT_EQ(titleColour, ui::SystemColor::label());
}

TEST_F(PanelBuilderTest, WithACompositorThePanelIsTranslucentAndUnmasked)
{
    desktop.compositor = true;
    const AppDelegate& app = withPanel();
    EXPECT_TRUE(app.panel->isTranslucent());
    EXPECT_TRUE(app.panel->testAttribute(Qt::WA_TranslucentBackground));
    EXPECT_TRUE(app.panel->mask().isEmpty());
}

TEST_F(PanelBuilderTest, WithoutACompositorARoundedMaskCutsTheCorners)
{
    desktop.compositor = false;
    const AppDelegate& app = withShownPanel();
    EXPECT_FALSE(app.panel->testAttribute(Qt::WA_TranslucentBackground));
    const QRegion mask = app.panel->mask();
    const QRect bounds = app.panel->rect();
    EXPECT_EQ(mask.boundingRect(), bounds);
    EXPECT_FALSE(mask.contains(bounds.topLeft()));
    EXPECT_FALSE(mask.contains(bounds.topRight()));
    EXPECT_FALSE(mask.contains(bounds.bottomLeft()));
    EXPECT_FALSE(mask.contains(bounds.bottomRight()));
    EXPECT_TRUE(mask.contains(bounds.center()));
    EXPECT_TRUE(mask.contains(QPoint(bounds.center().x(), 0)));
    EXPECT_TRUE(mask.contains(QPoint(0, bounds.center().y())));
}

TEST_F(PanelBuilderTest, TheContentSitsInACanvasInsideTheScrollView)
{
    const AppDelegate& app = withPanel();
    ASSERT_NE(app.scroll, nullptr);
    EXPECT_EQ(app.scroll->window(), app.panel.get());
    EXPECT_EQ(app.scroll->widget(), app.canvas);
    EXPECT_EQ(app.scroll->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(app.scroll->frameShape(), QFrame::NoFrame);
    EXPECT_EQ(app.root->parentWidget(), app.canvas);
    EXPECT_EQ(app.canvas->width(), 292);
    EXPECT_EQ(app.root->geometry().topLeft(), QPoint(18, 16));
    EXPECT_EQ(app.root->width(), 256);
    EXPECT_GE(app.canvas->height() - app.root->geometry().bottom() - 1, 16);
}

TEST_F(PanelBuilderTest, RootHoldsTheHeaderAndTheBody)
{
    const AppDelegate& app = withPanel();
    ASSERT_EQ(app.root->arrangedViews().size(), 2);
    EXPECT_EQ(app.root->orientation(), Qt::Vertical);
    EXPECT_EQ(app.root->spacing(), 12);
    EXPECT_EQ(app.root->arrangedViews().at(1), app.body);
}

TEST_F(PanelBuilderTest, TheHeaderHasTheTitleBlockAndTheSwitchForTheFigures)
{
    const AppDelegate& app = withPanel();
    StackView* header = stackAt(app.root, 0);
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(header->orientation(), Qt::Horizontal);
    EXPECT_EQ(header->spacing(), 6);
    ASSERT_EQ(header->arrangedViews().size(), 4);

    StackView* titleBlock = stackAt(header, 0);
    ASSERT_NE(titleBlock, nullptr);
    EXPECT_EQ(titleBlock->orientation(), Qt::Vertical);
    EXPECT_EQ(titleBlock->spacing(), 2);
    ASSERT_EQ(titleBlock->arrangedViews().size(), 2);
    QLabel* title = labelAt(titleBlock, 0);
    QLabel* credit = labelAt(titleBlock, 1);
    ASSERT_NE(title, nullptr);
    ASSERT_NE(credit, nullptr);
    EXPECT_EQ(title->text(), QString::fromUtf8("Vantrel Solvane"));
    expectFont(title, 13, QFont::DemiBold);
    EXPECT_FALSE(credit->text().isEmpty());
    EXPECT_EQ(credit->text(), credit->text().toUpper());
    EXPECT_FALSE(credit->text().contains(QLatin1Char('\n')));
    expectFont(credit, 8, QFont::DemiBold);
    EXPECT_EQ(textColour(*credit), ui::SystemColor::secondaryLabel());

    QLabel* caption = labelAt(header, 2);
    ASSERT_NE(caption, nullptr);
    EXPECT_EQ(caption->text(), QString::fromUtf8("Zobrazit"));
    expectFont(caption, 10, QFont::Normal);
    EXPECT_EQ(header->arrangedViews().at(3), app.showSwitch.get());
}

TEST_F(PanelBuilderTest, TheSwitchesStartOnWithTheirNamesAndTips)
{
    const AppDelegate& app = withPanel();
    EXPECT_EQ(app.showSwitch->state(), MiniSwitch::State::On);
    EXPECT_EQ(app.showSwitch->accessibleName(), QString::fromUtf8("Zobrazit nebo skrýt údaje"));
    EXPECT_EQ(app.showSwitch->toolTip(),
              QString::fromUtf8("Zobrazit / skrýt údaje; přepínač zůstane dostupný."));
    EXPECT_EQ(app.detailSwitch->state(), MiniSwitch::State::On);
    EXPECT_EQ(app.detailSwitch->accessibleName(), QString::fromUtf8("Všechny parametry"));
    for (const auto* row : {app.cpu.get(), app.gpu.get()}) {
        const MiniSwitch* control = row->coreSwitch();
        EXPECT_FALSE(control->isHidden());
        EXPECT_EQ(control->state(), MiniSwitch::State::On);
        EXPECT_EQ(control->accessibleName(), QString::fromUtf8("Jednotlivá jádra ") + row->label()->text());
        EXPECT_EQ(control->toolTip(), QString::fromUtf8("Zobrazit / skrýt jednotlivá jádra"));
    }
    EXPECT_EQ(app.cpu->coreSwitch()->accessibleName(), QString::fromUtf8("Jednotlivá jádra CPU"));
    EXPECT_EQ(app.gpu->coreSwitch()->accessibleName(), QString::fromUtf8("Jednotlivá jádra GPU"));
    // Only the CPU and GPU rows carry a switch.
    for (const auto* row : {app.quota.get(), app.weekly.get(), app.ram.get(), app.network.get()}) {
        EXPECT_TRUE(row->coreSwitch()->isHidden());
    }
}

TEST_F(PanelBuilderTest, TheBodyListsItsBlocksInOrder)
{
    const AppDelegate& app = withPanel();
    EXPECT_EQ(app.body->spacing(), 12);
    const QList<QWidget*> views = app.body->arrangedViews();
    ASSERT_EQ(views.size(), 8);
    EXPECT_NE(qobject_cast<QFrame*>(views.at(0)), nullptr); // separator
    EXPECT_EQ(views.at(0)->height(), 1);
    EXPECT_EQ(views.at(1), app.quota.get());
    EXPECT_EQ(views.at(2), app.weekly.get());
    EXPECT_EQ(views.at(3), app.creditLabel.get());
    EXPECT_EQ(views.at(5), app.details);
    EXPECT_EQ(views.at(6), app.updated.get());

    StackView* detailLine = stackAt(app.body, 4);
    ASSERT_NE(detailLine, nullptr);
    EXPECT_EQ(detailLine->orientation(), Qt::Horizontal);
    ASSERT_EQ(detailLine->arrangedViews().size(), 3);
    QLabel* detailCaption = labelAt(detailLine, 0);
    ASSERT_NE(detailCaption, nullptr);
    EXPECT_EQ(detailCaption->text(), QString::fromUtf8("Všechny parametry"));
    expectFont(detailCaption, 11, QFont::Normal);
    EXPECT_EQ(detailLine->arrangedViews().at(2), app.detailSwitch.get());

    QLabel* maker = labelAt(app.body, 7);
    ASSERT_NE(maker, nullptr);
    EXPECT_TRUE(maker->text().startsWith(QString::fromUtf8("©")));
    EXPECT_EQ(maker->alignment() & Qt::AlignHorizontal_Mask, Qt::AlignHCenter);
    expectFont(maker, 8, QFont::Normal);
    EXPECT_EQ(textColour(*maker), ui::SystemColor::secondaryLabel());
}

TEST_F(PanelBuilderTest, TheFooterLinesHaveTheirFontsColoursAndFirstTexts)
{
    const AppDelegate& app = withPanel();
    EXPECT_EQ(app.creditLabel->text(), QString::fromUtf8("Tokeny: API neposkytuje"));
    expectFont(app.creditLabel.get(), 9, QFont::Normal);
    EXPECT_EQ(textColour(*app.creditLabel), ui::SystemColor::tertiaryLabel());
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity: načítání…"));
    expectFont(app.updated.get(), 9, QFont::Normal);
    EXPECT_EQ(textColour(*app.updated), ui::SystemColor::secondaryLabel());
}

TEST_F(PanelBuilderTest, TheStatusLineIsCutAtTheEndInsteadOfWideningThePanel)
{
    AppDelegate& app = withShownPanel();
    app.updated->setText(QString(300, QLatin1Char('x')));
    app.resize();
    EXPECT_EQ(app.root->width(), 256);
    EXPECT_EQ(app.updated->width(), 256);
    EXPECT_EQ(app.updated->text().size(), 300); // the whole text stays readable to assistive technology
}

TEST_F(PanelBuilderTest, TheDetailsBlockListsTheTelemetryRows)
{
    const AppDelegate& app = withPanel();
    EXPECT_EQ(app.details->spacing(), 12);
    EXPECT_FALSE(app.details->isHidden());
    const QList<QWidget*> views = app.details->arrangedViews();
    ASSERT_EQ(views.size(), 7);
    EXPECT_NE(qobject_cast<QFrame*>(views.at(0)), nullptr);
    EXPECT_EQ(views.at(1), app.cpu.get());
    EXPECT_EQ(views.at(2), app.cpuDetail);
    EXPECT_EQ(views.at(3), app.ram.get());
    EXPECT_EQ(views.at(4), app.gpu.get());
    EXPECT_EQ(views.at(5), app.gpuDetail);
    EXPECT_EQ(views.at(6), app.network.get());
    EXPECT_EQ(app.cpuDetail->spacing(), 8);
    EXPECT_EQ(app.gpuDetail->spacing(), 8);
}

TEST_F(PanelBuilderTest, TheRowsHaveTheirCaptionsModesAndTints)
{
    const AppDelegate& app = withPanel();
    struct Expected {
        const ui::MeterRow* row;
        const char* caption;
        bool remaining;
        const QColor& tint;
    };
    for (const Expected& e :
         {Expected{app.quota.get(), "Zbývá · krátkodobý limit", true, ui::Palette::quota()},
          Expected{app.weekly.get(), "Zbývá · dlouhodobý limit", true, ui::Palette::weekly()},
          Expected{app.cpu.get(), "CPU", false, ui::Palette::cpu()},
          Expected{app.ram.get(), "RAM", false, ui::Palette::ram()},
          Expected{app.gpu.get(), "GPU", false, ui::Palette::gpu()},
          Expected{app.network.get(), "Síť", false, ui::Palette::network()}}) {
        EXPECT_EQ(e.row->label()->text(), QString::fromUtf8(e.caption));
        EXPECT_EQ(e.row->remaining(), e.remaining) << e.caption;
        EXPECT_EQ(e.row->value()->text(), QString::fromUtf8("—")) << e.caption;
        expectFont(e.row->label(), 11, QFont::Medium);
    }
}

TEST_F(PanelBuilderTest, TheCpuGridHasOneCellPerProcessor)
{
    processors = 10;
    const AppDelegate& app = withPanel();
    ASSERT_EQ(app.cpuRows.size(), 10U);
    // Three lines of four cells, the last padded with two empty cells.
    ASSERT_EQ(app.cpuDetail->arrangedViews().size(), 3);
    for (std::size_t index = 0; index < app.cpuRows.size(); ++index) {
        EXPECT_EQ(app.cpuRows[index]->label()->text(), QString::number(index + 1));
        EXPECT_EQ(app.cpuRows[index]->value()->text(), QString::fromUtf8("—"));
    }
}

TEST_F(PanelBuilderTest, WithoutAGpuCoreCountTheGpuBlockHoldsOnlyTheNote)
{
    const AppDelegate& app = withShownPanel();
    EXPECT_TRUE(app.gpuRows.empty());
    ASSERT_EQ(app.gpuDetail->arrangedViews().size(), 1);
    QLabel* note = labelAt(app.gpuDetail, 0);
    ASSERT_NE(note, nullptr);
    EXPECT_EQ(note->text(), QString::fromUtf8(platformWording.gpuPerCoreNote));
    EXPECT_TRUE(note->wordWrap());
    expectFont(note, 9, QFont::Normal);
    EXPECT_EQ(textColour(*note), ui::SystemColor::secondaryLabel());
    EXPECT_EQ(note->width(), app.gpuDetail->width());
}

TEST_F(PanelBuilderTest, EverySingleRowSpansTheContentWidth)
{
    const AppDelegate& app = withShownPanel();
    for (const QWidget* view : app.body->arrangedViews()) {
        EXPECT_EQ(view->width(), 256) << view->metaObject()->className();
    }
    for (const QWidget* view : app.details->arrangedViews()) {
        EXPECT_EQ(view->width(), 256) << view->metaObject()->className();
    }
}

} // namespace
} // namespace vantrel::testing
