#include "ads/formats/AdWebViewPreparation.h"

#include "platform/Services.h"
#include "platform/Ui.h"
#include "platform/WebView.h"

namespace vemba::ads {
namespace {

struct Preparation {
  int claims = 0;          // ready ads, and ad screens that have not made their web view yet
  bool requested = false;  // the platform readied a web view that no web view has consumed
  unsigned generation = 0;
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
    ui->prepareWebView();
  } else if (preparation.claims == 0 && preparation.requested) {
    preparation.requested = false;
    ui->releasePreparedWebView();
  }
}

}  // namespace

PreparedWebViewClaim::PreparedWebViewClaim() : generation_(state().generation) {
  ++state().claims;
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
  configuration.usesPreparedWebView = true;
  state().requested = false;
}

void resetForTesting() {
  Preparation& preparation = state();
  preparation = Preparation{.generation = preparation.generation + 1};
}

}  // namespace AdWebViewPreparation
}  // namespace vemba::ads
