// Why a show() did not present its ad: the codes of the "VembaShowError" domain, handed to the
// delegate's adDidFailToShow() as an Error.
#pragma once

#include "vemba/Error.h"
#include "vemba/Export.h"

namespace vemba {

enum class VembaShowErrorCode {
  notReady = 0,  // never loaded, its load failed, or its bid was already shown
  noPage = 1,    // the winning bid carried no page to show
  noScreen = 2,  // no screen to present from, or the screen refused the presentation
  expired = 3,   // loaded, but not shown within the configuration's adLifetimeSeconds
};

inline constexpr const char* kVembaShowErrorDomain = "VembaShowError";

// The error of `code`, with a sentence a developer can read.
VEMBA_EXPORT Error showError(VembaShowErrorCode code);

}  // namespace vemba
