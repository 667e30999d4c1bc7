// The one error value the library hands to a host: transport errors, decoding errors and the
// library's own error enumerations all reduce to a domain, an integer code and a readable text.
#pragma once

#include <ostream>
#include <string>

#include "vemba/Export.h"

namespace vemba {

struct VEMBA_EXPORT Error {
  std::string domain;  // "VembaError", "URLError" or "DecodingError"
  int code = 0;
  std::string description;

  friend bool operator==(const Error&, const Error&) = default;
};

inline std::ostream& operator<<(std::ostream& out, const Error& error) {
  return out << error.domain << " " << error.code << ": " << error.description;
}

}  // namespace vemba
