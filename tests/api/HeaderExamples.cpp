// The examples the public headers give, compiled as they are written, against include/ alone:
// the build fails when one of them stops compiling or needs an internal header. Compiled only,
// never run.
#include "vemba/checkout/CheckoutSheet.h"
#include "vemba/checkout/EventJson.h"
#include "vemba/linux/Screens.h"

namespace {

[[maybe_unused]] void presentASheet(const vemba::Url& checkoutUrl, GtkWindow* window) {
  // vemba/checkout/CheckoutSheet.h
  const auto sheet = vemba::checkout::CheckoutSheet(checkoutUrl)
                         .onComplete([](const vemba::checkout::CheckoutCompletedEvent&) {})
                         .onCancel([] {});
  sheet.present(vemba::topScreenForWindow(window));
}

[[maybe_unused]] void storeAnEvent(const vemba::checkout::CheckoutCompletedEvent& event,
                                   void (*log)(const std::string&)) {
  // vemba/checkout/EventJson.h
  const std::string text = vemba::checkout::toJson(event);  // a CheckoutCompletedEvent
  const auto again = vemba::checkout::fromJson<vemba::checkout::CheckoutCompletedEvent>(text);
  if (!again)
    log(again.error().description);  // e.g. Key not found at "orderDetails.id": ...
}

}  // namespace
