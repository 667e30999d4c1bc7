// Keeps one web view readied on the platform exactly while some ad is ready to be shown, so the
// ad screen's web view can start in it instead of starting a web engine process cold.
//
// Each ready ad holds a PreparedWebViewClaim: from just before its host hears adDidLoad until its
// show hands the claim to its ad screen (which drops it once its web view is made), until a later
// load fails, or until the ad goes away. The platform is asked to ready a web view when the first
// claim appears (if its user interface is up: readying is not worth starting it), and again when an
// ad screen has consumed it while other ads are still ready; it is told to release what it readied
// once no claim has been held for a grace period (3 s) since the last went without a web view
// consuming it. At most one readied web view is asked for at a time. One whose process dies
// before a show is forgotten: that show's web view starts a process of its own, and the next one
// is readied after it. Main thread only; the state is process-wide (in AdsState), like the
// platform services it talks to.
#pragma once

#include <memory>

namespace vemba::platform {
struct WebViewConfiguration;
}

namespace vemba::ads {

// The bookkeeping of what is readied. Owner: AdsState; claims and the platform's word of a lost
// request hold it weakly, so that those made before a reset of the state count for nothing.
struct WebViewPreparation {
  int claims = 0;           // ready ads, and ad screens that have not made their web view yet
  bool requested = false;   // the platform readied a web view that no web view has consumed
  unsigned request = 0;     // counts the requests, so that a late word of a lost one is known
  unsigned claimsMade = 0;  // so that a release due after the grace knows a claim came between
};

class PreparedWebViewClaim {
 public:
  PreparedWebViewClaim();
  ~PreparedWebViewClaim();
  PreparedWebViewClaim(const PreparedWebViewClaim&) = delete;
  PreparedWebViewClaim& operator=(const PreparedWebViewClaim&) = delete;

 private:
  std::weak_ptr<WebViewPreparation> preparation_;
};

namespace AdWebViewPreparation {

// Marks an ad screen's web view configuration as the consumer of what was readied, when
// something still is.
void configureAdWebView(platform::WebViewConfiguration& configuration);

}  // namespace AdWebViewPreparation
}  // namespace vemba::ads
