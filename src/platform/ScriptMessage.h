// A message a web page posts to a named script-message channel of a web view, and the receiver
// of such messages. Main thread only.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <variant>

namespace vemba::platform {

class ScriptMessageHandler;

// A web view's registry of script-message handlers, shared through its configuration. The page
// posts with window.webkit.messageHandlers.<name>.postMessage(body).
// Contract: main thread only. Holds each handler strongly until it is removed; removing a name
// takes effect in the live page at once (the page's call then fails).
class UserContentController {
 public:
  virtual ~UserContentController() = default;
  // Registers `handler` under `name`; a name that is already registered is left as it is.
  virtual void add(std::shared_ptr<ScriptMessageHandler> handler, std::string_view name) = 0;
  // Removes the handler registered under `name`, if any.
  virtual void removeScriptMessageHandler(std::string_view name) = 0;
};

struct ScriptMessage {
  // A body that is not a string (an object, array, number, boolean or null), as its JSON text.
  struct NonStringBody {
    std::string jsonText;
    friend bool operator==(const NonStringBody&, const NonStringBody&) = default;
  };

  std::string name;                               // the channel the page posted to
  std::variant<std::string, NonStringBody> body;  // what the page posted

  friend bool operator==(const ScriptMessage&, const ScriptMessage&) = default;
};

// Contract: called on the main thread for each message posted to the channel it is registered
// under; `controller` is the registry it is registered in.
class ScriptMessageHandler {
 public:
  virtual ~ScriptMessageHandler() = default;
  virtual void userContentControllerDidReceive(UserContentController& controller,
                                               const ScriptMessage& message) = 0;
};

}  // namespace vemba::platform
