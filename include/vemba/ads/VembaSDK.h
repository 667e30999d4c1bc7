// The host's entry into the ad half: one process-wide instance holding the publisher's API key.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "vemba/Export.h"
#include "vemba/Version.h"
#include "vemba/ads/VembaPrivacy.h"

namespace vemba {

// A plain value built by the host. `isDebugMode` is stored for interface compatibility and has
// no behaviour.
struct VEMBA_EXPORT VembaConfiguration {
  VembaConfiguration(std::string key, bool debugMode)
      : apiKey(std::move(key)), isDebugMode(debugMode) {}
  std::string apiKey;
  bool isDebugMode;
  // How long a loaded ad stays ready without being shown, in seconds; after that it expires
  // (adDidExpire) and a show fails (VembaShowErrorCode::expired). 0, the default: for ever.
  double adLifetimeSeconds = 0;
};

// Created lazily and thread-safely on first access, never destroyed. initialize() belongs on
// the main thread at start-up; apiKey() may be read from any thread.
class VEMBA_EXPORT VembaSDK {
 public:
  static VembaSDK& shared();
  static std::string version() { return VEMBA_VERSION_STRING; }

  // The key stored by the last initialize(); absent before the first one.
  std::optional<std::string> apiKey() const;

  // Stores the key, pre-warms the user-agent cache and calls `completion` (when given) with true,
  // synchronously, before returning. Never fails.
  void initialize(const VembaConfiguration& configuration,
                  const std::function<void(bool)>& completion = nullptr);

  // The privacy and consent signals of every bid request built from now on (a load already in
  // flight keeps the ones it was built with). Replaces the whole record; any thread.
  void setPrivacy(VembaPrivacy privacy);
  VembaPrivacy privacy() const;

  // Whether ad pages play sound: while muted, none does, an ad already on screen included.
  // Default false. Main thread only.
  void setApplicationMuted(bool muted);
  bool isApplicationMuted() const;
  // The lifetime of the last initialize()'s configuration (0: ads never expire).
  double adLifetimeSeconds() const;

  VembaSDK(const VembaSDK&) = delete;
  VembaSDK& operator=(const VembaSDK&) = delete;

 private:
  VembaSDK() = default;
};

}  // namespace vemba
