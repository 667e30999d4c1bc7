// The reward a rewarded ad grants on close. Immutable; hosts receive it and cannot make one.
#pragma once

#include <cstdint>
#include <string>

#include "vemba/Export.h"

namespace vemba {

class VEMBA_EXPORT VembaReward {
 public:
  // Amount 1, type "reward": the only reward the library hands out. Created once on first use.
  static const VembaReward& standard();

  std::int64_t amount() const { return amount_; }
  const std::string& type() const { return type_; }

 private:
  VembaReward(std::int64_t amount, std::string type) : amount_(amount), type_(std::move(type)) {}
  std::int64_t amount_;
  std::string type_;
};

}  // namespace vemba
