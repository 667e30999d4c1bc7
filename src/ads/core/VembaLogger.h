// The ad half's single log operation. Call sites compose the whole message (a fixed prefix and
// one value); the delivered library writes nothing. A development sink can be installed by tests
// and tools; nothing in the library turns it on. Thread-safe.
#pragma once

#include <functional>
#include <string_view>

namespace vemba {

class VembaLogger {
 public:
  using Sink = std::function<void(std::string_view message)>;

  static void log(std::string_view message);

  // Development only: receives every message while installed; nullptr removes it.
  static void setDevelopmentSink(Sink sink);
};

// The messages of the ad half, each followed by one value at its call site.
namespace log_message {
inline constexpr std::string_view kInitializing = "VembaSDK initializing with API Key: ";
inline constexpr std::string_view kUserAgentPrewarmed = "User Agent pre-warmed: ";
inline constexpr std::string_view kLoadingInterstitial = "Loading ad for Unit ID: ";
inline constexpr std::string_view kLoadingRewarded = "Loading rewarded ad for Unit ID: ";
inline constexpr std::string_view kSendingBidRequest = "Sending Bid Request to: ";
inline constexpr std::string_view kBidRequestFailed = "Bid Request failed: ";
inline constexpr std::string_view kDecodingError = "Decoding error: ";
inline constexpr std::string_view kFiringBillingPixel = "Firing Billing Pixel: ";
}  // namespace log_message

}  // namespace vemba
