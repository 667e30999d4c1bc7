// A failure to decode a record from JSON: what went wrong and where (the JSON path).
// Light header: no JSON library. Value type; thread-safe to copy.
#pragma once

#include <string>

#include "vemba/Error.h"

namespace vemba::json {

inline constexpr const char* kDecodingErrorDomain = "DecodingError";

struct DecodingError {
  enum class Kind {
    typeMismatch,   // a value of the wrong JSON type
    valueNotFound,  // a required value that is null
    keyNotFound,    // a required key that is missing
    dataCorrupted,  // not JSON at all, or a number that does not fit
  };
  Kind kind = Kind::dataCorrupted;
  std::string path;    // e.g. "seatbid[0].bid[0].price"; empty for the top level
  std::string detail;  // what was expected or found

  // The readable text handed to hosts, naming the path.
  std::string description() const;
  // The integer code of the error (4865 for missing values and keys, 4864 otherwise).
  int code() const;
  Error toError() const { return Error{kDecodingErrorDomain, code(), description()}; }
};

}  // namespace vemba::json
