#include "Vantrel/telemetry/SampleJson.h"

#include <nlohmann/json.hpp>

#include <cmath>

namespace vantrel {
namespace {

nlohmann::json percent(const std::optional<double>& value)
{
    if (!value || !std::isfinite(*value))
        return nullptr;
    return *value;
}

// JSON allows "\/" for "/"; the record's readers expect it. Outside strings the text has no "/".
std::string escapeSlashes(const std::string& text)
{
    std::string escaped;
    escaped.reserve(text.size() + 8);
    for (const char c : text) {
        if (c == '/')
            escaped += '\\';
        escaped += c;
    }
    return escaped;
}

} // namespace

std::string sampleRecordJson(const SampleRecord& record)
{
    // nlohmann::json keeps object members in a std::map, so every object is written with sorted keys.
    nlohmann::json cores = nlohmann::json::array();
    for (const auto& core : record.cpuCores)
        cores.push_back(percent(core));
    const nlohmann::json object = {
        {"cpu", percent(record.cpu)},
        {"ram", percent(record.ram)},
        {"gpu", percent(record.gpu)},
        {"network", percent(record.network)},
        {"networkExplanation", record.networkExplanation},
        {"cpuCores", cores},
        {"gpuCoreCount",
         record.gpuCoreCount ? nlohmann::json(*record.gpuCoreCount) : nlohmann::json(nullptr)},
        {"gpuPerCoreAvailable", record.gpuPerCoreAvailable},
    };
    // Invalid UTF-8 (an odd interface name) is replaced rather than thrown.
    return escapeSlashes(object.dump(2, ' ', false, nlohmann::json::error_handler_t::replace));
}

} // namespace vantrel
