// Why a web view's web content process ended while the view still lived, and the error value the
// core reports such an end as where it reports one. Backends map their engine's reasons onto
// these; the texts are the core's. Values only; any thread.
#pragma once

#include <string_view>

namespace vemba::platform {

enum class WebProcessTermination {
  crashed,              // the process crashed or was killed
  exceededMemoryLimit,  // the engine ended it for using too much memory
  terminatedByApi,      // something in this process asked the engine to end it
};

// The error a host is handed for a terminated web content process: the web engine's own domain
// and code for it, with describe() as its description.
inline constexpr std::string_view kWebContentProcessErrorDomain = "WKErrorDomain";
inline constexpr int kWebContentProcessTerminatedCode = 2;

// "The web content process crashed." and the like: one sentence per reason.
constexpr std::string_view describe(WebProcessTermination reason) {
  switch (reason) {
    case WebProcessTermination::crashed:
      return "The web content process crashed.";
    case WebProcessTermination::exceededMemoryLimit:
      return "The web content process exceeded its memory limit.";
    case WebProcessTermination::terminatedByApi:
      return "The web content process was terminated.";
  }
  return "The web content process ended.";
}

}  // namespace vemba::platform
