#include "ads/formats/AdWebViewPreparation.h"

#include "platform/Services.h"
#include "platform/Ui.h"
#include "platform/WebView.h"

namespace vemba::ads::AdWebViewPreparation {
namespace {

// A readied web view was asked for and no ad screen has made its web view since.
bool& requested() {
  static bool value = false;
  return value;
}

}  // namespace

void adBecameReady() {
  if (requested()) {
    return;
  }
  if (platform::Ui* ui = platform::ui()) {
    requested() = true;
    ui->prepareWebView();
  }
}

void configureAdWebView(platform::WebViewConfiguration& configuration) {
  configuration.usesPreparedWebView = true;
  requested() = false;
}

void resetForTesting() {
  requested() = false;
}

}  // namespace vemba::ads::AdWebViewPreparation
