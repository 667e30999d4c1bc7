#include "ads/core/AdsState.h"

#include "ads/core/VembaSDKForTesting.h"
#include "common/ProcessWide.h"

namespace vemba::ads {
namespace {
constinit ProcessWide<AdsState> gState;
}  // namespace

AdsState& state() {
  return gState.get();
}

void resetVembaSdkForTesting() {
  gState.resetForTesting();
}

}  // namespace vemba::ads
