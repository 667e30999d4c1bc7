#include "checkout/CheckoutURL.h"

#include <algorithm>
#include <cctype>
#include <regex>
#include <string>
#include <string_view>

namespace vemba::checkout {
namespace {

constexpr std::string_view kMultipass = "multipass";
constexpr const char* kConfirmationComponentPattern = "^(thank[_-]you)$";
constexpr std::string_view kAboutScheme = "about";
constexpr std::string_view kAboutBlank = "about:blank";
constexpr std::string_view kHttp = "http";
constexpr std::string_view kHttps = "https";

std::string lowercased(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return text;
}

const std::regex& confirmationComponent() {
  static const std::regex pattern(kConfirmationComponentPattern,
                                  std::regex::ECMAScript | std::regex::icase);
  return pattern;
}

}  // namespace

bool CheckoutURL::isMultipassURL() const {
  return url.absoluteString().find(kMultipass) != std::string::npos;
}

bool CheckoutURL::isConfirmationPage() const {
  const std::vector<std::string> components = url.pathComponents();
  return std::any_of(components.begin(), components.end(), [](const std::string& component) {
    return std::regex_search(component, confirmationComponent());
  });
}

bool CheckoutURL::isBlank() const {
  return lowercased(url.scheme()) == kAboutScheme || url.absoluteString() == kAboutBlank;
}

bool CheckoutURL::isDeepLink() const {
  const std::string scheme = lowercased(url.scheme());
  return !scheme.empty() && !isBlank() && scheme != kHttp && scheme != kHttps;
}

}  // namespace vemba::checkout
