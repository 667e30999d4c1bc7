#include "checkout/CheckoutURL.h"

#include <algorithm>
#include <regex>
#include <string>
#include <string_view>

#include "common/AsciiCase.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kMultipass = "multipass";
constexpr const char* kConfirmationComponentPattern = "^(thank[_-]you)$";
constexpr std::string_view kAboutScheme = "about";
constexpr std::string_view kAboutBlank = "about:blank";
constexpr std::string_view kHttp = "http";
constexpr std::string_view kHttps = "https";

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
  return equalsIgnoringAsciiCase(url.scheme(), kAboutScheme) || url.absoluteString() == kAboutBlank;
}

bool CheckoutURL::isDeepLink() const {
  const std::string& scheme = url.scheme();
  return !scheme.empty() && !isBlank() && !equalsIgnoringAsciiCase(scheme, kHttp) &&
         !equalsIgnoringAsciiCase(scheme, kHttps);
}

}  // namespace vemba::checkout
