#include "ads/formats/AdWebViewPreparation.h"

#include <chrono>
#include <utility>

#include "ads/core/AdsState.h"
#include "platform/MainQueue.h"
#include "platform/Services.h"
#include "platform/Ui.h"
#include "platform/WebView.h"

namespace vemba::ads {
namespace {

// How long a readied web view outlives the last claim. A host that drops its ready ads and loads
// new ones (or an ad that fails a reload and then loads again) keeps one waiting web process over
// the gap instead of ending it and starting another, which would cost the main loop a process
// start and end each time.
constexpr std::chrono::milliseconds kReleaseGrace{3000};

// Brings the platform in line with the claims: something readied while any claim is held,
// nothing otherwise.
void reconcile(const std::shared_ptr<WebViewPreparation>& shared) {
  WebViewPreparation& preparation = *shared;
  // Not worth starting the user interface for: a process that has not started it shows no ad yet.
  platform::Ui* ui = platform::uiIfStarted();
  if (ui == nullptr) {
    return;
  }
  if (preparation.claims > 0 && !preparation.requested) {
    preparation.requested = true;
    // A readied process that dies is simply forgotten: the next ad screen starts a process of its
    // own, and only then is another readied (asking again at once could chase a process that
    // keeps dying).
    ui->prepareWebView([request = ++preparation.request, weak = std::weak_ptr(shared)] {
      const std::shared_ptr<WebViewPreparation> current = weak.lock();
      if (current && current->request == request) {
        current->requested = false;
      }
    });
  } else if (preparation.claims == 0 && preparation.requested) {
    platform::services().mainQueue->postAfter(
        kReleaseGrace, [claimsMade = preparation.claimsMade, weak = std::weak_ptr(shared)] {
          const std::shared_ptr<WebViewPreparation> current = weak.lock();
          platform::Ui* startedUi = platform::uiIfStarted();
          if (current && current->claimsMade == claimsMade && current->claims == 0 &&
              current->requested && startedUi != nullptr) {
            current->requested = false;
            startedUi->releasePreparedWebView();
          }
        });
  }
}

}  // namespace

PreparedWebViewClaim::PreparedWebViewClaim() : preparation_(state().webViewPreparation) {
  const std::shared_ptr<WebViewPreparation>& preparation = state().webViewPreparation;
  ++preparation->claims;
  ++preparation->claimsMade;
  reconcile(preparation);
}

PreparedWebViewClaim::~PreparedWebViewClaim() {
  if (const std::shared_ptr<WebViewPreparation> preparation = preparation_.lock()) {
    --preparation->claims;
    reconcile(preparation);
  }
}

namespace AdWebViewPreparation {

void configureAdWebView(platform::WebViewConfiguration& configuration) {
  // Only what is still readied is worth starting in.
  configuration.usesPreparedWebView = std::exchange(state().webViewPreparation->requested, false);
}

}  // namespace AdWebViewPreparation
}  // namespace vemba::ads
