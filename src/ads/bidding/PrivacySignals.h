// The host's privacy signals in a bid request: where OpenRTB 2.6 places each of them, and the
// advertising identifier withheld for a child-directed app or limited tracking. Pure; any thread.
#pragma once

#include "ads/bidding/BidRecords.h"
#include "vemba/ads/VembaPrivacy.h"

namespace vemba::ads {

// Writes `privacy` into `request`: regs and user appear only when one of their fields is set, and
// a request without signals is left exactly as it was.
void applyPrivacy(const VembaPrivacy& privacy, BidRequest& request);

}  // namespace vemba::ads
