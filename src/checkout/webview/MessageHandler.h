// Registered on the web view's channel in the web view's place, so that the registration does
// not keep the web view alive: forwards each message unchanged to its delegate while the
// delegate exists, and drops it afterwards. Main thread only.
#pragma once

#include <memory>
#include <utility>

#include "platform/ScriptMessage.h"

namespace vemba::checkout {

class MessageHandler final : public platform::ScriptMessageHandler {
 public:
  explicit MessageHandler(std::weak_ptr<platform::ScriptMessageHandler> delegate)
      : delegate_(std::move(delegate)) {}

  void userContentControllerDidReceive(platform::UserContentController& controller,
                                       const platform::ScriptMessage& message) override {
    if (const std::shared_ptr<platform::ScriptMessageHandler> delegate = delegate_.lock()) {
      delegate->userContentControllerDidReceive(controller, message);
    }
  }

 private:
  std::weak_ptr<platform::ScriptMessageHandler> delegate_;
};

}  // namespace vemba::checkout
