#include "Vantrel/app/AppDelegate.h"
#include "Vantrel/app/ElidingLabel.h"
#include "Vantrel/app/MainThreadQueue.h"
#include "Vantrel/app/RowReading.h"
#include "Vantrel/limits/LimitsScript.h"
#include "Vantrel/limits/UsageInterpretation.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/Palette.h"

#include <QLabel>

#include <nlohmann/json.hpp>

#include <thread>

namespace vantrel {
namespace {

void show(ui::MeterRow& row, const limits::LimitRowUsage& usage)
{
    if (usage.caption) {
        row.label()->setText(QString::fromStdString(*usage.caption));
    }
    showReading(row, usage.value, usage.tooltip);
}

} // namespace

void AppDelegate::fetchUsage()
{
    if (isFetching) {
        return;
    }
    isFetching = true;
    auto command = limits::limitsScriptCommand(services_.resourceDirectory());

    // A plain detached thread, not a pool: a script that never ends must not hold up quitting.
    std::thread([command = std::move(command), mainThread = mainThread_, delegate = this] {
        // Loads ICU's data here, so the first interpretation does not pay for it on the main thread.
        limits::warmUpInterpretation();
        auto result = limits::runLimitsScript(command, [&](const limits::ScriptProcess& process) {
            mainThread->post([delegate, process] { delegate->usageProcess = process; });
        });
        mainThread->post([delegate, result = std::move(result)] { delegate->finishFetch(result); });
    }).detach();
}

void AppDelegate::finishFetch(const std::optional<nlohmann::json>& result)
{
    isFetching = false;
    usageProcess.reset();
    if (result) {
        applyUsage(*result);
        return;
    }
    lastFetchFailed = true;
    updated->setText(QString::fromUtf8(lastUsage ? "Limity: starší údaj · nelze obnovit"
                                                 : "Limity nejsou dostupné · místní výkon funguje"));
    ui::setTextColor(updated.get(), ui::SystemColor::systemOrange());
}

void AppDelegate::applyUsage(const nlohmann::json& document)
{
    const limits::UsagePresentation shown = limits::interpretUsage(document, services_.usageContext());
    show(*quota, shown.quota);
    show(*weekly, shown.weekly);
    if (shown.creditText) {
        creditLabel->setText(QString::fromStdString(*shown.creditText));
    }
    lastUsage = shown.lastUsage;
    if (shown.clearsLastFetchFailed) {
        lastFetchFailed = false;
    }
    updated->setText(QString::fromStdString(shown.statusText));
    switch (shown.statusColour) {
    case limits::StatusColour::Orange:
        ui::setTextColor(updated.get(), ui::SystemColor::systemOrange());
        break;
    case limits::StatusColour::Secondary:
        ui::setTextColor(updated.get(), ui::SystemColor::secondaryLabel());
        break;
    case limits::StatusColour::Unchanged:
        break;
    }
}

} // namespace vantrel
