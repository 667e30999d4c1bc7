// A message a web page posts to a named script-message channel of a web view, and the receiver
// of such messages. Main thread only.
#pragma once

#include <string>
#include <variant>

namespace vemba::platform {

// The web view's registry of script-message handlers (defined with the web view). Handlers only
// pass it along.
class UserContentController;

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
