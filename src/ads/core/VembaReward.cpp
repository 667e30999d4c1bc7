#include "vemba/ads/VembaReward.h"

namespace vemba {

const VembaReward& VembaReward::standard() {
  static const VembaReward* const instance = new VembaReward(1, "reward");
  return *instance;
}

}  // namespace vemba
