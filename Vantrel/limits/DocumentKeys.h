#pragma once

#include <array>
#include <string_view>

// The members of the limits document that the program reads; every other member is ignored. Shared by
// the decoder, which keeps only these, and the interpretation, which reads them.
namespace vantrel::limits::keys {

inline constexpr const char* buckets = "buckets";
inline constexpr const char* observedAt = "observedAt";
inline constexpr std::array<std::string_view, 2> document{buckets, observedAt};

inline constexpr const char* id = "id";
inline constexpr const char* windows = "windows";
inline constexpr const char* creditBalance = "creditBalance";
inline constexpr const char* spendControlReached = "spendControlReached";
inline constexpr const char* limitReached = "limitReached";
inline constexpr std::array<std::string_view, 5> bucket{id, windows, creditBalance, spendControlReached,
                                                        limitReached};

inline constexpr const char* slot = "slot";
inline constexpr const char* windowDurationMins = "windowDurationMins";
inline constexpr const char* resetsAt = "resetsAt";
inline constexpr const char* resetPending = "resetPending";
inline constexpr const char* remainingPercent = "remainingPercent";
inline constexpr std::array<std::string_view, 5> window{slot, windowDurationMins, resetsAt, resetPending,
                                                        remainingPercent};

} // namespace vantrel::limits::keys
