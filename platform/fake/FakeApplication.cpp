#include "FakeApplication.h"

#include <algorithm>
#include <cctype>

namespace vemba::fake {

bool FakeApplication::canOpenURL(const Url& url) const {
  canOpenQueries.push_back(url);
  std::string scheme = url.scheme();
  std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return std::find(openableSchemes.begin(), openableSchemes.end(), scheme) != openableSchemes.end();
}

}  // namespace vemba::fake
