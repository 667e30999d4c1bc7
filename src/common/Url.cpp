#include "vemba/Url.h"

#include <uriparser/Uri.h>

#include <memory>

namespace vemba {
namespace {

std::string rangeText(const UriTextRangeA& range) {
  if (range.first == nullptr || range.afterLast == nullptr) {
    return {};
  }
  return std::string(range.first, static_cast<std::size_t>(range.afterLast - range.first));
}

bool rangePresent(const UriTextRangeA& range) {
  return range.first != nullptr;
}

std::string percentDecode(std::string text) {
  // uriUnescapeInPlaceExA works on a NUL-terminated buffer; embedded NULs end the text.
  text.push_back('\0');
  const char* end = uriUnescapeInPlaceExA(text.data(), URI_FALSE, URI_BR_DONT_TOUCH);
  text.resize(static_cast<std::size_t>(end - text.data()));
  return text;
}

struct UriHolder {
  UriUriA uri{};
  bool owned = false;
  ~UriHolder() {
    if (owned) {
      uriFreeUriMembersA(&uri);
    }
  }
};

}  // namespace

std::optional<Url> Url::parse(std::string_view text) {
  if (text.empty()) {
    return std::nullopt;
  }
  UriHolder holder;
  const char* error = nullptr;
  if (uriParseSingleUriExA(&holder.uri, text.data(), text.data() + text.size(), &error) !=
      URI_SUCCESS) {
    return std::nullopt;
  }
  holder.owned = true;
  Url url;
  url.text_.assign(text);
  url.scheme_ = rangeText(holder.uri.scheme);
  url.host_ = rangeText(holder.uri.hostText);
  if (rangePresent(holder.uri.portText)) {
    url.port_ = rangeText(holder.uri.portText);
  }
  // Rebuild the path text from the parsed segments so that it matches what was written.
  std::string path;
  if (holder.uri.absolutePath == URI_TRUE ||
      (holder.uri.hostText.first != nullptr && holder.uri.pathHead != nullptr)) {
    path.push_back('/');
  }
  for (const UriPathSegmentA* segment = holder.uri.pathHead; segment != nullptr;
       segment = segment->next) {
    path += rangeText(segment->text);
    if (segment->next != nullptr) {
      path.push_back('/');
    }
  }
  url.path_ = std::move(path);
  if (rangePresent(holder.uri.query)) {
    url.query_ = rangeText(holder.uri.query);
  }
  if (rangePresent(holder.uri.fragment)) {
    url.fragment_ = rangeText(holder.uri.fragment);
  }
  return url;
}

std::vector<std::string> Url::pathComponents() const {
  std::vector<std::string> components;
  std::size_t start = 0;
  while (start <= path_.size()) {
    std::size_t slash = path_.find('/', start);
    if (slash == std::string::npos) {
      slash = path_.size();
    }
    if (slash > start) {
      components.push_back(percentDecode(path_.substr(start, slash - start)));
    }
    start = slash + 1;
  }
  return components;
}

std::vector<Url::QueryItem> Url::queryItems() const {
  std::vector<QueryItem> items;
  if (!query_) {
    return items;
  }
  const std::string& query = *query_;
  std::size_t start = 0;
  while (start <= query.size()) {
    std::size_t amp = query.find('&', start);
    if (amp == std::string::npos) {
      amp = query.size();
    }
    std::string pair = query.substr(start, amp - start);
    if (!pair.empty()) {
      const std::size_t eq = pair.find('=');
      if (eq == std::string::npos) {
        items.push_back({percentDecode(pair), std::nullopt});
      } else {
        items.push_back({percentDecode(pair.substr(0, eq)), percentDecode(pair.substr(eq + 1))});
      }
    }
    start = amp + 1;
  }
  return items;
}

std::optional<Url> Url::resolve(std::string_view reference) const {
  UriHolder base;
  UriHolder relative;
  UriHolder resolved;
  const char* error = nullptr;
  if (uriParseSingleUriExA(&base.uri, text_.data(), text_.data() + text_.size(), &error) !=
      URI_SUCCESS) {
    return std::nullopt;
  }
  base.owned = true;
  if (reference.empty() ||
      uriParseSingleUriExA(&relative.uri, reference.data(), reference.data() + reference.size(),
                           &error) != URI_SUCCESS) {
    return std::nullopt;
  }
  relative.owned = true;
  if (uriAddBaseUriA(&resolved.uri, &relative.uri, &base.uri) != URI_SUCCESS) {
    return std::nullopt;
  }
  resolved.owned = true;
  int length = 0;
  if (uriToStringCharsRequiredA(&resolved.uri, &length) != URI_SUCCESS) {
    return std::nullopt;
  }
  std::string out(static_cast<std::size_t>(length) + 1, '\0');
  if (uriToStringA(out.data(), &resolved.uri, length + 1, nullptr) != URI_SUCCESS) {
    return std::nullopt;
  }
  out.resize(static_cast<std::size_t>(length));
  return parse(out);
}

}  // namespace vemba
