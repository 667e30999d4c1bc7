#include "checkout/webview/CheckoutURL.h"

#include <algorithm>
#include <string>
#include <string_view>

#include "common/AsciiCase.h"

namespace vemba::checkout {
namespace {

constexpr std::string_view kMultipass = "multipass";
// A path component that is one of these, in any ASCII case, names the confirmation page.
constexpr std::string_view kConfirmationComponents[] = {"thank_you", "thank-you"};
constexpr std::string_view kAboutScheme = "about";
constexpr std::string_view kAboutBlank = "about:blank";
constexpr std::string_view kHttp = "http";
constexpr std::string_view kHttps = "https";

bool isConfirmationComponent(std::string_view component) {
  return std::any_of(
      std::begin(kConfirmationComponents), std::end(kConfirmationComponents),
      [component](std::string_view name) { return equalsIgnoringAsciiCase(component, name); });
}

}  // namespace

bool CheckoutURL::isMultipassURL() const {
  return url.absoluteString().find(kMultipass) != std::string::npos;
}

bool CheckoutURL::isConfirmationPage() const {
  const std::vector<std::string> components = url.pathComponents();
  return std::any_of(components.begin(), components.end(), isConfirmationComponent);
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
