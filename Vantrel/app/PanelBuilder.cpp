#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/Desktop.h"
#include "Vantrel/app/ElidingLabel.h"
#include "Vantrel/app/OverlayPanel.h"
#include "Vantrel/app/PanelGeometry.h"
#include "Vantrel/app/PlatformWording.h"
#include "Vantrel/ui/Fonts.h"
#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"
#include "Vantrel/ui/Palette.h"

#include <QLabel>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <string_view>

namespace vantrel {
namespace {

constexpr int initialPanelHeight = 200;
constexpr int initialCanvasHeight = 700;
constexpr int headerSpacing = 6;
constexpr int titleSpacing = 2;
constexpr int coreBlockSpacing = 8;
constexpr int blockSpacing = 12;

// Our own two texts of the panel: the credit under the title and the maker line at the bottom.
constexpr auto creditSubtitle = "VYTVOŘIL SOLVANE";
constexpr auto makerLine = "© Solvane";

// A vertical scroller that hides in the 18-pixel side inset instead of narrowing the content.
constexpr auto slimScroller =
    "QScrollBar:vertical { width: 6px; background: transparent; margin: 4px 1px; }"
    "QScrollBar::handle:vertical { background: rgba(255,255,255,64); border-radius: 2px;"
    " min-height: 24px; }"
    "QScrollBar::add-line:vertical, QScrollBar::sub-line:vertical { height: 0; }"
    "QScrollBar::add-page:vertical, QScrollBar::sub-page:vertical { background: none; }";

QLabel* makeLabel(std::string_view text, int pixelSize, QFont::Weight weight, const QColor* colour = nullptr)
{
    auto* label = new QLabel(QString::fromUtf8(text));
    label->setFont(ui::systemFont(pixelSize, weight));
    if (colour != nullptr) {
        ui::setTextColor(label, *colour);
    }
    return label;
}

void configureSwitch(ui::MiniSwitch& control, const QString& accessibleName)
{
    control.setState(ui::MiniSwitch::State::On);
    control.setAccessibleName(accessibleName);
}

} // namespace

void AppDelegate::createPanel()
{
    panel = std::make_unique<OverlayPanel>(services_.desktop->hasCompositor());
    panel->setWindowTitle(QString::fromUtf8("Vantrel Solvane"));
    panel->setPalette(ui::darkPalette());
    panel->resize(panelWidth, initialPanelHeight);
    // A right click anywhere on the panel opens the menu of the tray item, whether or not a tray host
    // shows the item.
    panelMenu = std::make_unique<QMenu>();
    panelMenu->addActions(menuEntries);
    connect(panel.get(), &OverlayPanel::menuRequested, this, &AppDelegate::showPanelMenu);
    // In a Wayland session XWayland sees no click on a native window, so a click there leaves the menu
    // open; another window coming to the front closes it.
    connect(services_.desktop, &Desktop::frontmostChanged, panelMenu.get(), &QWidget::close);

    // Header: title and credit, then the switch for the figures with its caption at the top right.
    auto* titleBlock =
        ui::vertical({makeLabel("Vantrel Solvane", 13, QFont::DemiBold),
                      makeLabel(creditSubtitle, 8, QFont::DemiBold, &ui::SystemColor::secondaryLabel())},
                     titleSpacing);
    configureSwitch(*showSwitch, QString::fromUtf8("Zobrazit nebo skrýt údaje"));
    showSwitch->setToolTip(QString::fromUtf8("Zobrazit / skrýt údaje; přepínač zůstane dostupný."));
    connect(showSwitch.get(), &ui::MiniSwitch::activated, this, &AppDelegate::toggleShow);
    auto* headerLine = ui::horizontal(
        {titleBlock, ui::flexibleSpace(), makeLabel("Zobrazit", 10, QFont::Normal), showSwitch.get()},
        headerSpacing);

    configureSwitch(*detailSwitch, QString::fromUtf8("Všechny parametry"));
    connect(detailSwitch.get(), &ui::MiniSwitch::activated, this, &AppDelegate::toggleDetails);
    auto* detailLine = ui::horizontal(
        {makeLabel("Všechny parametry", 11, QFont::Normal), ui::flexibleSpace(), detailSwitch.get()});

    cpuDetail = ui::vertical({}, coreBlockSpacing);
    gpuDetail = ui::vertical({}, coreBlockSpacing);
    for (ui::MeterRow* row : {cpu.get(), gpu.get()}) {
        row->coreSwitch()->setVisible(true);
        configureSwitch(*row->coreSwitch(), QString::fromUtf8("Jednotlivá jádra ") + row->label()->text());
        row->coreSwitch()->setToolTip(QString::fromUtf8("Zobrazit / skrýt jednotlivá jádra"));
        connect(row->coreSwitch(), &ui::MiniSwitch::activated, this, &AppDelegate::toggleCores);
    }
    ui::buildCoreGrid(cpuDetail, services_.activeProcessorCount(), ui::Palette::cpu(), cpuRows);
    const auto gpuCores = sampler.gpuCoreCount();
    ui::buildCoreGrid(gpuDetail, gpuCores ? static_cast<int>(*gpuCores) : 0, ui::Palette::gpu(), gpuRows);
    auto* gpuNote =
        makeLabel(platformWording.gpuPerCoreNote, 9, QFont::Normal, &ui::SystemColor::secondaryLabel());
    gpuNote->setWordWrap(true);
    gpuDetail->addArrangedView(gpuNote);

    details =
        ui::vertical({ui::separator(), cpu.get(), cpuDetail, ram.get(), gpu.get(), gpuDetail, network.get()},
                     blockSpacing);
    details->setVisible(true);

    creditLabel->setFont(ui::systemFont(9));
    ui::setTextColor(creditLabel.get(), ui::SystemColor::tertiaryLabel());
    updated->setFont(ui::systemFont(9));
    ui::setTextColor(updated.get(), ui::SystemColor::secondaryLabel());
    auto* maker = makeLabel(makerLine, 8, QFont::Normal, &ui::SystemColor::secondaryLabel());
    maker->setAlignment(Qt::AlignHCenter);

    body = ui::vertical({ui::separator(), quota.get(), weekly.get(), creditLabel.get(), detailLine, details,
                         updated.get(), maker},
                        blockSpacing);
    root = ui::vertical({headerLine, body}, blockSpacing);

    // The canvas has no layout of its own: resize() sizes it and places root in it, 18 from the sides
    // and 16 from the top, so the canvas may be taller than the content.
    canvas = new QWidget;
    canvas->resize(panelWidth, initialCanvasHeight);
    root->setParent(canvas);
    root->move(contentSideInset, contentTopInset);
    scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    scroll->verticalScrollBar()->setStyleSheet(QString::fromLatin1(slimScroller));
    scroll->setWidget(canvas);
    // QScrollArea paints what it holds; the panel's own backdrop shows through instead.
    scroll->viewport()->setAutoFillBackground(false);
    canvas->setAutoFillBackground(false);
    auto* fill = new QVBoxLayout(panel.get());
    fill->setContentsMargins(0, 0, 0, 0);
    fill->addWidget(scroll);

    resize();
}

} // namespace vantrel
