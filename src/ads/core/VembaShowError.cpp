#include "vemba/ads/VembaShowError.h"

namespace vemba {

Error showError(VembaShowErrorCode code) {
  const char* description = "";
  switch (code) {
    case VembaShowErrorCode::notReady:
      description = "The ad is not ready: it has not loaded, its load failed, or it was shown.";
      break;
    case VembaShowErrorCode::noPage:
      description = "The ad's bid has no page to show.";
      break;
    case VembaShowErrorCode::noScreen:
      description = "There is no screen to present the ad from, or it refused the presentation.";
      break;
    case VembaShowErrorCode::expired:
      description = "The ad was not shown within its lifetime and has expired.";
      break;
  }
  return Error{kVembaShowErrorDomain, static_cast<int>(code), description};
}

}  // namespace vemba
