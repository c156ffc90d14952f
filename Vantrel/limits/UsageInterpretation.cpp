#include "Vantrel/limits/UsageInterpretation.h"

#include "Vantrel/limits/DateFormatting.h"
#include "Vantrel/limits/DocumentKeys.h"
#include "Vantrel/limits/WindowCaption.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <mutex>
#include <span>

namespace vantrel::limits {
namespace {

using nlohmann::json;

// The document is read as untyped maps: a missing key and a value of another JSON type are the same.
const json* member(const json& object, const char* key)
{
    if (!object.is_object()) {
        return nullptr;
    }
    const auto found = object.find(key);
    return found == object.end() ? nullptr : &*found;
}

std::optional<double> numberField(const json& object, const char* key)
{
    const json* value = member(object, key);
    return value != nullptr && value->is_number() ? std::optional(value->get<double>()) : std::nullopt;
}

const std::string* stringField(const json& object, const char* key)
{
    const json* value = member(object, key);
    return value != nullptr && value->is_string() ? value->get_ptr<const std::string*>() : nullptr;
}

std::optional<bool> booleanField(const json& object, const char* key)
{
    const json* value = member(object, key);
    return value != nullptr && value->is_boolean() ? std::optional(value->get<bool>()) : std::nullopt;
}

// One element that is not an object makes the whole array absent (empty).
std::span<const json> objectArrayField(const json& object, const char* key)
{
    const json* value = member(object, key);
    if (value == nullptr || !value->is_array()) {
        return {};
    }
    const auto& elements = value->get_ref<const json::array_t&>();
    for (const json& element : elements) {
        if (!element.is_object()) {
            return {};
        }
    }
    return elements;
}

const json& chooseBucket(std::span<const json> buckets)
{
    for (const json& bucket : buckets) {
        if (const std::string* id = stringField(bucket, keys::id); id != nullptr && *id == "codex") {
            return bucket;
        }
    }
    return buckets.front();
}

const json* findWindow(std::span<const json> windows, const char* slot)
{
    for (const json& window : windows) {
        if (const std::string* windowSlot = stringField(window, keys::slot);
            windowSlot != nullptr && *windowSlot == slot) {
            return &window;
        }
    }
    return nullptr;
}

struct Slot {
    const char* name;
    const char* fallbackCaption;
};

constexpr Slot primarySlot{"primary", "krátkodobý limit"};
constexpr Slot secondarySlot{"secondary", "dlouhodobý limit"};
constexpr const char* resetPattern = "d. M. HH:mm z";
constexpr const char* resetLocale = "cs_CZ";
constexpr const char* statusPattern = "HH:mm";
constexpr const char* rowTooltip = "Sdílený limit účtu Codex, ne tokeny této konverzace.";

LimitRowUsage presentWindow(std::span<const json> windows, const Slot& slot, const UsageContext& context)
{
    const json* window = findWindow(windows, slot.name);
    const auto duration = window != nullptr ? numberField(*window, keys::windowDurationMins) : std::nullopt;
    LimitRowUsage row;
    row.caption = std::string("Zbývá · ") + (duration ? durationCaption(*duration) : slot.fallbackCaption);
    std::string tooltip = rowTooltip;
    if (window == nullptr) {
        row.tooltip = std::move(tooltip);
        return row;
    }
    if (const auto resetsAt = numberField(*window, keys::resetsAt)) {
        tooltip += " Obnova: " + formatInstant(*resetsAt, resetPattern, resetLocale, context.timeZone);
    }
    // A pending reset hides the remaining figure: it describes the window that has just ended.
    if (booleanField(*window, keys::resetPending) == true) {
        tooltip += " Čeká se na nový stav po obnově.";
    } else {
        row.value = numberField(*window, keys::remainingPercent);
    }
    row.tooltip = std::move(tooltip);
    return row;
}

std::string creditText(const json& bucket)
{
    if (const std::string* balance = stringField(bucket, keys::creditBalance)) {
        return "Kredity: " + *balance + " · tokeny: API neposkytuje";
    }
    return "Kredity / tokeny: API neposkytuje zůstatek";
}

bool spendFlag(const json& bucket)
{
    if (booleanField(bucket, keys::spendControlReached) == true) {
        return true;
    }
    return booleanField(bucket, keys::limitReached).value_or(false);
}

UsagePresentation presentNoBuckets()
{
    UsagePresentation presentation;
    presentation.statusText = "API nevrátilo limity účtu";
    return presentation;
}

} // namespace

UsageContext currentUsageContext(std::string_view machineName)
{
    const std::chrono::duration<double> sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
    return {sinceEpoch.count(), systemTimeZoneId(), userLocaleId(), std::string(machineName)};
}

void warmUpInterpretation()
{
    // ICU keeps the data it loaded for the whole process, so only the first call has anything to do.
    static std::once_flag warmed;
    std::call_once(warmed, [] {
        const UsageContext context = currentUsageContext({});
        formatInstant(context.now, resetPattern, resetLocale, context.timeZone);
        formatInstant(context.now, statusPattern, context.statusLocale, context.timeZone);
    });
}

UsagePresentation interpretUsage(const nlohmann::json& document, const UsageContext& context)
{
    const std::span<const json> buckets = objectArrayField(document, keys::buckets);
    if (buckets.empty()) {
        return presentNoBuckets();
    }
    const json& bucket = chooseBucket(buckets);
    const std::span<const json> windows = objectArrayField(bucket, keys::windows);

    UsagePresentation presentation;
    presentation.quota = presentWindow(windows, primarySlot, context);
    presentation.weekly = presentWindow(windows, secondarySlot, context);
    presentation.creditText = creditText(bucket);
    const double observedAt = numberField(document, keys::observedAt).value_or(context.now);
    presentation.lastUsage = observedAt;
    presentation.clearsLastFetchFailed = true;
    if (spendFlag(bucket)) {
        presentation.statusText = "Účet hlásí omezení čerpání";
        presentation.statusColour = StatusColour::Orange;
    } else {
        presentation.statusText =
            "Limity " + formatInstant(observedAt, statusPattern, context.statusLocale, context.timeZone) +
            " · " + context.machineName + " každé 2 s";
        presentation.statusColour = StatusColour::Secondary;
    }
    return presentation;
}

} // namespace vantrel::limits
