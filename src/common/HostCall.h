// Calls into host code (delegates, callbacks, the host's logger and URL opener) run inside the
// platform's own callbacks: a main-loop source, a web engine's signal, a button's action. What the
// host throws must never unwind through those frames, so every such call goes through callHost(),
// which stops the exception there and says what it was; the caller logs it and carries on as its
// half decides. Any thread; no state.
#pragma once

#include <exception>
#include <optional>
#include <string>
#include <utility>

namespace vemba {

// Inside a catch handler: a readable description of the exception being handled.
inline std::string describeCurrentException() {
  try {
    throw;
  } catch (const std::exception& exception) {
    return std::string("an exception: ") + exception.what();
  } catch (...) {
    return "an exception that is not a std::exception";
  }
}

// Runs `call`; nothing when it returned, the description of what it threw otherwise.
template <typename Call>
std::optional<std::string> callHost(Call&& call) noexcept {
  try {
    std::forward<Call>(call)();
    return std::nullopt;
  } catch (...) {
    return describeCurrentException();
  }
}

}  // namespace vemba
