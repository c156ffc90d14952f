// The cost of turning a typical limits document into what the panel shows, against decoding the same
// document (the work every fetch does anyway). Run: vantrel_limits_bench [--benchmark_repetitions=N];
// the ratios are printed after the table.
#include "Vantrel/limits/LimitsDocument.h"
#include "Vantrel/limits/UsageInterpretation.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include "bench/RatioReporter.h"
#include <fstream>
#include <sstream>
#include <string>

namespace {

using namespace vantrel::limits;

const std::string& typicalText()
{
    static const std::string text = [] {
        std::ifstream file(VANTREL_FIXTURES "/limits/typical.json");
        std::stringstream content;
        content << file.rdbuf();
        return content.str();
    }();
    return text;
}

void BM_Interpret_Typical(benchmark::State& state)
{
    const nlohmann::json document = nlohmann::json::parse(typicalText());
    const UsageContext context{1752575400, "Europe/Prague", "cs_CZ", "počítač"};
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(interpretUsage(document, context));
    }
}
BENCHMARK(BM_Interpret_Typical);

// What the application does per document: the context (clock, system zone, locale) is taken afresh.
void BM_InterpretWithCurrentContext_Typical(benchmark::State& state)
{
    const nlohmann::json document = nlohmann::json::parse(typicalText());
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(interpretUsage(document, currentUsageContext("počítač")));
    }
}
BENCHMARK(BM_InterpretWithCurrentContext_Typical);

void BM_Decode_Typical(benchmark::State& state)
{
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(decodeLimitsDocument(typicalText()));
    }
}
BENCHMARK(BM_Decode_Typical);

// The peer: nlohmann's own parse, without the depth guard.
void BM_PlainParse_Typical(benchmark::State& state)
{
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(nlohmann::json::parse(typicalText()));
    }
}
BENCHMARK(BM_PlainParse_Typical);

} // namespace

int main(int argc, char** argv)
{
    return vantrel::bench::runWithRatios(argc, argv,
                                         {{"BM_Interpret_Typical", "BM_PlainParse_Typical"},
                                          {"BM_InterpretWithCurrentContext_Typical", "BM_PlainParse_Typical"},
                                          {"BM_Decode_Typical", "BM_PlainParse_Typical"}});
}
