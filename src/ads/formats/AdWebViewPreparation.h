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
// is readied after it. Main thread only; the state is
// process-wide, like the platform services it talks to.
#pragma once

namespace vemba::platform {
struct WebViewConfiguration;
}

namespace vemba::ads {

class PreparedWebViewClaim {
 public:
  PreparedWebViewClaim();
  ~PreparedWebViewClaim();
  PreparedWebViewClaim(const PreparedWebViewClaim&) = delete;
  PreparedWebViewClaim& operator=(const PreparedWebViewClaim&) = delete;

 private:
  unsigned generation_;  // claims made before resetForTesting() count for nothing
};

namespace AdWebViewPreparation {

// Marks an ad screen's web view configuration as the consumer of what was readied, when
// something still is.
void configureAdWebView(platform::WebViewConfiguration& configuration);
// Forgets every claim and request (a new platform is being installed).
void resetForTesting();

}  // namespace AdWebViewPreparation
}  // namespace vemba::ads
