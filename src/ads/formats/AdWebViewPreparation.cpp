#include "ads/formats/AdWebViewPreparation.h"

#include <chrono>
#include <utility>

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

struct Preparation {
  int claims = 0;          // ready ads, and ad screens that have not made their web view yet
  bool requested = false;  // the platform readied a web view that no web view has consumed
  unsigned generation = 0;
  unsigned request = 0;     // counts the requests, so that a late word of a lost one is known
  unsigned claimsMade = 0;  // so that a release due after the grace knows a claim came between
};

Preparation& state() {
  static Preparation value;
  return value;
}

// Brings the platform in line with the claims: something readied while any claim is held,
// nothing otherwise.
void reconcile() {
  Preparation& preparation = state();
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
    ui->prepareWebView([request = ++preparation.request, generation = preparation.generation] {
      Preparation& current = state();
      if (current.request == request && current.generation == generation) {
        current.requested = false;
      }
    });
  } else if (preparation.claims == 0 && preparation.requested) {
    platform::services().mainQueue->postAfter(
        kReleaseGrace, [claimsMade = preparation.claimsMade, generation = preparation.generation] {
          Preparation& current = state();
          platform::Ui* startedUi = platform::uiIfStarted();
          if (current.generation == generation && current.claimsMade == claimsMade &&
              current.claims == 0 && current.requested && startedUi != nullptr) {
            current.requested = false;
            startedUi->releasePreparedWebView();
          }
        });
  }
}

}  // namespace

PreparedWebViewClaim::PreparedWebViewClaim() : generation_(state().generation) {
  ++state().claims;
  ++state().claimsMade;
  reconcile();
}

PreparedWebViewClaim::~PreparedWebViewClaim() {
  if (generation_ != state().generation) {
    return;
  }
  --state().claims;
  reconcile();
}

namespace AdWebViewPreparation {

void configureAdWebView(platform::WebViewConfiguration& configuration) {
  // Only what is still readied is worth starting in.
  configuration.usesPreparedWebView = std::exchange(state().requested, false);
}

void resetForTesting() {
  Preparation& preparation = state();
  preparation = Preparation{.generation = preparation.generation + 1};
}

}  // namespace AdWebViewPreparation
}  // namespace vemba::ads
