// Decoding the checkout page's bridge messages, in ns per message and messages per second, each
// beside two references measured in the same run:
// - bareParse: the JSON library's parse of the same bytes into a document;
// - lexFloor: the library's event (SAX) pass over the envelope and then over the JSON text of its
//   body, building nothing. Any decoder that lets the library read both layers costs at least
//   this much.
// After the runs, prints per message the decode time, the messages per second and both ratios.
// A message that does not decode on its success path is reported as an error, not timed.
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdio>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <variant>

#include "checkout/bridge/CheckoutBridge.h"
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

// Why `event` is not what its message decodes to on the success path, or empty when it is.
// Timing a fallback (the empty completed event, an "error" body that could not be read, pixel
// data left out) would measure the wrong thing.
std::string offSuccessPath(const CheckoutBridge::WebEvent& event) {
  using WebEvent = CheckoutBridge::WebEvent;
  using namespace vemba::checkout;
  if (const auto* complete = std::get_if<WebEvent::CheckoutComplete>(&event.value)) {
    return complete->event.orderDetails.cart.lines.empty() ? "the empty completed event" : "";
  }
  if (const auto* pixels = std::get_if<WebEvent::WebPixels>(&event.value)) {
    if (!pixels->event) {
      return "no pixel event";
    }
    if (const auto* standard = std::get_if<StandardEvent>(&*pixels->event)) {
      const bool whole = standard->data && standard->data->checkout && standard->context &&
                         standard->context->window;
      return whole ? "" : "a standard event without its data or context";
    }
    const auto& custom = std::get<CustomEvent>(*pixels->event);
    return custom.customData && custom.context ? "" : "a custom event without its data";
  }
  return std::holds_alternative<WebEvent::CheckoutUnavailable>(event.value)
             ? ""
             : "not the event the message holds";
}

void decode(benchmark::State& state, const char* file) {
  const vemba::platform::ScriptMessage message = scriptMessage(file);
  const auto first = CheckoutBridge::decode(message);
  if (!first) {
    state.SkipWithError(("not decodable: " + first.error().description()).c_str());
    return;
  }
  if (const std::string problem = offSuccessPath(*first); !problem.empty()) {
    state.SkipWithError(("off the success path: " + problem).c_str());
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

// Takes the envelope's top-level "body" string (the last one, as the document would hold it) and
// otherwise only lets the parser run.
class LexOnly final : public nlohmann::json_sax<nlohmann::json> {
 public:
  bool null() override { return true; }
  bool boolean(bool /*value*/) override { return true; }
  bool number_integer(number_integer_t /*value*/) override { return true; }
  bool number_unsigned(number_unsigned_t /*value*/) override { return true; }
  bool number_float(number_float_t /*value*/, const string_t& /*text*/) override { return true; }
  bool string(string_t& value) override {
    if (depth_ == 1 && atBody_) {
      body = std::move(value);
    }
    return true;
  }
  bool binary(binary_t& /*value*/) override { return true; }
  bool start_object(std::size_t /*elements*/) override { return open(); }
  bool start_array(std::size_t /*elements*/) override { return open(); }
  bool end_object() override { return close(); }
  bool end_array() override { return close(); }
  bool key(string_t& key) override {
    atBody_ = depth_ == 1 && key == "body";
    return true;
  }
  bool parse_error(std::size_t /*position*/, const std::string& /*token*/,
                   const nlohmann::detail::exception& /*error*/) override {
    return false;
  }

  std::string body;

 private:
  bool open() {
    ++depth_;
    atBody_ = false;
    return true;
  }
  bool close() {
    --depth_;
    return true;
  }
  std::size_t depth_ = 0;
  bool atBody_ = false;
};

void lexFloor(benchmark::State& state, const char* file) {
  const std::string text = readMessage(file);
  for (auto _ : state) {
    LexOnly envelope;
    LexOnly body;
    const bool lexed = nlohmann::json::sax_parse(text, &envelope) &&
                       nlohmann::json::sax_parse(envelope.body, &body);
    benchmark::DoNotOptimize(lexed);
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
BENCHMARK_CAPTURE(lexFloor, standard_pixel, kStandardPixel);
BENCHMARK_CAPTURE(decode, completed, kCompleted);
BENCHMARK_CAPTURE(bareParse, completed, kCompleted);
BENCHMARK_CAPTURE(lexFloor, completed, kCompleted);
BENCHMARK_CAPTURE(decode, custom_pixel, kCustomPixel);
BENCHMARK_CAPTURE(bareParse, custom_pixel, kCustomPixel);
BENCHMARK_CAPTURE(lexFloor, custom_pixel, kCustomPixel);
BENCHMARK_CAPTURE(decode, error, kError);
BENCHMARK_CAPTURE(bareParse, error, kError);
BENCHMARK_CAPTURE(lexFloor, error, kError);

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
  std::printf("\n%-16s %11s %11s %13s %12s %12s %11s\n", "message", "decode ns", "decodes/s",
              "bare parse ns", "decode/parse", "lex floor ns", "floor/parse");
  for (const char* kind : {"standard_pixel", "completed", "custom_pixel", "error"}) {
    const auto decodeIt = reporter.nanos.find(std::string("decode/") + kind);
    const auto parseIt = reporter.nanos.find(std::string("bareParse/") + kind);
    const auto floorIt = reporter.nanos.find(std::string("lexFloor/") + kind);
    if (decodeIt == reporter.nanos.end() || parseIt == reporter.nanos.end() ||
        floorIt == reporter.nanos.end()) {
      continue;
    }
    const double decodeNs = decodeIt->second;
    std::printf("%-16s %11.0f %11.0f %13.0f %11.2fx %12.0f %10.2fx\n", kind, decodeNs,
                1e9 / decodeNs, parseIt->second, decodeNs / parseIt->second, floorIt->second,
                floorIt->second / parseIt->second);
  }
  benchmark::Shutdown();
  return 0;
}
