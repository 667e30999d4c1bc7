#include "checkout/webview/ExternalLink.h"

#include <string>
#include <string_view>
#include <vector>

#include "common/AsciiCase.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kOpenExternally = "open_externally";
constexpr std::string_view kTrue = "true";
constexpr std::string_view kOne = "1";

// The name of one raw "name=value" pair, percent-decoded the way Url decodes query items.
std::string decodedName(std::string_view pair) {
  const std::string_view name = pair.substr(0, pair.find('='));
  const std::optional<Url> probe = Url::parse("?" + std::string(name));
  if (!probe) {
    return std::string(name);
  }
  const std::vector<Url::QueryItem> items = probe->queryItems();
  return items.empty() ? std::string() : items.front().name;
}

}  // namespace

bool asksToOpenExternally(const Url& url) {
  for (const Url::QueryItem& item : url.queryItems()) {
    if (item.name == kOpenExternally) {
      return item.value && (equalsIgnoringAsciiCase(*item.value, kTrue) || *item.value == kOne);
    }
  }
  return false;
}

Url removingOpenExternally(const Url& url) {
  if (!url.query()) {
    return url;
  }
  // The query is the text between the first "?" and the fragment's "#": neither can appear
  // earlier in a URL that parsed.
  const std::string& text = url.absoluteString();
  const std::size_t queryStart = text.find('?');
  if (queryStart == std::string::npos) {
    return url;
  }
  const std::size_t fragmentStart = text.find('#', queryStart);
  const std::string_view query = std::string_view(text).substr(
      queryStart + 1,
      fragmentStart == std::string::npos ? std::string_view::npos : fragmentStart - queryStart - 1);

  std::string kept;
  bool removed = false;
  std::size_t start = 0;
  while (start <= query.size()) {
    std::size_t end = query.find('&', start);
    if (end == std::string_view::npos) {
      end = query.size();
    }
    const std::string_view pair = query.substr(start, end - start);
    if (!pair.empty() && decodedName(pair) == kOpenExternally) {
      removed = true;
    } else if (!pair.empty()) {
      if (!kept.empty()) {
        kept.push_back('&');
      }
      kept.append(pair);
    }
    start = end + 1;
  }
  if (!removed) {
    return url;
  }
  std::string rebuilt = text.substr(0, queryStart);
  if (!kept.empty()) {
    rebuilt.append("?").append(kept);
  }
  if (fragmentStart != std::string::npos) {
    rebuilt.append(text.substr(fragmentStart));
  }
  return Url::parse(rebuilt).value_or(url);
}

}  // namespace vemba::checkout
