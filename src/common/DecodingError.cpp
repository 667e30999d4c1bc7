#include "common/DecodingError.h"

namespace vemba::json {
namespace {
constexpr int kCoderReadCorrupt = 4864;
constexpr int kCoderValueNotFound = 4865;

const char* kindName(DecodingError::Kind kind) {
  switch (kind) {
    case DecodingError::Kind::typeMismatch:
      return "Type mismatch";
    case DecodingError::Kind::valueNotFound:
      return "Value not found";
    case DecodingError::Kind::keyNotFound:
      return "Key not found";
    case DecodingError::Kind::dataCorrupted:
      return "Data corrupted";
  }
  return "Data corrupted";
}
}  // namespace

std::string DecodingError::description() const {
  std::string text = kindName(kind);
  text += " at ";
  text += path.empty() ? std::string("the top level") : "\"" + path + "\"";
  text += ": ";
  text += detail;
  return text;
}

int DecodingError::code() const {
  return kind == Kind::keyNotFound || kind == Kind::valueNotFound ? kCoderValueNotFound
                                                                  : kCoderReadCorrupt;
}

}  // namespace vemba::json
