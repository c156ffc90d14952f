#pragma once

#include <nlohmann/json_fwd.hpp>

#include <optional>
#include <string>
#include <string_view>

// Turns one limits document into what the panel shows about the Codex account. Pure: the clock, the
// time zone and the locale come in through UsageContext, so every outcome can be pinned in a test.
namespace vantrel::limits {

enum class StatusColour {
    Orange,    // systemOrange: spend control reached
    Secondary, // secondaryLabel: the observation time
    Unchanged, // leave the status line's colour as it is
};

// What one limit row (quota or weekly) shows.
struct LimitRowUsage {
    std::optional<std::string> caption; // "Zbývá · …"; absent: the row keeps its caption
    std::optional<double> value;        // remaining percent; absent: no reading ("—")
    std::optional<std::string> tooltip; // absent: the row's own fallback tooltip

    friend bool operator==(const LimitRowUsage&, const LimitRowUsage&) = default;
};

struct UsagePresentation {
    LimitRowUsage quota;                   // the "primary" window
    LimitRowUsage weekly;                  // the "secondary" window
    std::optional<std::string> creditText; // absent: the credit line keeps its text
    std::string statusText;                // always replaces the status line's text
    StatusColour statusColour = StatusColour::Unchanged;
    std::optional<double> lastUsage;    // new lastUsage, seconds since 1970-01-01 00:00 UTC; absent: cleared
    bool clearsLastFetchFailed = false; // true: lastFetchFailed = false; false: leave it as it is

    friend bool operator==(const UsagePresentation&, const UsagePresentation&) = default;
};

struct UsageContext {
    double now = 0;       // seconds since 1970-01-01 00:00 UTC, used when the document has no "observedAt"
    std::string timeZone; // zone id ("Europe/Prague") for the reset times and the status time
    std::string statusLocale; // ICU locale id ("cs_CZ", "en_US") for the "HH:mm" status time
    std::string machineName;  // what the status line calls the machine ("počítač", "Mac")
};

// The system clock, the system's current time zone and the user's locale.
UsageContext currentUsageContext(std::string_view machineName);

// Loads the locale and time-zone data that interpretUsage formats with, once per process. The load takes
// several milliseconds; done on the first fetch's background thread, it spares the main thread that wait.
void warmUpInterpretation();

// Every missing or mistyped key takes its fallback; the one fatal case is a "windowDurationMins" whose
// whole-number form does not fit a signed 64-bit integer.
UsagePresentation interpretUsage(const nlohmann::json& document, const UsageContext& context);

} // namespace vantrel::limits
