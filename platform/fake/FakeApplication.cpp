#include "FakeApplication.h"

#include "platform/OpenableSchemes.h"

namespace vemba::fake {

bool FakeApplication::canOpenURL(const Url& url) const {
  canOpenQueries.push_back(url);
  return platform::isOpenableScheme(url.scheme());
}

}  // namespace vemba::fake
