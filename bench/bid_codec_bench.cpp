// Encoding one bid request and decoding one bid response, in ns per operation, each beside the
// JSON library's own work on the same bytes (the floor for this design).
#include <benchmark/benchmark.h>

#include <nlohmann/json.hpp>

#include "ads/bidding/BidRecordsJson.h"

namespace {

using vemba::ads::BidRequest;

BidRequest sampleRequest() {
  vemba::ads::Impression impression{"1", "unit-123456", vemba::ads::Interstitial{}, std::nullopt,
                                    0.75};
  return BidRequest{"6F9619FF-8B86-4011-B42D-00C04FC964FF",
                    {"com.example.host", "2.3.1"},
                    {"00000000-0000-0000-0000-000000000000",
                     "Mozilla/5.0 (Linux; CPU Linux OS 6_1_0 like Mac OS X) AppleWebKit/605.1.15 "
                     "(KHTML, like Gecko) Mobile/15E148",
                     "", "iOS", "6.1.0", "Linux", "wifi"},
                    {impression}};
}

const std::string kResponse =
    R"({"id":"6F9619FF-8B86-4011-B42D-00C04FC964FF","bidid":"bid-4a1c","seatbid":[{"seat":"s1",)"
    R"("bid":[{"id":"b1","impid":"1","price":1.25,"adm":"https://127.0.0.1:18443/ads/interstitial.html",)"
    R"("iurl":"https://127.0.0.1:18443/img/1.png","burl":"https://127.0.0.1:18443/v1/billing?bidid=bid-4a1c&win=1"}]}]})";

void BM_EncodeBidRequest(benchmark::State& state) {
  const BidRequest request = sampleRequest();
  for (auto _ : state) {
    benchmark::DoNotOptimize(vemba::ads::encodeBidRequestText(request));
  }
}
BENCHMARK(BM_EncodeBidRequest);

void BM_EncodeBidRequest_BareDump(benchmark::State& state) {
  const nlohmann::json tree = vemba::ads::encode(sampleRequest());
  for (auto _ : state) {
    benchmark::DoNotOptimize(tree.dump());
  }
}
BENCHMARK(BM_EncodeBidRequest_BareDump);

void BM_DecodeBidResponse(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(vemba::ads::decodeBidResponseText(kResponse));
  }
}
BENCHMARK(BM_DecodeBidResponse);

void BM_DecodeBidResponse_BareParse(benchmark::State& state) {
  for (auto _ : state) {
    benchmark::DoNotOptimize(nlohmann::json::parse(kResponse));
  }
}
BENCHMARK(BM_DecodeBidResponse_BareParse);

}  // namespace
