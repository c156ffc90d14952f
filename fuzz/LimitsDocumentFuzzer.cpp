#include "Vantrel/limits/LimitsDocument.h"
#include "Vantrel/limits/UsageInterpretation.h"

#include <nlohmann/json.hpp>

#include "fuzz/FuzzSupport.h"
#include <array>

namespace {

using nlohmann::json;
using vantrel::fuzz::isValidUtf8;
using vantrel::fuzz::require;
using vantrel::limits::LimitRowUsage;
using vantrel::limits::StatusColour;
using vantrel::limits::UsageContext;
using vantrel::limits::UsagePresentation;

constexpr std::string_view rowTooltip = "Sdílený limit účtu Codex, ne tokeny této konverzace.";
constexpr std::string_view resetPart = " Obnova: ";

// An array of objects under `key`, or nothing (one element of another type spoils the whole array).
const json::array_t* objectArray(const json& object, const char* key)
{
    const auto found = object.find(key);
    if (found == object.end() || !found->is_array())
        return nullptr;
    for (const json& element : *found)
        if (!element.is_object())
            return nullptr;
    return &found->get_ref<const json::array_t&>();
}

bool hasString(const json& object, const char* key, std::string_view text)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_string() && found->get_ref<const std::string&>() == text;
}

// The bucket the interpretation shows: the first "codex", else the first; null without buckets.
const json* shownBucket(const json& document)
{
    const json::array_t* buckets = objectArray(document, "buckets");
    if (buckets == nullptr || buckets->empty())
        return nullptr;
    for (const json& bucket : *buckets)
        if (hasString(bucket, "id", "codex"))
            return &bucket;
    return &buckets->front();
}

// The program stops, by design, on a shown window whose duration caption needs a whole number outside the
// signed 64-bit range; such documents are left out rather than counted as crashes.
bool stopsTheProgram(const json* bucket)
{
    const json::array_t* windows = bucket != nullptr ? objectArray(*bucket, "windows") : nullptr;
    if (windows == nullptr)
        return false;
    for (const char* slot : {"primary", "secondary"}) {
        for (const json& window : *windows) {
            if (!hasString(window, "slot", slot))
                continue;
            const auto duration = window.find("windowDurationMins");
            if (duration != window.end() && duration->is_number()) {
                const double minutes = duration->get<double>();
                const double whole = std::trunc(std::fmod(minutes, 60) == 0 ? minutes / 60 : minutes);
                if (minutes != 10080 && !(whole >= -0x1p63 && whole < 0x1p63))
                    return true;
            }
            break;
        }
    }
    return false;
}

void checkRow(const LimitRowUsage& row)
{
    require(row.caption && row.caption->starts_with("Zbývá · ") && row.caption->size() > 10 &&
                isValidUtf8(*row.caption),
            "a shown row has a caption after \"Zbývá · \"");
    require(row.tooltip && row.tooltip->starts_with(rowTooltip) && isValidUtf8(*row.tooltip),
            "a shown row's tooltip starts with the account sentence");
    const std::size_t reset = row.tooltip->find(resetPart);
    if (reset != std::string::npos) {
        const std::string_view date = std::string_view(*row.tooltip).substr(reset + resetPart.size());
        require(!date.empty() && !date.starts_with(" Čeká"), "a reset time is written out");
    }
    require(!row.value || std::isfinite(*row.value), "a remaining figure is a finite number");
}

void checkPresentation(const UsagePresentation& shown, const json* bucket, const UsageContext& context)
{
    if (bucket == nullptr) {
        require(shown.statusText == "API nevrátilo limity účtu" &&
                    shown.statusColour == StatusColour::Unchanged,
                "no buckets: the fixed status text, colour left alone");
        require(!shown.quota.caption && !shown.weekly.caption && !shown.creditText && !shown.lastUsage &&
                    !shown.clearsLastFetchFailed,
                "no buckets: captions and credit kept, lastUsage cleared");
        return;
    }
    checkRow(shown.quota);
    checkRow(shown.weekly);
    require(shown.creditText && shown.creditText->starts_with("Kredit") && isValidUtf8(*shown.creditText),
            "the credit line is readable text");
    require(shown.lastUsage && shown.clearsLastFetchFailed, "a document with buckets sets lastUsage");
    if (shown.statusColour == StatusColour::Orange) {
        require(shown.statusText == "Účet hlásí omezení čerpání", "the spend-control text in orange");
        return;
    }
    require(shown.statusColour == StatusColour::Secondary, "the observation time in the secondary colour");
    const std::string& status = shown.statusText;
    const std::string statusTail = " · " + context.machineName + " každé 2 s";
    require(status.starts_with("Limity ") && status.ends_with(statusTail) &&
                status.size() > std::string_view("Limity ").size() + statusTail.size() && isValidUtf8(status),
            "the status line names the observation time");
}

} // namespace

// Any bytes as the limits script's output: decoding never fails loudly, and a decoded document produces
// well-formed captions, tooltips, reset dates, credit and status lines in every zone and locale.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto document = vantrel::limits::decodeLimitsDocument(vantrel::fuzz::textOf(data, size));
    if (!document)
        return 0;
    require(document->is_object(), "a decoded document is an object");
    const json* bucket = shownBucket(*document);
    if (stopsTheProgram(bucket))
        return 0;
    static const std::array<UsageContext, 3> contexts{
        UsageContext{1752575400.25, "Europe/Prague", "cs_CZ", "počítač"},
        UsageContext{0, "America/St_Johns", "en_US", "Mac"}, UsageContext{-1e12, "Etc/GMT-14", "ar_EG", ""}};
    for (const UsageContext& context : contexts)
        checkPresentation(vantrel::limits::interpretUsage(*document, context), bucket, context);
    return 0;
}
