"""The exchange's page routes: the demo checkout site, the ad page variants and the landing page.

Everything here is served from the exchange's own HTTPS origin, so a client that trusts the
exchange's CA trusts these pages too. Every request is recorded with kind "page" (headers
included) plus a "variant" field naming the route that answered it. See README.md for the paths.

`SiteRoutes.handle` runs on the connection's own thread; the per-key "first request" memory is
shared by all threads and guarded by a lock. Requests told to wait or never answer block only
their own thread and give up when the server stops.
"""

import json
import os
import re
import threading
from urllib.parse import parse_qsl, urlencode

import page_template

# A request that "never answers" gives up after this long even if the server is still running.
HANG_LIMIT_SECONDS = 3600.0
# A first request to /ads/slow-first/... waits this long unless ?seconds= says otherwise: longer
# than the ad web view's 10-second request time-out, so that first attempt times out.
SLOW_FIRST_DEFAULT_SECONDS = 12.0
SLOW_CHECKOUT_DEFAULT_SECONDS = 3.0
FAIL_ONCE_DEFAULT_STATUS = 500
CONFIG_PLACEHOLDER = "<!--SITE-CONFIG-->"
ERROR_VARIANTS = ("authentication", "configuration", "unrecoverable", "checkout", "expired",
                  "unsupported", "malformed", "object", "unknown-group")
CHECKOUT_TOKEN = re.compile(r"^[A-Za-z0-9._-]{1,64}$")
THANK_YOU = re.compile(r"^thank[_-]you$", re.IGNORECASE)
HTML = "text/html; charset=utf-8"
# The sub-resource of /checkout/hang/resource: a request under /checkout/never/ never answers.
NEVER_RESOURCE = "/checkout/never/resource.svg"

STATUS_BODY = """</head>
<body class="status-page"><main class="status-card">
<p class="status-code">%(status)d</p><h1>%(phrase)s</h1>
<p>The Lumenmoss checkout answered this request with HTTP %(status)d on purpose.</p>
</main></body></html>
"""


def query_number(query, name, default, low, high):
    """A numeric query parameter clamped to [low, high]; the default when absent or not a number."""
    try:
        value = float(query.get(name, default))
    except ValueError:
        return default
    return min(max(value, low), high)


class SiteRoutes:
    """Routes of the demo site and the ad variants. Owned by the server; thread-safe."""

    def __init__(self, pages_dir, stopping):
        self.pages_dir = pages_dir
        self.stopping = stopping
        self.lock = threading.Lock()
        self.seen_keys = set()

    def forget_keys(self):
        with self.lock:
            self.seen_keys.clear()

    def first_request(self, key):
        """True for the first request ever made with this key (until `forget_keys`)."""
        with self.lock:
            if key in self.seen_keys:
                return False
            self.seen_keys.add(key)
            return True

    def read_page(self, relative):
        """The page's bytes, its shared head filled in."""
        with open(os.path.join(self.pages_dir, relative), "rb") as page:
            return page_template.render(page.read())

    def wait(self, seconds):
        """Blocks this connection's thread; returns False when the server is stopping."""
        return not self.stopping.wait(seconds)

    # --- dispatch -------------------------------------------------------------------------------

    def handle(self, handler, body, path, query_text):
        """Answers the request when the path is one of these routes; returns False otherwise."""
        segments = [s for s in path.split("/") if s]
        if not segments or segments[0] not in ("checkout", "ads", "landing"):
            return False
        if os.path.isfile(os.path.join(self.pages_dir, *segments)):
            return False  # a real file (an asset or the plain ad pages): the static handler serves it
        query = dict(parse_qsl(query_text, keep_blank_values=True))
        if segments[0] == "checkout":
            return self.checkout(handler, body, segments[1:], query)
        if segments[0] == "ads":
            return self.ads(handler, body, segments[1:], query)
        handler.record("page", body, variant="landing")
        handler.send(200, self.read_page("landing/index.html"), HTML)
        return True

    # --- the checkout site ----------------------------------------------------------------------

    def checkout(self, handler, body, rest, query):
        multipass = False
        while rest and rest[0] == "multipass":
            multipass, rest = True, rest[1:]
        if rest and THANK_YOU.match(rest[-1]):
            handler.record("page", body, variant="thank-you", multipass=multipass)
            handler.send(200, self.read_page("checkout/thank-you.html"), HTML)
            return True
        if rest and rest[-1] == "terms":
            handler.record("page", body, variant="terms")
            handler.send(200, self.read_page("checkout/terms.html"), HTML)
            return True
        head = rest[0] if rest else ""
        config = {"variant": "checkout", "multipass": multipass}
        if head == "status" and len(rest) == 2 and rest[1].isdigit():
            status = int(rest[1])
            if not 400 <= status <= 599:
                return False
            handler.record("page", body, variant="status", status=status)
            self.send_status(handler, status)
            return True
        if head == "fail-once" and len(rest) == 2:
            key = "checkout-fail-once/" + rest[1]
            status = int(query_number(query, "status", FAIL_ONCE_DEFAULT_STATUS, 400, 599))
            if self.first_request(key):
                handler.record("page", body, variant="fail-once", key=rest[1], status=status)
                self.send_status(handler, status)
                return True
            config["variant"] = "fail-once"
            handler.record("page", body, variant="fail-once", key=rest[1], status=200)
        elif head == "error" and len(rest) == 2 and rest[1] in ERROR_VARIANTS:
            config.update(variant="error", error=rest[1], code=query.get("code"),
                          reason=query.get("reason"))
            handler.record("page", body, variant="error", error=rest[1])
        elif head == "slow" and len(rest) == 1:
            seconds = query_number(query, "seconds", SLOW_CHECKOUT_DEFAULT_SECONDS, 0, 600)
            handler.record("page", body, variant="slow", seconds=seconds)
            if not self.wait(seconds):
                return True
            config["variant"] = "slow"
        elif head == "hang" and len(rest) == 2 and rest[1] in ("document", "resource"):
            handler.record("page", body, variant="hang-" + rest[1])
            config["variant"] = "hang-" + rest[1]
            if rest[1] == "document":
                self.send_unfinished(handler, self.checkout_page(config))
                return True
        elif head == "never":
            handler.record("page", body, variant="never")
            self.never_answer(handler)
            return True
        elif len(rest) <= 1 and (not rest or CHECKOUT_TOKEN.match(head)):
            handler.record("page", body, variant="checkout", multipass=multipass)
        else:
            return False
        handler.send(200, self.checkout_page(config), HTML)
        return True

    def checkout_page(self, config):
        page = self.read_page("checkout/index.html").decode("utf-8")
        script = ('<script id="site-config" type="application/json">%s</script>'
                  % json.dumps(config).replace("<", "\\u003c"))
        if config["variant"] == "hang-resource":
            script += '\n<img src="%s" alt="" hidden>' % NEVER_RESOURCE
        return page.replace(CONFIG_PLACEHOLDER, script, 1).encode("utf-8")

    def send_status(self, handler, status):
        phrase = handler.responses.get(status, ("Error",))[0]
        title = "%d %s" % (status, phrase)
        page = (page_template.head(title, "/checkout/assets/site.css")
                + STATUS_BODY % {"status": status, "phrase": phrase})
        handler.send(status, page.encode("utf-8"), HTML)

    def send_unfinished(self, handler, content):
        """Sends the whole page as one chunk and never the final chunk: the load never ends."""
        handler.close_connection = True
        handler.send_response(200)
        handler.send_header("Content-Type", HTML)
        handler.send_header("Cache-Control", "no-store")
        handler.send_header("Transfer-Encoding", "chunked")
        handler.end_headers()
        handler.wfile.write(b"%x\r\n%s\r\n" % (len(content), content))
        handler.wfile.flush()
        self.wait(HANG_LIMIT_SECONDS)

    def never_answer(self, handler):
        handler.close_connection = True
        self.wait(HANG_LIMIT_SECONDS)

    # --- ad page variants -----------------------------------------------------------------------

    def ads(self, handler, body, rest, query):
        if len(rest) == 3 and rest[0] in ("slow-first", "drop-once"):
            mode, key, page = rest
        elif len(rest) == 2 and rest[0] in ("never", "redirect-loop"):
            mode, key, page = rest[0], None, rest[1]
        else:
            return False
        if not os.path.isfile(os.path.join(self.pages_dir, "ads", page)) or page.startswith("."):
            return False
        if mode == "redirect-loop":
            self.redirect_again(handler, body, page, query)
            return True
        first = key is not None and self.first_request("ads-%s/%s" % (mode, key))
        handler.record("page", body, variant="ads-" + mode, key=key, first=first)
        if mode == "never":
            self.never_answer(handler)
            return True
        if mode == "drop-once" and first:
            handler.close_connection = True
            handler.connection.shutdown(2)  # socket.SHUT_RDWR: no answer at all
            return True
        if mode == "slow-first" and first:
            seconds = query_number(query, "seconds", SLOW_FIRST_DEFAULT_SECONDS, 0, 600)
            if not self.wait(seconds):
                return True
        handler.send(200, self.read_page(os.path.join("ads", page)), HTML)
        return True

    def redirect_again(self, handler, body, page, query):
        """Endless navigation by HTTP: every request is redirected to itself with hop=N+1."""
        hop = int(query_number(query, "hop", 0, 0, 1e9))
        handler.record("page", body, variant="ads-redirect-loop", hop=hop)
        query["hop"] = str(hop + 1)
        location = "/ads/redirect-loop/%s?%s" % (page, urlencode(query))
        handler.send(302, b"", HTML, extra_headers=[("Location", location)])
