// The navigation state machine of the WebKitGTK web view: engine events in, effects out.
#include "NavigationMachine.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "platform/UrlErrorCode.h"

namespace vemba::linux_platform {
namespace {

namespace Code = platform::UrlErrorCode;
using namespace navigation;  // NOLINT(google-build-using-namespace): the events read as a table

const Url kPage = *Url::parse("https://shop.test/pay");
const Url kMoved = *Url::parse("https://cdn.shop.test/pay");

Event load() {
  return Load{{kPage, {{"Checkout-Purpose", "prefetch"}}, {}, std::chrono::seconds(1)}};
}
Event failed(int code, bool atCommit = false) {
  return Failed{{std::string(platform::kUrlErrorDomain), code, kPage.absoluteString()}, atCommit};
}
Event tls(bool verified, const Url& url = kPage) {
  return TlsRefused{url, verified, 4};
}
const Event action = ActionDecision{false}, newWindow = ActionDecision{true}, started = Started{},
            redirected = Redirected{}, committed = Committed{}, finished = Finished{},
            response = ResponseDecision{true}, subResponse = ResponseDecision{false},
            timeout = TimeoutFired{}, release = Release{}, crashed = Terminated{},
            overMemory = Terminated{platform::WebProcessTermination::exceededMemoryLimit};

// A failure also shows what its mapping was given (WebErrorMap.h), when not nothing.
std::string describe(const Effect& effect, const NavigationMachine& machine) {
  // The kinds' names, in their order.
  std::istringstream names(
      "timer cancel-timer send trust stop ask allow refuse start finish fail-provisional fail "
      "release-warm terminated");
  std::string text;
  for (int i = 0; i <= static_cast<int>(effect.kind); ++i) {
    names >> text;
  }
  if (effect.kind == Effect::Kind::startTimer) {
    text += " " + std::to_string(effect.timeout.count());
  }
  if (effect.request) {
    text += " " + effect.request->url.absoluteString();
    for (const auto& [name, value] : effect.request->headers) {
      text += " " + name + "=" + value;
    }
  }
  if (effect.termination) {
    text += " " + std::to_string(static_cast<int>(*effect.termination));
  }
  if (effect.error) {
    text += " " + std::to_string(effect.error->code);
    text += machine.redirects() > 0 ? " redirects=" + std::to_string(machine.redirects()) : "";
    text += machine.tlsErrors() > 0 ? " tls=" + std::to_string(machine.tlsErrors()) : "";
  }
  return text;
}

// The effects of each event, events separated by " | ".
std::string run(NavigationMachine& machine, const std::vector<Event>& events) {
  std::string out;
  for (std::size_t i = 0; i < events.size(); ++i) {
    std::string part;
    for (const Effect& effect : machine.feed(events[i])) {
      part += (part.empty() ? "" : ", ") + describe(effect, machine);
    }
    out += (i == 0 ? "" : " | ") + part;
  }
  return out;
}

struct Row {
  const char* name;
  std::vector<Event> events;
  std::string effects;  // after those of the first load
};

TEST(NavigationMachineTest, TurnsEngineEventsIntoEffects) {
  const std::string send = "send https://shop.test/pay Checkout-Purpose=prefetch";
  const std::string sent = "timer 1000, " + send;
  const Row rows[] = {
      {"finishes; a sub-frame response and the warm view's release come once",
       {load(), action, started, redirected, response, subResponse, committed, finished},
       "| ask | start |  | cancel-timer, ask | ask | release-warm | finish"},
      {"fails before the commit; the failure's FINISHED is silent; the next start forgets it",
       {load(), action, started, tls(false), failed(Code::serverCertificateHasUnknownRoot),
        finished, started, failed(Code::cannotConnectToHost)},
       "| ask | start |  | release-warm, fail-provisional -1203 tls=4 | cancel-timer | start | "
       "fail-provisional -1004"},
      {"fails after the commit, or at it",
       {load(), action, started, response, committed, failed(Code::networkConnectionLost), started,
        failed(Code::cancelled, true)},
       "| ask | start | cancel-timer, ask | release-warm | fail -1005 | start | fail -999"},
      {"a trusted certificate: the request again; the reissue's action and start unseen",
       {load(), action, started, tls(true), finished, newWindow, action, started, response,
        finished},
       "| ask | start | trust, " + send + " |  | ask | allow |  | cancel-timer, ask | finish"},
      {"the replaced navigation may end in its cancellation instead: unseen as well",
       {load(), action, started, tls(true), failed(Code::cancelled), action, started, response,
        finished},
       "| ask | start | trust, " + send + " |  | allow |  | cancel-timer, ask | finish"},
      {"the engine cancels the load before its document, unasked: it goes again once, unseen",
       {load(), action, started, failed(Code::cancelled), finished, action, started, response,
        committed, finished},
       "| ask | start | " + send + " |  | allow |  | cancel-timer, ask | release-warm | finish"},
      {"a second such cancellation is the load's failure, as is one of a later navigation",
       {load(), action, started, failed(Code::cancelled), finished, action, started,
        failed(Code::cancelled), finished, load(), action, started, finished, started,
        failed(Code::cancelled)},
       "| ask | start | " + send + " |  | allow |  | release-warm, fail-provisional -999 | " +
           "cancel-timer | " + sent + " | ask | start | cancel-timer, finish | start | " +
           "fail-provisional -999"},
      {"so is one after a refused certificate",
       {load(), action, started, tls(false), failed(Code::cancelled)},
       "| ask | start |  | release-warm, fail-provisional -999 tls=4"},
      {"a refused redirect target goes again bare; the fourth reissue of a load is refused",
       {load(), started, tls(true, kMoved), tls(false), tls(true), tls(true), tls(true),
        failed(Code::serverCertificateHasUnknownRoot)},
       "| start | trust, send https://cdn.shop.test/pay |  | trust, " + send + " | trust, " + send +
           " |  | release-warm, fail-provisional -1203 tls=4"},
      {"times out before the engine started: failed at once, its action refused unasked",
       {load(), timeout, newWindow, action, action, started, finished},
       "| stop, fail-provisional -1001 | ask | refuse | ask | start | finish"},
      {"times out after the start, before the response: the stop reads -1001",
       {load(), action, started, redirected, timeout, failed(Code::cancelled), finished, started,
        failed(Code::cancelled)},
       "| ask | start |  | stop | release-warm, fail-provisional -1001 redirects=1 |  | start | "
       "fail-provisional -999"},
      {"once the document answers, no time-out; a stop of another cause stays a cancellation",
       {load(), action, started, response, timeout, failed(Code::cancelled), finished},
       "| ask | start | cancel-timer, ask |  | release-warm, fail-provisional -999 | "},
      {"a sub-frame's response is not the document's; a commit without a response ends the "
       "time-out",
       {load(), action, started, subResponse, committed, timeout, finished},
       "| ask | start | ask | cancel-timer, release-warm |  | finish"},
      {"a new load replaces the time-out; the replaced load's end does not end it",
       {load(), action, started, load(), failed(Code::cancelled), finished, timeout},
       "| ask | start | cancel-timer, " + sent +
           " | release-warm, fail-provisional -999 |  | stop, fail-provisional -1001"},
      {"the process dies mid-load: the time-out ends, the load's late word is silent, the next "
       "load starts afresh",
       {load(), action, started, crashed, failed(Code::cancelled), finished, timeout, load(),
        action, started, committed, finished},
       "| ask | start | cancel-timer, release-warm, terminated 0 |  |  |  | " + sent +
           " | ask | start | cancel-timer | finish"},
      {"the process dies before the engine started; then after the page finished",
       {load(), crashed, action, started, response, committed, finished, overMemory, finished},
       "| cancel-timer, release-warm, terminated 0 | ask | start | ask |  | finish | terminated 1 "
       "| "},
      {"after release nothing has an effect",
       {load(), action, started, release, response, committed, finished, timeout, crashed, load()},
       "| ask | start | cancel-timer, release-warm |  |  |  |  |  | "},
  };
  for (const Row& row : rows) {
    NavigationMachine machine(true);
    EXPECT_EQ(run(machine, row.events), sent + " " + row.effects) << row.name;
  }
}

}  // namespace
}  // namespace vemba::linux_platform
