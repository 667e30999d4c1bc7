// The examples the public headers give, compiled as they are written, against include/ alone:
// the build fails when one of them stops compiling or needs an internal header. Compiled only,
// never run.
#include "vemba/checkout/CheckoutSheet.h"
#include "vemba/linux/Screens.h"

namespace {

[[maybe_unused]] void presentASheet(const vemba::Url& checkoutUrl, GtkWindow* window) {
  // vemba/checkout/CheckoutSheet.h
  const auto sheet = vemba::checkout::CheckoutSheet(checkoutUrl)
                         .onComplete([](const vemba::checkout::CheckoutCompletedEvent&) {})
                         .onCancel([] {});
  sheet.present(vemba::topScreenForWindow(window));
}

}  // namespace
