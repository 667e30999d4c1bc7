// A parsed RFC 3986 URI reference. Hosts pass and receive URLs as this type. Value type;
// immutable; thread-safe to share.
//
// "Parses as a URL" throughout the library means Url::parse() accepts the text: the RFC 3986
// grammar as implemented by uriparser, absolute or relative, but never the empty string.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "vemba/Export.h"

namespace vemba {

class VEMBA_EXPORT Url {
 public:
  struct QueryItem {
    std::string name;
    std::optional<std::string> value;  // absent for "name" without "="
    friend bool operator==(const QueryItem&, const QueryItem&) = default;
  };

  static std::optional<Url> parse(std::string_view text);

  // The text the URL was parsed from, unchanged.
  const std::string& absoluteString() const { return text_; }
  const std::string& scheme() const { return scheme_; }  // empty for a relative reference
  const std::string& host() const { return host_; }
  const std::optional<std::string>& port() const { return port_; }
  const std::string& path() const { return path_; }  // as written, still percent-encoded
  const std::optional<std::string>& query() const { return query_; }
  const std::optional<std::string>& fragment() const { return fragment_; }
  // Path segments, percent-decoded, without the empty leading segment of an absolute path.
  std::vector<std::string> pathComponents() const;
  // Query items in order, percent-decoded ('+' is kept as it is).
  std::vector<QueryItem> queryItems() const;
  // `reference` resolved against this URL as the base; absent if it does not parse.
  std::optional<Url> resolve(std::string_view reference) const;

  friend bool operator==(const Url& a, const Url& b) { return a.text_ == b.text_; }

 private:
  Url() = default;
  std::string text_;
  std::string scheme_;
  std::string host_;
  std::optional<std::string> port_;
  std::string path_;
  std::optional<std::string> query_;
  std::optional<std::string> fragment_;
};

}  // namespace vemba
