// The navigation bookkeeping of one web view, as a pure state machine: the web engine's events go
// in as plain values (errors already mapped to the seam's, certificate checks already done), and
// what the view must do comes out as a list of effects, in the order to carry them out. It knows
// nothing of GTK or WebKit and does no I/O; WebViewDriver feeds it and executes the effects.
//
// What it guarantees the core sees, per navigation: an action decision, a start, the response
// decision, then a finish or one failure (provisional before the commit); a failure's trailing
// FINISHED is silent. A certificate refused by the engine but vouched for by the bundle is
// trusted and the request reissued (at most kMaxTrustReissues times per load); the refused
// attempt's FINISHED and the reissue's action decision and start stay invisible. A load that the
// engine cancels on its own (started, and not stopped, replaced, refused or answered yet) is
// reissued the same way, once per load; a second such cancellation is reported.
//
// The time-out of a load covers its document request only: the timer starts with the load and
// stops once the main document's response has begun (its main-frame response decision or its
// commit, whichever comes first) or the load has finished. When it fires first, the load is
// stopped and its failure reads UrlErrorCode::timedOut; a load the engine had not even started
// fails at once, and the engine's later action decision for it is refused unasked. A slow
// sub-resource never stops the page.
//
// When the web content process dies, the engine reports nothing more of the navigation in flight:
// its time-out stops, the core hears of the death alone (no failure, now or later, for that
// navigation), and the next load starts afresh.
//
// After Release every event is ignored. Not thread-safe; the driver uses it on the main thread.
#pragma once

#include <chrono>
#include <optional>
#include <variant>
#include <vector>

#include "platform/WebView.h"
#include "vemba/Url.h"

namespace vemba::linux_platform {

// Reissues of one load after a refused certificate that the bundle vouches for. More than one,
// because the session's new trust reaches the engine's network process on its own path, and a
// reissue that overtakes it is refused again; the cap keeps a server whose certificate keeps
// changing from looping.
inline constexpr int kMaxTrustReissues = 3;

namespace navigation {

// The view loads `request` in its main frame (replacing any load in progress).
struct Load {
  platform::WebRequest request;
};
// The engine asks whether to follow a navigation action; `newWindow` when it targets no frame
// of this view.
struct ActionDecision {
  bool newWindow = false;
};
// The engine's load events of the main frame.
struct Started {};
struct Redirected {};
struct Committed {};
struct Finished {};
// The load failed; `atCommit` when the engine reports the failure as one of a committed load.
struct Failed {
  platform::NavigationError error;
  bool atCommit = false;
};
// The engine refused the server certificate for `failingUrl` with the problems `errors` (the
// engine's flag bits); `verifiedByBundle` when the trusted bundle vouches for it for the host.
struct TlsRefused {
  std::optional<Url> failingUrl;
  bool verifiedByBundle = false;
  unsigned errors = 0;
};
// The engine asks whether to accept a response; `mainDocument` for the main frame's own resource.
struct ResponseDecision {
  bool mainDocument = true;
};
// The timer of the last startTimer effect ran out.
struct TimeoutFired {};
// The view's web content process ended (the view lives on).
struct Terminated {
  platform::WebProcessTermination reason = platform::WebProcessTermination::crashed;
};
// The view goes: nothing after this has an effect.
struct Release {};

using Event = std::variant<Load, ActionDecision, Started, Redirected, Committed, Finished, Failed,
                           TlsRefused, ResponseDecision, TimeoutFired, Terminated, Release>;

struct Effect {
  enum class Kind {
    startTimer,        // run the time-out for `timeout` (no other is running)
    cancelTimer,       // the running time-out will not be wanted
    send,              // load `request` in the main frame, its headers and cache policy as given
    trustCertificate,  // trust the refused certificate for the failing URL's host in the session
    stopLoading,
    askDelegate,    // the decision being made is the delegate's (allowed when there is none)
    allowUnasked,   // the decision being made is "use", without asking the delegate
    refuseUnasked,  // the decision being made is "ignore", without asking the delegate
    reportStart,
    reportFinish,
    reportFailProvisional,  // with `error`
    reportFail,             // with `error`
    releaseWarmView,        // the view no longer needs the warm view it started from
    reportTerminated,       // with `termination`
  };
  Kind kind;
  std::chrono::milliseconds timeout{0};
  std::optional<platform::WebRequest> request;
  std::optional<platform::NavigationError> error;
  std::optional<platform::WebProcessTermination> termination;
};

}  // namespace navigation

class NavigationMachine {
 public:
  // `holdsWarmView`: the view started in a warm view's process (see WarmWebView.h).
  explicit NavigationMachine(bool holdsWarmView) : warmHeld_(holdsWarmView) {}

  std::vector<navigation::Effect> feed(const navigation::Event& event);

  // What mapping the next failure needs (WebErrorMap.h): the redirects the navigation in flight
  // followed, and the certificate problems the engine refused it for (0 when none).
  int redirects() const { return redirects_; }
  unsigned tlsErrors() const { return tlsErrors_; }

 private:
  using Effects = std::vector<navigation::Effect>;
  Effects on(const navigation::Load& event);
  Effects on(const navigation::ActionDecision& event);
  Effects on(const navigation::Started& event);
  Effects on(const navigation::Redirected& event);
  Effects on(const navigation::Committed& event);
  Effects on(const navigation::Finished& event);
  Effects on(const navigation::Failed& event);
  Effects on(const navigation::TlsRefused& event);
  Effects on(const navigation::ResponseDecision& event);
  Effects on(const navigation::TimeoutFired& event);
  Effects on(const navigation::Terminated& event);
  Effects on(const navigation::Release& event);
  // The document of the last load has begun to arrive: its time-out is over.
  void documentArriving(Effects& effects);
  void releaseWarmView(Effects& effects);

  bool released_ = false;
  bool warmHeld_;

  // The last load, reissued as it was after its certificate was trusted.
  std::optional<platform::WebRequest> request_;
  bool timerRunning_ = false;
  bool requestStarted_ = false;    // a STARTED came since the last load, and no FINISHED yet
  bool timedOut_ = false;          // the time-out stopped the load: its cancellation reads -1001
  bool abandoned_ = false;         // timed out before it started: its action is refused unasked
  int trustReissues_ = 0;          // of the last load
  bool cancelReissued_ = false;    // the last load went again after the engine cancelled it
  bool loadStartPending_ = false;  // the last load's own navigation has not started yet

  // The navigation in flight.
  bool started_ = false;
  bool committed_ = false;
  bool failed_ = false;           // its failure was reported; its FINISHED stays silent
  bool documentArrived_ = false;  // its main document's response or commit came
  bool ownNavigation_ = false;    // it is the last load's own (not a later one the page began)
  bool processGone_ = false;  // the process died since the last load: the engine's word is stale
  unsigned tlsErrors_ = 0;
  int redirects_ = 0;

  // Kept from the core after a reissue: the refused attempt's FINISHED, the reissue's action
  // decision and (when the refused attempt had started) its start.
  bool swallowFinish_ = false;
  bool swallowAction_ = false;
  bool swallowStart_ = false;
};

}  // namespace vemba::linux_platform
