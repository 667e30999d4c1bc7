// Header fields between the seam's HttpHeaders and libcurl's raw lines. Pure; any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/HttpClient.h"

namespace vemba::linux_platform {

// The libcurl header line that sends `name` with `value`. An empty value is sent as an empty
// field ("Name;" in libcurl's syntax: "Name:" would remove the field instead). Absent when the
// field cannot be sent as given: an empty name, or a name or value that would break the request
// framing (CR, LF or NUL, or a colon or semicolon or white space in the name).
std::optional<std::string> curlRequestHeaderLine(std::string_view name, std::string_view value);

// Collects the header fields of the final response from libcurl's header callback, which hands
// over every raw line of every response head in turn (interim 1xx heads and redirect heads
// included). Each status line starts the field list afresh, so only the last head's fields
// remain. Field names keep their case; values lose surrounding white space; obsolete folded
// continuation lines are joined to the previous value with one space.
class ResponseHeaderCollector {
 public:
  void addLine(std::string_view rawLine);
  const platform::HttpHeaders& headers() const { return headers_; }
  platform::HttpHeaders takeHeaders() { return std::move(headers_); }

 private:
  platform::HttpHeaders headers_;
};

}  // namespace vemba::linux_platform
