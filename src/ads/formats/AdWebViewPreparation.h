// When the platform is asked to ready a web view for the next ad screen: as soon as an ad has
// become ready, and not again until an ad screen's web view has been made (that view consumes
// what was readied). So at most one readied web view is asked for at a time, process-wide.
// Main thread only; the state is process-wide, like the platform services it talks to.
#pragma once

namespace vemba::platform {
struct WebViewConfiguration;
}

namespace vemba::ads::AdWebViewPreparation {

// An ad's bid exchange has just succeeded; called before the host hears adDidLoad, so a show
// from inside adDidLoad already finds the web view readied.
void adBecameReady();
// Marks an ad screen's web view configuration as the consumer of what was readied.
void configureAdWebView(platform::WebViewConfiguration& configuration);
// Forgets what was asked (a new platform is being installed).
void resetForTesting();

}  // namespace vemba::ads::AdWebViewPreparation
