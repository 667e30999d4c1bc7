#include "CurlHeaders.h"

#include <utility>

namespace vemba::linux_platform {
namespace {

constexpr std::string_view kWhiteSpace = " \t";

std::string_view trim(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) {
    return {};
  }
  const std::size_t last = text.find_last_not_of(kWhiteSpace);
  return text.substr(first, last - first + 1);
}

bool breaksFraming(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

}  // namespace

std::optional<std::string> curlRequestHeaderLine(std::string_view name, std::string_view value) {
  if (name.empty() || breaksFraming(name) || breaksFraming(value) ||
      name.find_first_of(":; \t") != std::string_view::npos) {
    return std::nullopt;
  }
  std::string line(name);
  if (trim(value).empty()) {
    line.push_back(';');
  } else {
    line.append(": ").append(value);
  }
  return line;
}

void ResponseHeaderCollector::addLine(std::string_view rawLine) {
  while (!rawLine.empty() && (rawLine.back() == '\n' || rawLine.back() == '\r')) {
    rawLine.remove_suffix(1);
  }
  if (rawLine.starts_with("HTTP/")) {
    headers_.clear();
    return;
  }
  if (rawLine.empty()) {
    return;  // the end of a head
  }
  if (rawLine.front() == ' ' || rawLine.front() == '\t') {
    if (!headers_.empty()) {
      std::string& value = headers_.back().second;
      const std::string_view more = trim(rawLine);
      if (!more.empty()) {
        value.append(value.empty() ? "" : " ").append(more);
      }
    }
    return;
  }
  const std::size_t colon = rawLine.find(':');
  if (colon == std::string_view::npos || colon == 0) {
    return;  // not a field
  }
  headers_.emplace_back(std::string(trim(rawLine.substr(0, colon))),
                        std::string(trim(rawLine.substr(colon + 1))));
}

}  // namespace vemba::linux_platform
