#include "Vantrel/telemetry/SampleJson.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <limits>

namespace vantrel {
namespace {

SampleRecord fullRecord()
{
    SampleRecord record;
    record.cpu = 12.5;
    record.ram = 40.25;
    record.gpu = 3.0;
    record.network = 10.0;
    record.networkExplanation =
        "eth0: 1000 Mb/s. Vytížení = vyšší z příjmu a odesílání / rychlost linky; nejde o "
        "rychlost internetového tarifu.";
    record.cpuCores = {12.5, std::nullopt};
    record.gpuCoreCount = 60;
    return record;
}

TEST(SampleJson, OneMemberPerLineSortedIndentedSlashesEscaped)
{
    const std::string expected = R"({
  "cpu": 12.5,
  "cpuCores": [
    12.5,
    null
  ],
  "gpu": 3.0,
  "gpuCoreCount": 60,
  "gpuPerCoreAvailable": false,
  "network": 10.0,
  "networkExplanation": "eth0: 1000 Mb\/s. Vytížení = vyšší z příjmu a odesílání \/ rychlost linky; nejde o rychlost internetového tarifu.",
  "ram": 40.25
})";
    EXPECT_EQ(sampleRecordJson(fullRecord()), expected);
}

TEST(SampleJson, AbsentValuesAreNullAndNoKeyIsDropped)
{
    const std::string expected = R"({
  "cpu": null,
  "cpuCores": [],
  "gpu": null,
  "gpuCoreCount": null,
  "gpuPerCoreAvailable": false,
  "network": null,
  "networkExplanation": "Rychlost aktivního síťového rozhraní není dostupná.",
  "ram": null
})";
    SampleRecord record;
    record.networkExplanation = "Rychlost aktivního síťového rozhraní není dostupná.";
    EXPECT_EQ(sampleRecordJson(record), expected);
}

TEST(SampleJson, NonFiniteNumbersAreNull)
{
    SampleRecord record;
    record.cpu = std::numeric_limits<double>::quiet_NaN();
    record.ram = std::numeric_limits<double>::infinity();
    record.gpu = -std::numeric_limits<double>::infinity();
    record.network = std::numeric_limits<double>::quiet_NaN();
    record.cpuCores = {std::numeric_limits<double>::infinity(), 5.0};
    const std::string text = sampleRecordJson(record);
    EXPECT_EQ(text.find("NaN"), std::string::npos);
    EXPECT_EQ(text.find("nfinity"), std::string::npos);
    const auto parsed = nlohmann::json::parse(text);
    for (const char* key : {"cpu", "ram", "gpu", "network"})
        EXPECT_TRUE(parsed[key].is_null()) << key;
    EXPECT_TRUE(parsed["cpuCores"][0].is_null());
    EXPECT_EQ(parsed["cpuCores"][1], 5.0);
}

TEST(SampleJson, EscapedTextReadsBackUnchanged)
{
    SampleRecord record;
    record.networkExplanation = R"(a/b \/ "q" /)";
    const auto parsed = nlohmann::json::parse(sampleRecordJson(record));
    EXPECT_EQ(parsed["networkExplanation"], record.networkExplanation);
}

TEST(SampleJson, InvalidUtf8DoesNotStopThePrinting)
{
    SampleRecord record;
    record.networkExplanation = "eth\xff";
    // The broken byte becomes U+FFFD instead of an exception.
    EXPECT_EQ(nlohmann::json::parse(sampleRecordJson(record))["networkExplanation"], "eth\xEF\xBF\xBD");
}

} // namespace
} // namespace vantrel
