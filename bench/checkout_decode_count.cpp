// Runs one operation on one bench/data message a fixed number of times, for instruction counting
// under callgrind, which is not disturbed by other load on the machine:
//
//   valgrind --tool=callgrind --toggle-collect='vemba_bench_run*'
//       vemba_checkout_decode_count decode|parse <message file> <count>
//
// "decode" is CheckoutBridge::decode of the message; "parse" the JSON library's parse of the same
// bytes into a document. Only vemba_bench_run is counted: divide the total by count + 1 (one
// warm-up run is counted too).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <string_view>

#include "checkout/bridge/CheckoutBridge.h"

// Not static and not inlined, so that callgrind can select it by name.
extern "C" __attribute__((noinline)) void vemba_bench_run(bool decode, const std::string* text,
                                                          long count) {
  for (long i = 0; i < count; ++i) {
    if (decode) {
      auto event = vemba::checkout::CheckoutBridge::decode(std::string_view(*text));
      if (!event) {
        std::abort();
      }
      benchmark::DoNotOptimize(event);
    } else {
      nlohmann::json document = nlohmann::json::parse(*text);
      benchmark::DoNotOptimize(document);
    }
  }
}

int main(int argc, char** argv) {
  const std::string_view mode = argc == 4 ? argv[1] : "";
  if (mode != "decode" && mode != "parse") {
    std::fprintf(stderr, "usage: %s decode|parse <message file> <count>\n", argv[0]);
    return 2;
  }
  std::ifstream file(argv[2], std::ios::binary);
  if (!file) {
    std::fprintf(stderr, "cannot read %s\n", argv[2]);
    return 2;
  }
  std::ostringstream text;
  text << file.rdbuf();
  const std::string message = text.str();
  vemba_bench_run(mode == "decode", &message, 1);
  vemba_bench_run(mode == "decode", &message, std::strtol(argv[3], nullptr, 10));
  return 0;
}
