#include "platform/DeviceInfo.h"

namespace vemba::platform {

std::string uuidString(const Uuid& uuid) {
  static constexpr char kHex[] = "0123456789ABCDEF";
  std::string out;
  out.reserve(36);
  for (std::size_t i = 0; i < uuid.size(); ++i) {
    if (i == 4 || i == 6 || i == 8 || i == 10) {
      out.push_back('-');
    }
    out.push_back(kHex[uuid[i] >> 4]);
    out.push_back(kHex[uuid[i] & 0x0F]);
  }
  return out;
}

}  // namespace vemba::platform
