#include "tools/gallery/Gallery.h"

#include "Vantrel/ui/Fonts.h"
#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"
#include "Vantrel/ui/Palette.h"

#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <array>
#include <optional>
#include <vector>

namespace vantrel::gallery {
namespace {

using ui::MeterRow;
using ui::Palette;

constexpr int panelWidth = 292;
constexpr int sideInset = 18;
constexpr int topInset = 16;
constexpr int panelRadius = 18;
constexpr int sectionSpacing = 12;

// Stands in for the panel's dark, translucent, rounded background.
class Backdrop : public QWidget {
public:
    Backdrop()
    {
        setPalette(ui::darkPalette());
        setAttribute(Qt::WA_TranslucentBackground);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath shape;
        shape.addRoundedRect(QRectF(rect()), panelRadius, panelRadius);
        painter.fillPath(shape, QColor(28, 28, 30, 235));
    }
};

QLabel* heading(const QString& text)
{
    auto* label = new QLabel(text);
    label->setFont(ui::systemFont(10, QFont::DemiBold));
    ui::setTextColor(label, ui::SystemColor::tertiaryLabel());
    return label;
}

MeterRow* row(const QString& caption, bool remaining, const QColor& tint, std::optional<double> value,
              const std::optional<QString>& tooltip = std::nullopt)
{
    auto* meter = new MeterRow(caption, remaining, tint);
    meter->update(value, tooltip);
    return meter;
}

QWidget* switches()
{
    QList<QWidget*> views;
    for (const auto state :
         {ui::MiniSwitch::State::Off, ui::MiniSwitch::State::On, ui::MiniSwitch::State::Mixed}) {
        auto* control = new ui::MiniSwitch;
        control->setState(state);
        views.append(control);
    }
    auto* caption = new QLabel(QStringLiteral("Všechny parametry"));
    caption->setFont(ui::systemFont(11));
    return ui::horizontal({caption, ui::flexibleSpace(), views[0], views[1], views[2]}, 6);
}

QWidget* coreGrid()
{
    auto* container = ui::vertical({}, 8);
    std::vector<MeterRow*> rows;
    ui::buildCoreGrid(container, 10, Palette::cpu(), rows);
    // A mix of readings, one core still without one, and one busy core in orange.
    const std::array<std::optional<double>, 10> loads{12.0,         47.5, 3.0, 100.0, 64.0,
                                                      std::nullopt, 88.0, 0.0, 31.0,  9.0};
    for (std::size_t core = 0; core < rows.size(); ++core) {
        rows[core]->update(loads[core], std::nullopt);
    }
    return container;
}

} // namespace

QWidget* buildGallery()
{
    auto* cpu = row(QStringLiteral("CPU"), false, Palette::cpu(), 37.0);
    cpu->coreSwitch()->setState(ui::MiniSwitch::State::On);
    cpu->coreSwitch()->show();

    auto* content = ui::vertical(
        {
            heading(QStringLiteral("Limit rows")),
            row(QStringLiteral("Zbývá · krátkodobý limit"), true, Palette::quota(), 64.0),
            row(QStringLiteral("Zbývá · dlouhodobý limit"), true, Palette::weekly(), 81.5),
            ui::separator(),
            heading(QStringLiteral("Load rows")),
            cpu,
            row(QStringLiteral("RAM"), false, Palette::ram(), 58.0),
            row(QStringLiteral("GPU"), false, Palette::gpu(), 12.0),
            row(QStringLiteral("Síť"), false, Palette::network(), 2.4),
            ui::separator(),
            heading(QStringLiteral("Warnings")),
            row(QStringLiteral("Zbývá · krátkodobý limit"), true, Palette::quota(), 9.0),
            row(QStringLiteral("RAM"), false, Palette::ram(), 91.0),
            row(QStringLiteral("CPU"), false, Palette::cpu(), 120.0),
            ui::separator(),
            heading(QStringLiteral("Unavailable")),
            row(QStringLiteral("Zbývá · dlouhodobý limit"), true, Palette::weekly(), std::nullopt),
            row(QStringLiteral("GPU"), false, Palette::gpu(), std::nullopt),
            ui::separator(),
            heading(QStringLiteral("Mini switch: off, on, mixed")),
            switches(),
            ui::separator(),
            heading(QStringLiteral("10-core grid")),
            coreGrid(),
        },
        sectionSpacing);

    auto* backdrop = new Backdrop;
    auto* layout = new QVBoxLayout(backdrop);
    layout->setContentsMargins(sideInset, topInset, sideInset, topInset);
    layout->addWidget(content);
    backdrop->setFixedWidth(panelWidth);
    backdrop->adjustSize();
    return backdrop;
}

} // namespace vantrel::gallery
