#pragma once

#include <string>

namespace vantrel::limits {

// `seconds` after 1970-01-01 00:00 UTC in an ICU date pattern ("d. M. HH:mm z"), locale id ("cs_CZ")
// and zone id ("Europe/Prague").
std::string formatInstant(double seconds, const char* pattern, const std::string& localeId,
                          const std::string& zoneId);

// The zone the system is set to now (TZ, else /etc/localtime).
std::string systemTimeZoneId();

// The user's locale as ICU sees it (LC_ALL, LC_MESSAGES, LANG).
std::string userLocaleId();

} // namespace vantrel::limits
