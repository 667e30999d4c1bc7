// Shared pieces of the checkout screen tests: a fixture on the fake user interface, a recording
// host delegate, and helpers that play the web engine and read what the kit sent to the page.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CheckoutTestSupport.h"
#include "checkout/bridge/CheckoutBridge.h"
#include "checkout/config/OSLogger.h"
#include "checkout/sheet/CheckoutViewControllerImpl.h"
#include "checkout/sheet/CheckoutWebViewController.h"
#include "checkout/webview/CheckoutState.h"
#include "checkout/webview/CheckoutWebView.h"
#include "checkout/webview/CheckoutWebViewDelegate.h"
#include "vemba/checkout/Checkout.h"
#include "vemba/checkout/CheckoutDelegate.h"

namespace vemba::checkout::tests {

// A "webPixels" body whose event has `type` ("standard" gives an event, an unknown type none).
inline std::string pixelBody(std::string_view type) {
  return R"({"name":"x","event":{"id":"1","name":"x","timestamp":"t","type":")" +
         std::string(type) + R"(","context":{}}})";
}

// The argument texts of every message the kit dispatched to the page, e.g. "'presented'".
inline std::vector<std::string> dispatched(const fake::FakeWebView& webView) {
  constexpr std::string_view kCall = "dispatchMessage(";
  std::vector<std::string> out;
  for (const std::string& script : webView.scripts) {
    const std::size_t start = script.find(kCall);
    const std::size_t end = script.find(");\n", start);
    if (start != std::string::npos && end != std::string::npos) {
      out.push_back(script.substr(start + kCall.size(), end - start - kCall.size()));
    }
  }
  return out;
}

// A host delegate, or a checkout view's, that records each call as a short line: "fail:2" is a
// failure of the host's whose CheckoutError case index is 2, "fail:2:final" the same at the view.
class RecordingDelegate : public CheckoutDelegate, public CheckoutWebViewDelegate {
 public:
  void checkoutDidComplete(const CheckoutCompletedEvent& event) override {
    calls.push_back("complete:" + event.orderDetails.id);
  }
  void checkoutDidCancel() override { calls.push_back("cancel"); }
  void checkoutDidFail(const CheckoutError& error) override {
    calls.push_back("fail:" + std::to_string(error.value().index()));
  }
  bool shouldRecoverFromError(const CheckoutError& error) override {
    calls.push_back("shouldRecover");
    return recover.value_or(CheckoutDelegate::shouldRecoverFromError(error));
  }
  void checkoutDidClickLink(const Url& link) override {
    calls.push_back("link:" + link.absoluteString());
  }
  void checkoutDidEmitWebPixelEvent(const PixelEvent& /*event*/) override {
    calls.push_back("pixel");
  }

  void checkoutViewDidStartNavigation() override { calls.push_back("start"); }
  void checkoutViewDidCompleteCheckout(const CheckoutCompletedEvent& event) override {
    checkoutDidComplete(event);
  }
  void checkoutViewDidFinishNavigation() override { calls.push_back("finish"); }
  void checkoutViewDidClickLink(const Url& link) override { checkoutDidClickLink(link); }
  void checkoutViewDidFailWithError(const CheckoutError& error) override {
    checkoutDidFail(error);
    calls.back() += error.isRecoverable() ? ":recoverable" : ":final";
    errors.push_back(error);
  }
  void checkoutViewDidToggleModal(bool modalVisible) override {
    calls.push_back(modalVisible ? "modal:shown" : "modal:hidden");
  }
  void checkoutViewDidEmitWebPixelEvent(const PixelEvent& event) override {
    checkoutDidEmitWebPixelEvent(event);
  }
  void checkoutViewDidTerminateWebContentProcess(const CheckoutError& error) override {
    calls.push_back("terminated");
    errors.push_back(error);
  }

  std::optional<bool> recover;  // the answer to shouldRecoverFromError; default when absent
  std::vector<std::string> calls;
  std::vector<CheckoutError> errors;  // of the view's failures
};

class CheckoutScreenTest : public CheckoutTest {
 protected:
  CheckoutScreenTest() { OSLogger::shared().setLogLevel(LogLevel::all); }

  // The checkout half as at the start of a test (the logger still writing everything).
  static void resetCheckoutState() {
    resetCheckoutStateForTesting();
    OSLogger::shared().setLogLevel(LogLevel::all);
  }

  static fake::FakeWebView& fakeOf(const CheckoutWebView& view) {
    return dynamic_cast<fake::FakeWebView&>(view.webView());
  }
  static fake::FakeUserContentController& contentOf(const CheckoutWebView& view) {
    return dynamic_cast<fake::FakeUserContentController&>(view.webView().userContentController());
  }
  static bool hasBridge(const CheckoutWebView& view) {
    return contentOf(view).hasHandler(CheckoutBridge::kMessageHandlerName);
  }
  // The checkout page controller inside a presented sheet.
  static CheckoutWebViewController& page(const std::shared_ptr<CheckoutViewController>& sheet) {
    return vemba::testing::sheetPage(*sheet);
  }

  static void loadPage(fake::FakeWebView& webView, long status = 200) {
    vemba::testing::playPageLoad(webView, status);
  }
  std::shared_ptr<platform::Screen> hostScreen() {
    return platform::Screen::of(fakePlatform.hostScreen());
  }

  // Presents a sheet for `target` (the test's checkout by default) from the host screen and
  // runs what that queued.
  std::shared_ptr<CheckoutViewController> show(std::weak_ptr<CheckoutDelegate> host,
                                               const std::optional<Url>& target = std::nullopt) {
    auto sheet = present(target.value_or(checkout), hostScreen(), std::move(host));
    drain();
    return sheet;
  }

  // The standard view the cache holds for the test's checkout, made and cached when it has none.
  std::shared_ptr<CheckoutWebView> obtain(std::optional<MetaData::EntryPoint> entry = {}) {
    return state().cache.forCheckout(checkout, false, entry);
  }

  // The log lines written so far that contain `text`.
  std::size_t countLog(std::string_view text) const {
    std::size_t count = 0;
    for (const auto& line : platform.log.lines) {
      count += line.text.find(text) != std::string::npos ? 1U : 0U;
    }
    return count;
  }

  const Url checkout = url("https://shop.example/checkouts/c1");
};

}  // namespace vemba::checkout::tests
