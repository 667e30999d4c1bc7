// Decoding the checkout page's bridge messages, in ns per message and messages per second, each
// beside the JSON library's bare parse of the same bytes (the floor for this design: the
// decoder parses the envelope and then the JSON text inside its body). After the runs, prints
// the ratio decode / bare parse per message.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>

#include "checkout/CheckoutBridge.h"
#include "platform/ScriptMessage.h"

namespace {

using vemba::checkout::CheckoutBridge;

std::string readMessage(const char* file) {
  const std::string path = std::string(VEMBA_BENCH_DATA_DIR) + "/" + file;
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    throw std::runtime_error("cannot read " + path);
  }
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

vemba::platform::ScriptMessage scriptMessage(const char* file) {
  return vemba::platform::ScriptMessage{std::string(CheckoutBridge::kMessageHandlerName),
                                        readMessage(file)};
}

void decode(benchmark::State& state, const char* file) {
  const vemba::platform::ScriptMessage message = scriptMessage(file);
  const auto first = CheckoutBridge::decode(message);
  if (!first) {
    state.SkipWithError(("not decodable: " + first.error().description()).c_str());
    return;
  }
  for (auto _ : state) {
    auto event = CheckoutBridge::decode(message);
    benchmark::DoNotOptimize(event);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(std::get<std::string>(message.body).size()));
}

void bareParse(benchmark::State& state, const char* file) {
  const std::string text = readMessage(file);
  for (auto _ : state) {
    nlohmann::json tree = nlohmann::json::parse(text);
    benchmark::DoNotOptimize(tree);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(text.size()));
}

constexpr const char* kStandardPixel = "pixel_standard_message.json";
constexpr const char* kCompleted = "completed_message.json";
constexpr const char* kCustomPixel = "pixel_custom_message.json";
constexpr const char* kError = "error_message.json";

BENCHMARK_CAPTURE(decode, standard_pixel, kStandardPixel);
BENCHMARK_CAPTURE(bareParse, standard_pixel, kStandardPixel);
BENCHMARK_CAPTURE(decode, completed, kCompleted);
BENCHMARK_CAPTURE(bareParse, completed, kCompleted);
BENCHMARK_CAPTURE(decode, custom_pixel, kCustomPixel);
BENCHMARK_CAPTURE(bareParse, custom_pixel, kCustomPixel);
BENCHMARK_CAPTURE(decode, error, kError);
BENCHMARK_CAPTURE(bareParse, error, kError);

// Keeps the time per message of every benchmark (the mean over repetitions when there are
// any) while printing as usual, without colours.
class RatioReporter : public benchmark::ConsoleReporter {
 public:
  RatioReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.error_occurred || run.iterations <= 0) {
        continue;
      }
      const std::string name = run.run_name.str();
      if (run.run_type == Run::RT_Aggregate && run.aggregate_name == "mean") {
        nanos[name] = run.GetAdjustedRealTime();
        fromMean.insert(name);
      } else if (run.run_type == Run::RT_Iteration && fromMean.count(name) == 0) {
        nanos[name] = run.GetAdjustedRealTime();
      }
    }
    ConsoleReporter::ReportRuns(runs);
  }
  std::map<std::string, double> nanos;
  std::set<std::string> fromMean;
};

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
    return 1;
  }
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  std::printf("\n%-16s %14s %14s %10s %16s\n", "message", "decode ns", "bare parse ns", "ratio",
              "decodes/s");
  for (const char* kind : {"standard_pixel", "completed", "custom_pixel", "error"}) {
    const auto decodeIt = reporter.nanos.find(std::string("decode/") + kind);
    const auto parseIt = reporter.nanos.find(std::string("bareParse/") + kind);
    if (decodeIt == reporter.nanos.end() || parseIt == reporter.nanos.end()) {
      continue;
    }
    std::printf("%-16s %14.0f %14.0f %9.2fx %16.0f\n", kind, decodeIt->second, parseIt->second,
                decodeIt->second / parseIt->second, 1e9 / decodeIt->second);
  }
  benchmark::Shutdown();
  return 0;
}
