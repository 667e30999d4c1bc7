#!/usr/bin/python3
"""Plays the exchange's pages in a real WebKitGTK 6.0 web view and checks what they post.

Starts its own exchange on a free loopback port, trusts the exchange's certificate for 127.0.0.1
only, registers the two script-message channels the SDK registers ("mobileCheckoutSdk" and
"vemba"), sends "presented" with the same dispatch script the checkout sheet evaluates, and
checks the messages, their order and bodies, and the navigations the pages ask for.

    xvfb-run -a /usr/bin/python3 tools/exchange/check_pages.py [--screenshots DIR] [-k NAME]

Needs Debian's python3-gi with the Gtk 4.0 and WebKit 6.0 typelibs (the WebKitGTK runtime the
SDK's Linux backend uses). Exit status 0 when every check passes.
"""

import argparse
import json
import os
import sys
import time
import traceback

# Without a display there is nothing to check pages in (and loading GTK can crash): report a
# skip (77, which ctest counts as skipped) instead.
if not (os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY")):
    print("check_pages: no display (run under xvfb-run -a); skipped", file=sys.stderr)
    sys.exit(77)

import gi  # noqa: E402

gi.require_version("Gtk", "4.0")
gi.require_version("WebKit", "6.0")
from gi.repository import Gio, GLib, Gtk, WebKit  # noqa: E402

from test_site_routes import Exchange  # noqa: E402  (the script's own folder is on the path)

CHECKOUT_CHANNEL = "mobileCheckoutSdk"
AD_CHANNEL = "vemba"


def dispatch_script(name, body=None):
    """The exact script the checkout sheet evaluates to send a message to the page."""
    argument = "'%s'" % name if body is None else "'%s', %s" % (name, body)
    return ("if (window.MobileCheckoutSdk && window.MobileCheckoutSdk.dispatchMessage) {\n"
            "\twindow.MobileCheckoutSdk.dispatchMessage(" + argument + ");\n} else {\n"
            "\twindow.addEventListener('mobileCheckoutBridgeReady', function () {\n"
            "\t\twindow.MobileCheckoutSdk.dispatchMessage(" + argument + ");\n"
            "\t}, {passive: true, once: true});\n}")


class Browser:
    """One window with one web view and an ephemeral session; messages and navigations recorded."""

    def __init__(self, exchange, bridge=True, width=430, height=860):
        self.origin = exchange.origin
        self.session = WebKit.NetworkSession.new_ephemeral()
        certificate = Gio.TlsCertificate.new_from_file(os.path.join(exchange.state_dir, "server.pem"))
        self.session.allow_tls_certificate_for_host(certificate, "127.0.0.1")
        self.content = WebKit.UserContentManager()
        self.messages = []
        self.navigations = []
        self.finished = 0
        channels = [AD_CHANNEL] + ([CHECKOUT_CHANNEL] if bridge else [])
        for channel in channels:
            self.content.register_script_message_handler(channel, None)
            self.content.connect("script-message-received::" + channel, self.on_message, channel)
        self.view = WebKit.WebView(network_session=self.session, user_content_manager=self.content)
        self.view.connect("decide-policy", self.on_policy)
        self.view.connect("load-changed", self.on_load)
        self.window = Gtk.Window()
        self.window.set_default_size(width, height)
        self.window.set_child(self.view)
        self.window.present()

    def on_message(self, _manager, value, channel):
        if value.is_string():
            self.messages.append((channel, value.to_string()))
        elif value.is_null() or value.is_undefined():
            self.messages.append((channel, None))
        else:
            self.messages.append((channel, json.loads(value.to_json(0))))

    def on_policy(self, _view, decision, kind):
        if kind == WebKit.PolicyDecisionType.RESPONSE:
            return False
        action = decision.get_navigation_action()
        uri = action.get_request().get_uri()
        self.navigations.append((uri, action.get_navigation_type()))
        if not uri.startswith("https://") or "open_externally" in uri:
            decision.ignore()  # what the sheet does with external links: report, never follow
            return True
        return False

    def on_load(self, _view, event):
        if event == WebKit.LoadEvent.FINISHED:
            self.finished += 1

    def load(self, url):
        self.finished = 0
        self.view.load_request(WebKit.URIRequest.new(url))

    def open(self, path):
        """Loads the exchange's `path` and waits for it to finish."""
        self.load(self.origin + path)
        spin_until(lambda: self.finished, 15)
        return self

    def checkout_messages(self):
        return [json.loads(body) for channel, body in self.messages if channel == CHECKOUT_CHANNEL]

    def ad_messages(self):
        return [body for channel, body in self.messages if channel == AD_CHANNEL]

    def _finish(self, start, finish):
        """Starts an asynchronous call, spins until its callback ran, returns its result."""
        result = {}

        def done(view, task):
            try:
                result["value"] = finish(view, task)
            except GLib.Error as error:
                result["error"] = error.message
        start(done)
        spin_until(lambda: result, 10)
        if "error" in result:
            raise AssertionError("call failed: %s" % result["error"])
        return result["value"]

    def evaluate(self, script):
        return self._finish(
            lambda done: self.view.evaluate_javascript(script, -1, None, None, None, done),
            lambda view, task: json.loads(view.evaluate_javascript_finish(task).to_json(0)
                                          or "null"))

    def snapshot(self, path):
        self._finish(lambda done: self.view.get_snapshot(
            WebKit.SnapshotRegion.FULL_DOCUMENT, WebKit.SnapshotOptions.NONE, None, done),
            lambda view, task: view.get_snapshot_finish(task)).save_to_png(path)

    def close(self):
        self.view.terminate_web_process()
        self.window.destroy()


def spin_until(predicate, seconds, fail=True):
    """Iterates the main context until `predicate()` holds; past `seconds`, fails (or returns)."""
    deadline = time.monotonic() + seconds
    while not predicate():
        if time.monotonic() > deadline:
            if not fail:
                return
            raise AssertionError("timed out after %.1f s" % seconds)
        GLib.MainContext.default().iteration(False) or time.sleep(0.005)


def spin_for(seconds):
    spin_until(lambda: False, seconds, fail=False)


def expect(condition, message):
    if not condition:
        raise AssertionError(message)


# --- checks -------------------------------------------------------------------------------------

CHECKS = []


def check(function):
    CHECKS.append(function)
    return function


def pixel_names(messages):
    return [json.loads(m["body"])["event"]["name"] for m in messages if m["name"] == "webPixels"]


@check
def presented_before_the_page_script_runs_is_delivered_by_the_ready_event(exchange):
    browser = Browser(exchange)
    state = {"sent": False}

    def on_committed(view, event):
        if event == WebKit.LoadEvent.COMMITTED and not state["sent"]:
            state["sent"] = True
            view.evaluate_javascript(dispatch_script("presented"), -1, None, None, None, None)
    browser.view.connect("load-changed", on_committed)
    browser.open("/checkout/slow?seconds=0")
    spin_until(lambda: pixel_names(browser.checkout_messages())[:1] == ["page_viewed"], 5)
    expect(browser.evaluate("VembaSite.presentedCount()") == 1, "presented once")
    browser.close()


@check
def presented_while_the_page_is_not_ready_waits_for_it(exchange):
    # bridge.js has run, the page's own listeners are not in place yet: the message waits for them.
    browser = Browser(exchange)
    browser.view.load_html('<script src="/checkout/assets/bridge.js"></script>',
                           exchange.origin + "/checkout/not-ready")
    spin_until(lambda: browser.finished, 15)
    browser.evaluate(dispatch_script("presented") + "\ntrue")
    browser.evaluate("window.heard = 0; VembaSite.on('presented', function () { window.heard += 1; });"
                     " VembaSite.ready(); true")
    expect(browser.evaluate("window.heard") == 1, "the early presented reached the page's listener")
    browser.close()


@check
def ad_buttons_and_auto_tokens_post_the_ad_vocabulary(exchange):
    browser = Browser(exchange)
    browser.load(exchange.origin + "/ads/interstitial.html?auto=click,openURL,openCheckout,close,dance"
                 "&autoDelay=20")
    spin_until(lambda: len(browser.ad_messages()) == 5, 10)
    click, open_url, open_checkout, close, unknown = browser.ad_messages()
    expect((click, close, unknown) == ("click", "close", "dance"), browser.ad_messages())
    expect(open_url["action"] == "openURL" and
           open_url["url"].startswith(exchange.origin + "/landing/"), open_url)
    expect(open_checkout == {"action": "openCheckout", "url": exchange.origin + "/checkout/demo"},
           open_checkout)
    browser.messages.clear()
    browser.evaluate("document.getElementById('vemba-click').click();"
                     "document.getElementById('vemba-shop').click(); true")
    expect([m if isinstance(m, str) else m["action"] for m in browser.ad_messages()]
           == ["click", "openURL", "openCheckout"], browser.ad_messages())
    browser.close()


def take_screenshots(exchange, directory):
    os.makedirs(directory, exist_ok=True)
    pages = [("checkout", "/checkout/demo"), ("thank-you", "/checkout/demo/thank-you?order_id=1042"),
             ("interstitial", "/ads/interstitial.html"), ("rewarded", "/ads/rewarded.html"),
             ("status-500", "/checkout/status/500"), ("landing", "/landing/interstitial")]
    for width, height in ((390, 844), (800, 900), (1280, 860)):
        for name, path in pages:
            browser = Browser(exchange, bridge=False, width=width, height=height).open(path)
            spin_for(0.4)
            browser.snapshot(os.path.join(directory, "%s-%d.png" % (name, width)))
            browser.close()
        browser = Browser(exchange, width=width, height=height).open("/checkout/demo")
        browser.evaluate("VembaCheckout.setDialog(true); true")
        spin_for(0.3)
        browser.snapshot(os.path.join(directory, "discount-%d.png" % width))
        browser.close()


def main(argv):
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--screenshots", help="also save PNGs of the pages into this directory")
    parser.add_argument("-k", dest="only", help="run only the checks whose name contains this")
    args = parser.parse_args(argv)
    if not Gtk.init_check():
        print("check_pages: no display (run under xvfb-run -a)", file=sys.stderr)
        return 2
    exchange = Exchange()
    failures = 0
    try:
        for function in CHECKS:
            if args.only and args.only not in function.__name__:
                continue
            started = time.monotonic()
            try:
                function(exchange)
                print("ok    %-72s %.1f s" % (function.__name__, time.monotonic() - started))
            except Exception:  # pylint: disable=broad-except
                failures += 1
                print("FAIL  %s\n%s" % (function.__name__, traceback.format_exc()))
        if args.screenshots:
            take_screenshots(exchange, args.screenshots)
    finally:
        exchange.stop()
    print("%d check(s) failed" % failures if failures else "all checks passed")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
