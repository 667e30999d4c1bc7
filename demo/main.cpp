// vemba-demo: a Linux host application of the library. It starts its own local ad exchange on
// 127.0.0.1 (the one the library is built against), opens a window with the ad and checkout
// controls and an event log, and, with --script, plays a whole session by itself and saves a
// numbered PNG of the window at each step.
//
//   vemba-demo [--script all|interstitial|rewarded|checkout-from-ad|checkout|recovery]
//              [--screenshots DIR]
#include <gtk/gtk.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>

#include "DemoWindow.h"
#include "LocalExchange.h"
#include "ScriptedSession.h"
#include "vemba/Vemba.h"
#include "vemba/linux/Screens.h"
#include "vemba/linux/WebViews.h"

namespace {

using vemba::demo::DemoWindow;
using vemba::demo::ScriptedSession;

// The port of the exchange origin the library is built against.
constexpr int kExchangePort = 18443;
constexpr const char* kApiKey = "demo-publisher-key";
constexpr guint kTrafficPollMs = 500;

struct Args {
  std::optional<std::string> script;
  std::string screenshots;
};

std::optional<Args> parseArgs(int argc, char** argv) {
  Args args;
  for (int i = 1; i < argc; ++i) {
    const std::string arg = argv[i];
    if (arg == "--script" && i + 1 < argc) {
      args.script = argv[++i];
    } else if (arg == "--screenshots" && i + 1 < argc) {
      args.screenshots = argv[++i];
    } else {
      std::fprintf(stderr, "vemba-demo: unexpected argument '%s'\n", arg.c_str());
      return std::nullopt;
    }
  }
  if (args.script) {
    const auto& names = ScriptedSession::names();
    if (std::find(names.begin(), names.end(), *args.script) == names.end()) {
      std::fprintf(stderr, "vemba-demo: unknown script '%s'\n", args.script->c_str());
      return std::nullopt;
    }
  }
  return args;
}

// Everything the application holds while it runs.
struct Demo {
  Args args;
  std::unique_ptr<vemba::exchange::LocalExchange> exchange;
  std::unique_ptr<DemoWindow> window;
  std::unique_ptr<ScriptedSession> session;
  std::size_t bidsSeen = 0;
  std::size_t billingSeen = 0;
  int status = 0;
  GtkApplication* app = nullptr;
};

// Shows the bids and billing hits the exchange has recorded since the last look.
gboolean pollTraffic(gpointer data) {
  auto* demo = static_cast<Demo*>(data);
  const std::vector<nlohmann::json> bids = demo->exchange->log("bid");
  for (std::size_t i = demo->bidsSeen; i < bids.size(); ++i) {
    // With the privacy signals the request carried, where it carried any.
    std::string signals;
    const nlohmann::json body =
        nlohmann::json::parse(bids[i].value("body", ""), nullptr, /*allow_exceptions=*/false);
    if (body.is_object()) {
      for (const char* key : {"regs", "user"}) {
        if (body.contains(key)) {
          signals += std::string(", ") + key + " " + body[key].dump();
        }
      }
      if (body.contains("device") && body["device"].contains("lmt")) {
        signals += ", lmt " + body["device"]["lmt"].dump();
      }
    }
    demo->window->event(
        "exchange", "bid request",
        bids[i].value("adUnit", "") + " (" + bids[i].value("format", "") + ")" + signals);
  }
  demo->bidsSeen = bids.size();
  const std::vector<nlohmann::json> billing = demo->exchange->log("billing");
  for (std::size_t i = demo->billingSeen; i < billing.size(); ++i) {
    demo->window->event("exchange", "billing hit", billing[i].value("query", ""));
  }
  demo->billingSeen = billing.size();
  return G_SOURCE_CONTINUE;
}

void activate(GtkApplication* app, gpointer data) {
  auto* demo = static_cast<Demo*>(data);
  if (demo->window) {
    gtk_window_present(demo->window->window());
    return;
  }
  DemoWindow::Settings settings;
  settings.exchangeOrigin = demo->exchange->origin();
  settings.echoLog = demo->args.script.has_value();
  demo->window = std::make_unique<DemoWindow>(app, settings);
  vemba::setUrlOpener([demo](const std::string& url) {
    // The demo never launches anything: the URL is only shown.
    demo->window->event("app", "opened", url);
  });
  g_timeout_add(kTrafficPollMs, pollTraffic, demo);

  if (demo->args.script) {
    demo->session = std::make_unique<ScriptedSession>(
        *demo->window, *demo->args.script, demo->args.screenshots,
        [demo](const std::string& adUnit, const std::string& page) {
          demo->exchange->setBehaviour(adUnit, "bid", {{"page", page}});
        },
        [demo](int status) {
          demo->status = status;
          g_application_quit(G_APPLICATION(demo->app));
        });
    demo->session->start();
  }
}

}  // namespace

int main(int argc, char** argv) {
  std::optional<Args> args = parseArgs(argc, argv);
  if (!args) {
    return 2;
  }
  if (args->script && args->screenshots.empty()) {
    char pattern[] = "/tmp/vemba-demo-XXXXXX";
    if (mkdtemp(pattern) == nullptr) {
      std::perror("vemba-demo: mkdtemp");
      return 1;
    }
    args->screenshots = pattern;
  }
  setenv("GTK_A11Y", "none", 0);

  Demo demo;
  demo.args = *args;
  vemba::exchange::LocalExchange::Options options;
  options.port = kExchangePort;
  options.lifetime = std::chrono::hours(8);
  options.idleTimeout = std::chrono::hours(8);
  try {
    demo.exchange = std::make_unique<vemba::exchange::LocalExchange>(options);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "vemba-demo: the local exchange did not start: %s\n", error.what());
    return 1;
  }
  // The library's HTTP client and its web views trust the exchange's own certificate authority.
  setenv("SSL_CERT_FILE", demo.exchange->caFile().c_str(), 1);
  vemba::setEphemeralWebViews(true);
  vemba::VembaSDK::shared().initialize(vemba::VembaConfiguration(kApiKey, /*debugMode=*/true));

  if (!gtk_init_check()) {
    std::fputs("vemba-demo: no display (run scripts/run-demo.sh, which uses a virtual one)\n",
               stderr);
    return 4;
  }
  demo.app = gtk_application_new("dev.vemba.DemoHost", G_APPLICATION_NON_UNIQUE);
  g_signal_connect(demo.app, "activate", G_CALLBACK(activate), &demo);
  const int status = g_application_run(G_APPLICATION(demo.app), 1, argv);
  g_object_unref(demo.app);
  demo.session.reset();
  demo.window.reset();
  return status != 0 ? status : demo.status;
}
