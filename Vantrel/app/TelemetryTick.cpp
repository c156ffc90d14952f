#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/ElidingLabel.h"
#include "Vantrel/telemetry/TelemetryPresentation.h"
#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/Palette.h"

namespace vantrel {
namespace {

void show(ui::MeterRow& row, const RowReading& reading)
{
    std::optional<QString> tooltip;
    if (reading.tooltip) {
        tooltip = QString::fromStdString(*reading.tooltip);
    }
    row.update(reading.value, tooltip);
}

} // namespace

void AppDelegate::sample()
{
    showSample(sampler.sample());
}

void AppDelegate::showSample(const SampleRecord& record)
{
    const TelemetryPresentation shown = presentSample(record, cpuRows.size());
    if (shown.rebuildCoreGridWith) {
        if (cpuDetail == nullptr) {
            qFatal("vantrel: the core grid is rebuilt before the panel was built");
        }
        ui::buildCoreGrid(cpuDetail, static_cast<int>(*shown.rebuildCoreGridWith), ui::Palette::cpu(),
                          cpuRows);
        resize();
    }
    for (std::size_t index = 0; index < cpuRows.size() && index < shown.cores.size(); ++index) {
        show(*cpuRows[index], shown.cores[index]);
    }
    show(*cpu, shown.cpu);
    show(*ram, shown.ram);
    show(*gpu, shown.gpu);
    show(*network, shown.network);

    if (const auto warning = stalenessWarning(lastUsage, lastFetchFailed, services_.now())) {
        updated->setText(QString::fromStdString(*warning));
        ui::setTextColor(updated.get(), ui::SystemColor::systemOrange());
    }
}

} // namespace vantrel
