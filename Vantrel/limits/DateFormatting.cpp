#include "Vantrel/limits/DateFormatting.h"

#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <map>
#include <memory>
#include <tuple>

namespace vantrel::limits {
namespace {

using FormatterKey = std::tuple<std::string, std::string, std::string>; // pattern, locale, zone

// Building a formatter loads locale and zone data (tens of microseconds); formatting with a built one
// takes about one. A formatter is not safe to share between threads, so each thread keeps its own.
constexpr std::size_t formatterCacheLimit = 8;

const icu::SimpleDateFormat& formatterFor(const FormatterKey& key)
{
    thread_local std::map<FormatterKey, std::unique_ptr<icu::SimpleDateFormat>> formatters;
    if (auto found = formatters.find(key); found != formatters.end()) {
        return *found->second;
    }
    if (formatters.size() >= formatterCacheLimit) {
        formatters.clear();
    }
    const auto& [pattern, localeId, zoneId] = key;
    UErrorCode status = U_ZERO_ERROR;
    auto formatter = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString::fromUTF8(pattern),
                                                             icu::Locale(localeId.c_str()), status);
    formatter->adoptTimeZone(icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(zoneId)));
    return *formatters.emplace(key, std::move(formatter)).first->second;
}

constexpr double millisecondsPerSecond = 1000;

} // namespace

std::string formatInstant(double seconds, const char* pattern, const std::string& localeId,
                          const std::string& zoneId)
{
    const icu::SimpleDateFormat& formatter = formatterFor({pattern, localeId, zoneId});
    icu::UnicodeString text;
    formatter.format(seconds * millisecondsPerSecond, text);
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

std::string systemTimeZoneId()
{
    const std::unique_ptr<icu::TimeZone> zone(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString id;
    zone->getID(id);
    std::string utf8;
    id.toUTF8String(utf8);
    return utf8;
}

std::string userLocaleId()
{
    return icu::Locale::getDefault().getName();
}

} // namespace vantrel::limits
