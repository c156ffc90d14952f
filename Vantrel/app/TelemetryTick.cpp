#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/ElidingLabel.h"
#include "Vantrel/app/OverlayPanel.h"
#include "Vantrel/app/RowReading.h"
#include "Vantrel/telemetry/TelemetryPresentation.h"
#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/Palette.h"

#include <utility>

namespace vantrel {

void AppDelegate::sample()
{
    // A terminal in front starts and ends programs in its tabs without any window changing.
    if (frontmost_.recheckTerminal()) {
        applyVisibility();
    }
    SampleRecord record = sampler.sample();
    // A hidden panel is not drawn, yet figures put on its views would still cost text layout and
    // accessibility events every tick: the newest record waits for the panel to show instead.
    if (panel != nullptr && !panel->isVisible()) {
        heldSample_ = std::move(record);
        return;
    }
    showSample(record);
}

void AppDelegate::showHeldSample()
{
    if (const auto record = std::exchange(heldSample_, std::nullopt)) {
        showSample(*record);
    }
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
        showReading(*cpuRows[index], shown.cores[index].value, shown.cores[index].tooltip);
    }
    showReading(*cpu, shown.cpu.value, shown.cpu.tooltip);
    showReading(*ram, shown.ram.value, shown.ram.tooltip);
    showReading(*gpu, shown.gpu.value, shown.gpu.tooltip);
    showReading(*network, shown.network.value, shown.network.tooltip);

    if (const auto warning = stalenessWarning(lastUsage, lastFetchFailed, services_.now())) {
        updated->setText(QString::fromStdString(*warning));
        ui::setTextColor(updated.get(), ui::SystemColor::systemOrange());
    }
}

} // namespace vantrel
