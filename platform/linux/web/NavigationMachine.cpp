#include "NavigationMachine.h"

#include <algorithm>
#include <utility>

#include "platform/UrlErrorCode.h"

namespace vemba::linux_platform {
namespace {

using navigation::Effect;
using Kind = navigation::Effect::Kind;

Effect just(Kind kind) {
  return Effect{kind, {}, std::nullopt, std::nullopt, std::nullopt};
}

Effect send(platform::WebRequest request) {
  return Effect{Kind::send, {}, std::move(request), std::nullopt, std::nullopt};
}

Effect report(Kind kind, platform::NavigationError error) {
  return Effect{kind, {}, std::nullopt, std::move(error), std::nullopt};
}

bool isCancellation(const platform::NavigationError& error) {
  return error.domain == platform::kUrlErrorDomain &&
         error.code == platform::UrlErrorCode::cancelled;
}

}  // namespace

std::vector<Effect> NavigationMachine::feed(const navigation::Event& event) {
  if (released_) {
    return {};
  }
  return std::visit([this](const auto& value) { return on(value); }, event);
}

void NavigationMachine::documentArriving(Effects& effects) {
  documentArrived_ = true;
  if (requestStarted_ && timerRunning_) {
    timerRunning_ = false;
    effects.push_back(just(Kind::cancelTimer));
  }
}

void NavigationMachine::releaseWarmView(Effects& effects) {
  if (warmHeld_) {
    warmHeld_ = false;
    effects.push_back(just(Kind::releaseWarmView));
  }
}

NavigationMachine::Effects NavigationMachine::on(const navigation::Load& event) {
  Effects effects;
  request_ = event.request;
  processGone_ = false;
  requestStarted_ = false;
  timedOut_ = false;
  abandoned_ = false;
  trustReissues_ = 0;
  cancelReissued_ = false;
  loadStartPending_ = true;
  ownNavigation_ = false;
  if (timerRunning_) {
    effects.push_back(just(Kind::cancelTimer));
  }
  timerRunning_ = true;
  effects.push_back(Effect{Kind::startTimer,
                           std::max(event.request.timeout, std::chrono::milliseconds(0)),
                           std::nullopt, std::nullopt, std::nullopt});
  effects.push_back(send(event.request));
  return effects;
}

NavigationMachine::Effects NavigationMachine::on(const navigation::ActionDecision& event) {
  if (!event.newWindow && abandoned_) {
    // The request that timed out before it started: the core has its failure already.
    abandoned_ = false;
    return {just(Kind::refuseUnasked)};
  }
  if (!event.newWindow && swallowAction_) {
    // The reissue of a request the delegate already allowed.
    swallowAction_ = false;
    return {just(Kind::allowUnasked)};
  }
  return {just(Kind::askDelegate)};
}

NavigationMachine::Effects NavigationMachine::on(const navigation::Started& /*event*/) {
  if (swallowStart_) {
    swallowStart_ = false;
    return {};
  }
  processGone_ = false;  // a navigation of the new process
  started_ = true;
  committed_ = false;
  failed_ = false;
  documentArrived_ = false;
  ownNavigation_ = std::exchange(loadStartPending_, false);
  tlsErrors_ = 0;
  redirects_ = 0;
  requestStarted_ = request_.has_value();
  return {just(Kind::reportStart)};
}

NavigationMachine::Effects NavigationMachine::on(const navigation::Redirected& /*event*/) {
  ++redirects_;
  return {};
}

NavigationMachine::Effects NavigationMachine::on(const navigation::Committed& /*event*/) {
  Effects effects;
  committed_ = true;
  documentArriving(effects);
  releaseWarmView(effects);
  return effects;
}

NavigationMachine::Effects NavigationMachine::on(const navigation::Finished& /*event*/) {
  if (processGone_) {
    return {};
  }
  if (swallowFinish_) {
    swallowFinish_ = false;
    return {};
  }
  Effects effects;
  if (requestStarted_) {
    // A FINISHED before the last load's STARTED belongs to the load it replaced.
    requestStarted_ = false;
    if (timerRunning_) {
      timerRunning_ = false;
      effects.push_back(just(Kind::cancelTimer));
    }
  }
  started_ = false;
  ownNavigation_ = false;
  timedOut_ = false;
  if (!failed_) {
    effects.push_back(just(Kind::reportFinish));
  }
  return effects;
}

NavigationMachine::Effects NavigationMachine::on(const navigation::Failed& event) {
  if (processGone_) {
    return {};  // the dead navigation's: the core has heard of the death instead
  }
  if (swallowFinish_ && isCancellation(event.error)) {
    // The end of the navigation a trusted certificate's reissue replaced: the engine ends it with
    // a FINISHED or, when the reissue overtakes it (a loaded machine), with its cancellation.
    swallowFinish_ = false;
    return {};
  }
  if (isCancellation(event.error) && ownNavigation_ && !timedOut_ && !documentArrived_ &&
      tlsErrors_ == 0 && !event.atCommit && !cancelReissued_) {
    // Nothing stopped, replaced or refused this load, yet the engine cancelled it before its
    // document began to arrive (seen on a loaded machine, with several views starting at once).
    // Rather than leave the page blank, the same request goes again, once; the cancelled
    // navigation's FINISHED and the second attempt's action decision and start stay unseen, as
    // after a certificate reissue.
    cancelReissued_ = true;
    swallowFinish_ = true;
    swallowAction_ = true;
    swallowStart_ = true;
    return {send(*request_)};
  }
  Effects effects;
  failed_ = true;
  releaseWarmView(effects);
  platform::NavigationError error = event.error;
  if (timedOut_ && isCancellation(error)) {
    // The time-out's own stop.
    timedOut_ = false;
    error.code = platform::UrlErrorCode::timedOut;
  }
  effects.push_back(
      report(event.atCommit || committed_ ? Kind::reportFail : Kind::reportFailProvisional,
             std::move(error)));
  return effects;
}

NavigationMachine::Effects NavigationMachine::on(const navigation::TlsRefused& event) {
  if (trustReissues_ >= kMaxTrustReissues || !event.verifiedByBundle || !event.failingUrl) {
    // Refused: the failure that follows carries these problems.
    tlsErrors_ = event.errors;
    return {};
  }
  ++trustReissues_;
  swallowFinish_ = true;
  swallowAction_ = true;
  swallowStart_ = started_;
  // The same request, headers and all, when it is the load's own; the time-out keeps running.
  platform::WebRequest again = request_ && request_->url == *event.failingUrl
                                   ? *request_
                                   : platform::WebRequest{*event.failingUrl, {}, {}, {}};
  return {just(Kind::trustCertificate), send(std::move(again))};
}

NavigationMachine::Effects NavigationMachine::on(const navigation::ResponseDecision& event) {
  Effects effects;
  if (event.mainDocument) {
    documentArriving(effects);
  }
  effects.push_back(just(Kind::askDelegate));
  return effects;
}

NavigationMachine::Effects NavigationMachine::on(const navigation::TimeoutFired& /*event*/) {
  if (!timerRunning_) {
    return {};  // a timer cancelled after it ran out
  }
  timerRunning_ = false;
  if (requestStarted_) {
    // The stop fails the load with a cancellation, reported as a time-out (see Failed).
    timedOut_ = true;
    return {just(Kind::stopLoading)};
  }
  // The engine has not even started the request (a web process still starting, say): the stop
  // leaves no trace and does not keep the engine from asking about the request later, so the
  // failure is reported here and that request's action is refused when it comes.
  abandoned_ = true;
  return {just(Kind::stopLoading),
          report(Kind::reportFailProvisional,
                 platform::NavigationError{std::string(platform::kUrlErrorDomain),
                                           platform::UrlErrorCode::timedOut,
                                           request_->url.absoluteString()})};
}

NavigationMachine::Effects NavigationMachine::on(const navigation::Terminated& event) {
  Effects effects;
  if (timerRunning_) {
    timerRunning_ = false;
    effects.push_back(just(Kind::cancelTimer));
  }
  // Nothing of the navigation in flight is reported from here on.
  processGone_ = true;
  requestStarted_ = false;
  timedOut_ = false;
  abandoned_ = false;
  started_ = false;
  committed_ = false;
  swallowFinish_ = false;
  swallowAction_ = false;
  swallowStart_ = false;
  releaseWarmView(effects);  // the process it shared is gone
  effects.push_back(Effect{Kind::reportTerminated, {}, std::nullopt, std::nullopt, event.reason});
  return effects;
}

NavigationMachine::Effects NavigationMachine::on(const navigation::Release& /*event*/) {
  Effects effects;
  released_ = true;
  if (timerRunning_) {
    timerRunning_ = false;
    effects.push_back(just(Kind::cancelTimer));
  }
  releaseWarmView(effects);
  return effects;
}

}  // namespace vemba::linux_platform
