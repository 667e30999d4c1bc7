// vemba-inspect checkout: presents a checkout sheet from a host window, as a host would, and
// prints one JSON line per delegate call, per change of the sheet's presence on screen and per
// URL the library asks to open outside the application.
#include <cstdio>
#include <memory>
#include <optional>
#include <string>

#include "Commands.h"
#include "InspectHost.h"
#include "Inspection.h"
#include "Options.h"
#include "vemba/checkout/Checkout.h"
#include "vemba/checkout/CheckoutDelegate.h"
#include "vemba/checkout/EventJson.h"

namespace vemba::inspect {
namespace {

using checkout::CheckoutError;
using Line = nlohmann::ordered_json;

// A host-facing value as the inspector prints it: in the shape vemba/checkout/EventJson.h gives
// hosts.
template <typename Value>
Line jsonOf(const Value& value) {
  return Line::parse(checkout::toJson(value));
}

constexpr double kDefaultTimeoutSeconds = 60;
constexpr double kDefaultLingerSeconds = 1;

enum class DelegateMode { full, defaultsOnly, none };
enum class Recover { automatic, yes, no };

struct CheckoutOptions {
  explicit CheckoutOptions(Url checkout) : url(std::move(checkout)) {}

  Url url;
  bool preload = false;
  std::optional<checkout::MetaData::EntryPoint> entryPoint;
  DelegateMode delegate = DelegateMode::full;
  Recover recover = Recover::automatic;
  std::optional<double> closeAfter;
  double linger = kDefaultLingerSeconds;
  double timeout = kDefaultTimeoutSeconds;
  std::optional<checkout::LogLevel> logLevel;
  std::optional<std::string> screenshot;
};

std::optional<CheckoutOptions> readOptions(const Args& args) {
  const std::optional<Options> options =
      Options::parse(args,
                     {"--url", "--entry-point", "--recover", "--close-after", "--linger",
                      "--timeout", "--log-level", "--screenshot"},
                     {"--preload", "--no-delegate", "--default-delegate"});
  if (!options) {
    return std::nullopt;
  }
  const std::optional<std::string> urlText = options->value("--url");
  const std::optional<Url> url = urlText ? Url::parse(*urlText) : std::nullopt;
  if (!url) {
    std::fputs(urlText ? "vemba-inspect: --url does not parse as a URL\n"
                       : "vemba-inspect: --url is required\n",
               stderr);
    return std::nullopt;
  }
  CheckoutOptions out(*url);
  out.preload = options->flag("--preload");
  if (options->flag("--no-delegate") && options->flag("--default-delegate")) {
    std::fputs("vemba-inspect: --no-delegate and --default-delegate exclude each other\n", stderr);
    return std::nullopt;
  }
  out.delegate = options->flag("--no-delegate")        ? DelegateMode::none
                 : options->flag("--default-delegate") ? DelegateMode::defaultsOnly
                                                       : DelegateMode::full;
  if (const std::optional<std::string> entry = options->value("--entry-point")) {
    out.entryPoint = checkout::entryPointFrom(*entry);
    if (!out.entryPoint) {
      std::fprintf(stderr, "vemba-inspect: unknown entry point '%s'\n", entry->c_str());
      return std::nullopt;
    }
  }
  if (const std::optional<std::string> recover = options->value("--recover")) {
    if (*recover == "auto") {
      out.recover = Recover::automatic;
    } else if (*recover == "yes") {
      out.recover = Recover::yes;
    } else if (*recover == "no") {
      out.recover = Recover::no;
    } else {
      std::fprintf(stderr, "vemba-inspect: --recover takes auto, yes or no, not '%s'\n",
                   recover->c_str());
      return std::nullopt;
    }
  }
  if (const std::optional<std::string> level = options->value("--log-level")) {
    out.logLevel = checkout::logLevelFrom(*level);
    if (!out.logLevel) {
      std::fprintf(stderr, "vemba-inspect: unknown log level '%s'\n", level->c_str());
      return std::nullopt;
    }
  }
  bool ok = true;
  out.closeAfter = options->number("--close-after", ok);
  out.linger = options->number("--linger", ok).value_or(kDefaultLingerSeconds);
  out.timeout = options->number("--timeout", ok).value_or(kDefaultTimeoutSeconds);
  out.screenshot = options->value("--screenshot");
  if (!timesFit(ok, out.timeout, {out.linger, out.closeAfter.value_or(0)})) {
    return std::nullopt;
  }
  return out;
}

// One inspected presentation: the host window, the sheet, and what has been seen of it.
struct Session {
  explicit Session(CheckoutOptions chosen) : options(std::move(chosen)) {}

  CheckoutOptions options;
  std::unique_ptr<InspectHost> host;
  std::shared_ptr<checkout::CheckoutViewController> sheet;
  bool presented = false;
  bool dismissing = false;
  bool snapshotTaken = false;

  // Like a typical host, dismisses the sheet a moment after it completed or was cancelled.
  void dismissLater() {
    if (dismissing) {
      return;
    }
    dismissing = true;
    host->after(options.linger, [this] {
      if (sheet) {
        sheet->dismiss(/*animated=*/true);
      }
    });
  }
};

// Overrides only what a host must, cancellation: everything else is the library's default (a
// failure throws the error back into the kit, which stops it and dismisses the sheet).
class DefaultsDelegate : public checkout::CheckoutDelegate {
 public:
  explicit DefaultsDelegate(Session& session) : session_(session) {}

  void checkoutDidCancel() override {
    printLine(Line{{"callback", "checkoutDidCancel"}});
    session_.dismissLater();
  }

 protected:
  Session& session_;
};

// Prints every call, answering the recovery question as asked on the command line.
class PrintingDelegate final : public DefaultsDelegate {
 public:
  using DefaultsDelegate::DefaultsDelegate;

  void checkoutDidComplete(const checkout::CheckoutCompletedEvent& event) override {
    printLine(Line{{"callback", "checkoutDidComplete"}, {"payload", jsonOf(event)}});
    session_.dismissLater();
  }
  void checkoutDidFail(const CheckoutError& error) override {
    printLine(Line{{"callback", "checkoutDidFail"}, {"checkoutError", jsonOf(error)}});
  }
  bool shouldRecoverFromError(const CheckoutError& error) override {
    const bool answer = session_.options.recover == Recover::automatic
                            ? CheckoutDelegate::shouldRecoverFromError(error)
                            : session_.options.recover == Recover::yes;
    printLine(Line{{"callback", "shouldRecoverFromError"},
                   {"checkoutError", jsonOf(error)},
                   {"answer", answer}});
    return answer;
  }
  void checkoutDidClickLink(const Url& url) override {
    printLine(Line{{"callback", "checkoutDidClickLink"}, {"url", url.absoluteString()}});
  }
  void checkoutDidEmitWebPixelEvent(const checkout::PixelEvent& event) override {
    printLine(Line{{"callback", "checkoutDidEmitWebPixelEvent"}, {"payload", jsonOf(event)}});
  }
};

void printScreen(const char* state) {
  printLine(Line{{"screen", "checkout"}, {"state", state}});
}

// Watches what the host window presents: prints the sheet's arrival and departure, takes the
// snapshot once the page has loaded, and ends the run when the sheet has gone. True while the
// watch should go on.
bool watch(Session& session) {
  const std::shared_ptr<ScreenHandle> shown = inspection::presentedOver(session.host->screen());
  const bool onScreen = shown != nullptr && shown == session.sheet->screen();
  if (!session.presented && onScreen) {
    session.presented = true;
    printScreen("presented");
    if (session.options.closeAfter) {
      session.host->after(*session.options.closeAfter,
                          [&session] { inspection::pressCloseItem(*session.sheet); });
    }
  }
  if (session.presented && !onScreen) {
    printScreen("dismissed");
    session.host->quit();
    return false;
  }
  if (session.options.screenshot && !session.snapshotTaken) {
    if (inspection::checkoutLoaded(session.sheet.get())) {
      session.snapshotTaken = true;
      session.host->after(kSnapshotSettleSeconds,
                          [&session] { session.host->snapshot(*session.options.screenshot); });
    }
  }
  return true;
}

// With --preload: preloads the URL and runs the loop until that load has finished.
bool preloadAndWait(Session& session) {
  checkout::preload(session.options.url);
  bool finished = false;
  session.host->every(kWatchIntervalSeconds, [&session, &finished] {
    finished = inspection::checkoutLoaded(nullptr);
    if (finished) {
      session.host->quit();
    }
    return !finished;
  });
  return session.host->run(session.options.timeout) && finished;
}

}  // namespace

int runCheckout(const Args& args) {
  std::optional<CheckoutOptions> options = readOptions(args);
  if (!options) {
    return kExitUsage;
  }
  Session session(*options);
  if (session.options.logLevel) {
    checkout::configure(
        [&](checkout::Configuration& c) { c.logLevel = *session.options.logLevel; });
  }
  session.host = InspectHost::open("vemba-inspect checkout");
  if (!session.host) {
    return kExitNoDisplay;
  }
  printOpenedUrls();

  if (session.options.preload && !preloadAndWait(session)) {
    reportTimeout("the preload did not finish", session.options.timeout);
    return kExitTimeout;
  }

  std::shared_ptr<checkout::CheckoutDelegate> delegate;
  if (session.options.delegate == DelegateMode::full) {
    delegate = std::make_shared<PrintingDelegate>(session);
  } else if (session.options.delegate == DelegateMode::defaultsOnly) {
    delegate = std::make_shared<DefaultsDelegate>(session);
  }
  session.sheet = session.options.entryPoint
                      ? checkout::present(session.options.url, session.host->screen(),
                                          session.options.entryPoint, delegate)
                      : checkout::present(session.options.url, session.host->screen(), delegate);
  if (!session.sheet) {
    std::fputs("vemba-inspect: the sheet could not be presented\n", stderr);
    return 1;
  }
  session.host->every(kWatchIntervalSeconds, [&session] { return watch(session); });
  if (!session.host->run(session.options.timeout)) {
    reportTimeout("the sheet was not dismissed", session.options.timeout);
    return kExitTimeout;
  }
  return 0;
}

}  // namespace vemba::inspect
