// The host's privacy and consent signals, carried in every bid request at the places OpenRTB 2.6
// gives them. Every field is optional: a host that sets none sends the request it always sent.
// A plain value; set it with VembaSDK::shared().setPrivacy().
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vemba/Export.h"

namespace vemba {

struct VEMBA_EXPORT VembaPrivacy {
  std::optional<bool> gdprApplies{};  // regs.gdpr: 1 when the GDPR applies, 0 when it does not
  std::optional<std::string> tcfConsent{};  // user.consent: the IAB TCF consent string
  std::optional<std::string> gpp{};         // regs.gpp: the IAB Global Privacy Platform string
  std::optional<std::vector<std::int64_t>> gppSectionIds{};  // regs.gpp_sid: the sections in force
  std::optional<std::string> usPrivacy{};  // regs.us_privacy: the IAB US privacy string ("1YNN")
  std::optional<bool> childDirected{};    // regs.coppa: 1 for a child-directed app (zeroes the IFA)
  std::optional<bool> limitAdTracking{};  // device.lmt: 1 when tracking is limited (zeroes the IFA)

  friend bool operator==(const VembaPrivacy&, const VembaPrivacy&) = default;
};

}  // namespace vemba
