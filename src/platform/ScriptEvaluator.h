// What the core needs of a web view to talk to its page: evaluate a script. Main thread only.
#pragma once

#include <string_view>

namespace vemba::platform {

class ScriptEvaluator {
 public:
  virtual ~ScriptEvaluator() = default;
  // Evaluates `script` in the current page. The result and any script error are ignored.
  virtual void evaluateJavaScript(std::string_view script) = 0;
};

}  // namespace vemba::platform
