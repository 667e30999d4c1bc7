#include "ads/bidding/PrivacySignals.h"

#include <utility>

#include "platform/DeviceInfo.h"

namespace vemba::ads {

void applyPrivacy(const VembaPrivacy& privacy, BidRequest& request) {
  Regs regs;
  regs.gdpr = privacy.gdprApplies;
  regs.gpp = privacy.gpp;
  regs.gpp_sid = privacy.gppSectionIds;
  regs.us_privacy = privacy.usPrivacy;
  regs.coppa = privacy.childDirected;
  if (regs != Regs{}) {
    request.regs = std::move(regs);
  }
  if (privacy.tcfConsent) {
    request.user = User{privacy.tcfConsent};
  }
  request.device.lmt = privacy.limitAdTracking;
  if (privacy.childDirected.value_or(false) || privacy.limitAdTracking.value_or(false)) {
    request.device.ifa = platform::uuidString(platform::Uuid{});  // the all-zero identifier
  }
}

}  // namespace vemba::ads
