#!/usr/bin/env python3
"""A local ad exchange for tests, the demo and benchmarks.

HTTPS on 127.0.0.1 only, with a certificate authority made afresh at every start (the CA
certificate is written to the state directory for clients to trust; nothing here ever turns
certificate checks off). It answers bid requests, records every request and billing hit as JSON
lines, serves the ad pages and can be told, per ad unit, to misbehave. See README.md.

Python 3 standard library and the `openssl` command only.
"""

import argparse
import json
import os
import secrets
import signal
import socket
import ssl
import struct
import subprocess
import sys
import tempfile
import threading
import time
import traceback
import uuid
from http.server import BaseHTTPRequestHandler, ThreadingHTTPServer
from urllib.parse import parse_qsl, unquote, urlsplit

import page_template
from site_routes import SiteRoutes

HOST = "127.0.0.1"
DEFAULT_PORT = 18443
DEFAULT_LIFETIME = 900.0
HANDSHAKE_TIMEOUT = 10.0
KEEP_ALIVE_TIMEOUT = 30.0
MAX_REQUEST_BODY = 8 * 1024 * 1024
CONVENTION_PREFIX = "exchange:"

# A transparent 1x1 GIF: the answer to a billing pixel.
PIXEL_GIF = bytes.fromhex(
    "47494638396101000100800000000000ffffff21f90401000000002c00000000010001000002024401003b")

# Behaviour name -> default parameters. "bid" is the normal answer.
BEHAVIOURS = {
    "bid": {},               # a full bid: adm, burl, bidid (params: adm, burl, bidid, price, page)
    "nobid": {},             # seatbid is an empty array
    "noseat": {},            # no seatbid key at all
    "emptyseat": {},         # one seat whose bid array is empty
    "firstseatempty": {},    # first seat empty, second seat with a full bid
    "noadm": {},             # the bid has no adm
    "badadm": {"adm": "not a url <with> spaces"},  # adm that is not a URL
    "noburl": {},            # the bid has no burl; the response has a bidid
    "noburl-nobidid": {},    # neither burl nor bidid
    "badburl": {"burl": "not a url <with> spaces"},  # burl that is not a URL; bidid present
    "malformed": {},         # 200 with a truncated JSON body
    "wrongtypes": {},        # 200 with JSON whose fields have the wrong types
    "error500": {"status": 500, "body": "{}"},  # that status with `body` ("bid": the normal bid)
    "empty": {},             # 200 with an empty body (Content-Length: 0)
    "huge": {"bytes": 20 * 1024 * 1024, "chunked": False},  # a body of `bytes` bytes
    "slow": {"seconds": 5.0, "then": "bid"},  # waits, then answers like `then`
    "drop": {},              # closes the connection without answering
    "truncated": {"missing": 1024},  # the normal bid, a Content-Length `missing` bytes too long, FIN
    "reset": {},             # headers and half the normal bid, then a TCP reset (RST)
}
ALIASES = {"normal": "bid"}


def now_iso():
    return time.strftime("%Y-%m-%dT%H:%M:%S", time.gmtime()) + "Z"


def run_openssl(args, cwd):
    result = subprocess.run(["openssl"] + args, cwd=cwd, stdout=subprocess.PIPE,
                            stderr=subprocess.PIPE, text=True, check=False)
    if result.returncode != 0:
        raise RuntimeError("openssl %s failed: %s" % (args[0], result.stderr.strip()))


def make_certificates(state_dir):
    """Creates a CA and a server certificate for 127.0.0.1 and localhost signed by it."""
    paths = {name: os.path.join(state_dir, name) for name in
             ("ca.pem", "ca.key", "server.pem", "server.key", "server.csr", "server.ext")}
    curve = ["-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes"]
    run_openssl(["req", "-x509", "-new"] + curve + [
        "-keyout", paths["ca.key"], "-out", paths["ca.pem"], "-days", "30", "-sha256",
        "-subj", "/CN=Vemba Local Exchange CA %s" % secrets.token_hex(4),
        "-addext", "basicConstraints=critical,CA:TRUE",
        "-addext", "keyUsage=critical,keyCertSign,cRLSign",
        "-addext", "subjectKeyIdentifier=hash"], state_dir)
    run_openssl(["req", "-new"] + curve + [
        "-keyout", paths["server.key"], "-out", paths["server.csr"], "-subj", "/CN=127.0.0.1"],
        state_dir)
    with open(paths["server.ext"], "w", encoding="ascii") as ext:
        ext.write("basicConstraints=critical,CA:FALSE\n"
                  "keyUsage=critical,digitalSignature\n"
                  "extendedKeyUsage=serverAuth\n"
                  "subjectAltName=IP:127.0.0.1,DNS:localhost\n"
                  "subjectKeyIdentifier=hash\n"
                  "authorityKeyIdentifier=keyid\n")
    run_openssl(["x509", "-req", "-in", paths["server.csr"], "-CA", paths["ca.pem"],
                 "-CAkey", paths["ca.key"], "-set_serial", "0x" + secrets.token_hex(8),
                 "-days", "30", "-sha256", "-extfile", paths["server.ext"],
                 "-out", paths["server.pem"]], state_dir)
    for name in ("server.csr", "server.ext"):
        os.remove(paths[name])
    return paths["ca.pem"], paths["server.pem"], paths["server.key"]


def write_atomically(path, text):
    directory = os.path.dirname(os.path.abspath(path))
    fd, temporary = tempfile.mkstemp(dir=directory, prefix=".ready-")
    with os.fdopen(fd, "w", encoding="utf-8") as out:
        out.write(text)
    os.replace(temporary, path)


def normalise_behaviour(value):
    """A behaviour setting -> {"behaviour": name, **params}; raises ValueError when unknown."""
    if isinstance(value, str):
        value = {"behaviour": value}
    if not isinstance(value, dict) or not isinstance(value.get("behaviour"), str):
        raise ValueError("a behaviour is a name or an object with a string 'behaviour'")
    name = ALIASES.get(value["behaviour"], value["behaviour"])
    if name not in BEHAVIOURS:
        raise ValueError("unknown behaviour %r (known: %s)" % (name, ", ".join(sorted(BEHAVIOURS))))
    params = dict(BEHAVIOURS[name])
    params.update({k: v for k, v in value.items() if k not in ("behaviour", "adUnit")})
    params["behaviour"] = name
    return params


def convention_behaviour(tagid):
    """tagid "exchange:<behaviour>[?key=value&...]" -> a behaviour, else None."""
    if not isinstance(tagid, str) or not tagid.startswith(CONVENTION_PREFIX):
        return None
    name, _, query = tagid[len(CONVENTION_PREFIX):].partition("?")
    setting = {"behaviour": name}
    for key, text in parse_qsl(query, keep_blank_values=True):
        try:
            setting[key] = json.loads(text)
        except ValueError:
            setting[key] = text
    try:
        return normalise_behaviour(setting)
    except ValueError:
        return None


class ExchangeState:
    """What the exchange remembers: behaviours and the request log. Thread-safe."""

    def __init__(self, state_dir, behaviours):
        self.lock = threading.Lock()
        self.behaviours = behaviours
        self.entries = []
        self.sequence = 0
        self.log_path = os.path.join(state_dir, "requests.jsonl")
        self.diagnostics_path = os.path.join(state_dir, "exchange.log")
        self.last_activity = time.monotonic()
        open(self.log_path, "w", encoding="utf-8").close()

    def touch(self):
        with self.lock:
            self.last_activity = time.monotonic()

    def record(self, entry):
        with self.lock:
            self.sequence += 1
            entry = dict(entry, seq=self.sequence, time=now_iso())
            self.entries.append(entry)
            with open(self.log_path, "a", encoding="utf-8") as log:
                log.write(json.dumps(entry, ensure_ascii=False) + "\n")
        return entry

    def clear_log(self):
        with self.lock:
            self.entries = []
            open(self.log_path, "w", encoding="utf-8").close()

    def log_lines(self, kind=None, ad_unit=None, path_prefix=None):
        with self.lock:
            return [e for e in self.entries
                    if (kind is None or e.get("kind") == kind)
                    and (ad_unit is None or e.get("adUnit") == ad_unit)
                    and (path_prefix is None or e.get("path", "").startswith(path_prefix))]

    def behaviour_for(self, tagid):
        with self.lock:
            if isinstance(tagid, str) and tagid in self.behaviours:
                return dict(self.behaviours[tagid])
            fallback = self.behaviours.get("*")
        from_convention = convention_behaviour(tagid)
        if from_convention is not None:
            return from_convention
        if fallback is not None:
            return dict(fallback)
        return normalise_behaviour("bid")

    def set_behaviour(self, ad_unit, setting):
        with self.lock:
            if setting is None:
                self.behaviours.pop(ad_unit, None)
            else:
                self.behaviours[ad_unit] = setting

    def reset_behaviours(self):
        with self.lock:
            self.behaviours = {}

    def behaviours_snapshot(self):
        with self.lock:
            return {k: dict(v) for k, v in self.behaviours.items()}

    def diagnose(self, text):
        with self.lock:
            with open(self.diagnostics_path, "a", encoding="utf-8") as out:
                out.write("%s %s\n" % (now_iso(), text))


class ExchangeServer(ThreadingHTTPServer):
    daemon_threads = True
    request_queue_size = 64

    def __init__(self, port, tls_context, state, pages_dir):
        self.tls_context = tls_context
        self.state = state
        self.pages_dir = os.path.realpath(pages_dir)
        self.stopping = threading.Event()
        self.site = SiteRoutes(self.pages_dir, self.stopping)
        super().__init__((HOST, port), ExchangeHandler)

    @property
    def port(self):
        return self.server_address[1]

    @property
    def origin(self):
        return "https://%s:%d" % (HOST, self.port)

    def finish_request(self, request, client_address):
        # The TLS handshake happens here, on the connection's own thread, so that a client that
        # connects and stays silent never holds up the accept loop.
        request.settimeout(HANDSHAKE_TIMEOUT)
        try:
            connection = self.tls_context.wrap_socket(request, server_side=True)
        except (ssl.SSLError, OSError) as error:
            self.state.diagnose("TLS handshake with %s:%d failed: %s" % (
                client_address[0], client_address[1], error))
            return
        try:
            self.RequestHandlerClass(connection, client_address, self)
        finally:
            try:
                connection.close()
            except OSError:
                pass

    def handle_error(self, request, client_address):
        self.state.diagnose("error on connection from %s:%d\n%s" % (
            client_address[0], client_address[1], traceback.format_exc()))


class ExchangeHandler(BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"
    disable_nagle_algorithm = True
    timeout = KEEP_ALIVE_TIMEOUT
    server_version = "VembaLocalExchange/1.0"
    sys_version = ""

    # --- plumbing -------------------------------------------------------------------------------

    def log_message(self, format, *args):  # pylint: disable=redefined-builtin
        self.server.state.diagnose("%s:%d %s" % (self.client_address[0], self.client_address[1],
                                                 format % args))

    def do_GET(self):
        self.route()

    def do_POST(self):
        self.route()

    def do_PUT(self):
        self.route()

    def do_DELETE(self):
        self.route()

    def do_HEAD(self):
        self.route()

    def read_body(self):
        if self.headers.get("Transfer-Encoding", "").lower() == "chunked":
            chunks, total = [], 0
            while True:
                size = int(self.rfile.readline().split(b";")[0].strip() or b"0", 16)
                if size == 0:
                    while self.rfile.readline() not in (b"\r\n", b"\n", b""):
                        pass
                    return b"".join(chunks)
                total += size
                if total > MAX_REQUEST_BODY:
                    raise ValueError("request body too large")
                chunks.append(self.rfile.read(size))
                self.rfile.readline()
        length = int(self.headers.get("Content-Length") or 0)
        if length > MAX_REQUEST_BODY:
            raise ValueError("request body too large")
        return self.rfile.read(length) if length > 0 else b""

    def send(self, status, body=b"", content_type="application/json", extra_headers=()):
        self.send_response(status)
        self.send_header("Content-Type", content_type)
        self.send_header("Content-Length", str(len(body)))
        self.send_header("Cache-Control", "no-store")
        for name, value in extra_headers:
            self.send_header(name, value)
        self.end_headers()
        if self.command != "HEAD" and body:
            self.wfile.write(body)

    def send_json(self, status, value):
        self.send(status, json.dumps(value).encode("utf-8"))

    def record(self, kind, body, **extra):
        parts = urlsplit(self.path)
        entry = {
            "kind": kind,
            "method": self.command,
            "path": parts.path,
            "query": parts.query,
            "queryItems": parse_qsl(parts.query, keep_blank_values=True),
            "headers": [[name, value] for name, value in self.headers.items()],
            "peerPort": self.client_address[1],
        }
        try:
            entry["body"] = body.decode("utf-8")
        except UnicodeDecodeError:
            entry["body"] = None
            entry["bodyHex"] = body.hex()
        entry.update(extra)
        return self.server.state.record(entry)

    # --- routes ---------------------------------------------------------------------------------

    def route(self):
        self.server.state.touch()
        try:
            body = self.read_body()
        except ValueError as error:
            self.close_connection = True
            self.send_json(413, {"error": str(error)})
            return
        path = urlsplit(self.path).path
        try:
            if path == "/bid" and self.command == "POST":
                self.handle_bid(body)
            elif path == "/v1/billing" and self.command in ("GET", "HEAD"):
                self.record("billing", body)
                self.send(200, PIXEL_GIF, "image/gif")
            elif path == "/_log" and self.command == "GET":
                self.handle_log()
            elif path == "/_control" and self.command == "POST":
                self.handle_control(body)
            elif path == "/_behaviours" and self.command == "GET":
                self.send_json(200, self.server.state.behaviours_snapshot())
            elif path == "/_health" and self.command == "GET":
                self.send(200, b"ok\n", "text/plain; charset=utf-8")
            elif path.startswith("/_redirect/"):
                self.handle_redirect(body)
            elif self.command in ("GET", "HEAD"):
                if not self.server.site.handle(self, body, path, urlsplit(self.path).query):
                    self.handle_static(body, path)
            else:
                self.record("other", body)
                self.send_json(404, {"error": "no such endpoint"})
        except (BrokenPipeError, ConnectionResetError, ssl.SSLError, socket.timeout):
            self.close_connection = True  # the client went away; nothing left to tell it

    def handle_log(self):
        query = dict(parse_qsl(urlsplit(self.path).query))
        lines = self.server.state.log_lines(query.get("kind"), query.get("adUnit"),
                                            query.get("pathPrefix"))
        text = "".join(json.dumps(e, ensure_ascii=False) + "\n" for e in lines)
        self.send(200, text.encode("utf-8"), "application/x-ndjson")

    def handle_redirect(self, body):
        """Any method: answers ?status= (a 3xx, 302 when absent) with a Location of ?to=, or of
        this same URL when absent (an endless loop). Recorded as "other"."""
        query = dict(parse_qsl(urlsplit(self.path).query))
        self.record("other", body)
        status = query.get("status", "302")
        if not (status.isdigit() and 300 <= int(status) <= 399):
            self.send_json(400, {"error": "status is a 3xx code"})
            return
        self.send(int(status), extra_headers=[("Location", query.get("to", self.path))])

    def handle_control(self, body):
        self.record("control", body)
        try:
            command = json.loads(body.decode("utf-8") or "{}")
            if not isinstance(command, dict):
                raise ValueError("the control body is a JSON object")
            state = self.server.state
            if command.get("reset"):
                state.reset_behaviours()
            if command.get("clearLog"):
                state.clear_log()
            if command.get("resetOnce"):
                self.server.site.forget_keys()
            if "adUnit" in command:
                if not isinstance(command["adUnit"], str):
                    raise ValueError("adUnit is a string")
                behaviour = command.get("behaviour")
                state.set_behaviour(command["adUnit"],
                                    None if behaviour is None else normalise_behaviour(command))
            self.send_json(200, {"ok": True, "behaviours": state.behaviours_snapshot()})
        except (ValueError, UnicodeDecodeError) as error:
            self.send_json(400, {"ok": False, "error": str(error)})

    def handle_static(self, body, path):
        relative = unquote(path).lstrip("/")
        target = os.path.realpath(os.path.join(self.server.pages_dir, relative))
        inside = target.startswith(self.server.pages_dir + os.sep)
        if not inside or not os.path.isfile(target):
            self.record("other", body)
            self.send(404, b"not found\n", "text/plain; charset=utf-8")
            return
        self.record("page", body)
        with open(target, "rb") as page:
            content = page.read()
        if target.endswith(".html"):
            content = page_template.render(content)
        types = {".html": "text/html; charset=utf-8", ".js": "text/javascript; charset=utf-8",
                 ".css": "text/css; charset=utf-8", ".json": "application/json",
                 ".png": "image/png", ".svg": "image/svg+xml"}
        self.send(200, content, types.get(os.path.splitext(target)[1], "application/octet-stream"))

    # --- bids -----------------------------------------------------------------------------------

    def handle_bid(self, body):
        try:
            request = json.loads(body.decode("utf-8"))
            imp = request["imp"][0]
            if not isinstance(request, dict) or not isinstance(imp, dict):
                raise TypeError
        except (ValueError, KeyError, IndexError, TypeError, UnicodeDecodeError):
            self.record("bid", body, adUnit=None, behaviour="invalid-request")
            self.send_json(400, {"error": "not a bid request"})
            return
        tagid = imp.get("tagid")
        behaviour = self.server.state.behaviour_for(tagid)
        self.record("bid", body, adUnit=tagid, behaviour=behaviour["behaviour"],
                    format="rewarded" if "rewarded" in imp else "interstitial")
        self.answer_bid(request, imp, behaviour)

    def answer_bid(self, request, imp, behaviour):
        name = behaviour["behaviour"]
        if name == "slow":
            time.sleep(float(behaviour.get("seconds", 5.0)))
            follow = normalise_behaviour(behaviour.get("then", "bid"))
            if follow["behaviour"] == "slow":
                follow = normalise_behaviour("bid")
            self.answer_bid(request, imp, follow)
            return
        if name == "drop":
            self.close_connection = True
            self.connection.shutdown(socket.SHUT_RDWR)
            return
        if name == "malformed":
            self.send(200, ('{"id": "%s", "seatbid": [{"bid": [' % request.get("id", "")).encode())
            return
        if name == "empty":
            self.send(200, b"")
            return
        if name == "error500":
            body = behaviour.get("body", "{}")
            if body == "bid":
                body = json.dumps(self.bid_response(request, imp, normalise_behaviour("bid")))
            elif not isinstance(body, str):  # the ad-unit convention reads "{}" as JSON
                body = json.dumps(body)
            self.send(int(behaviour.get("status", 500)), body.encode("utf-8"))
            return
        if name in ("truncated", "reset"):
            self.send_cut(json.dumps(self.bid_response(request, imp, behaviour)).encode("utf-8"),
                          name == "reset", int(behaviour.get("missing", 1024)))
            return
        if name == "huge":
            self.send_huge(int(behaviour["bytes"]), bool(behaviour.get("chunked")))
            return
        if name == "wrongtypes":
            self.send_json(200, {"id": 42, "seatbid": [{"bid": [
                {"impid": 1, "price": "1.5", "adm": 7}]}]})
            return
        self.send_json(200, self.bid_response(request, imp, behaviour))

    def bid_response(self, request, imp, behaviour):
        name = behaviour["behaviour"]
        origin = self.server.origin
        rewarded = "rewarded" in imp
        bidid = str(behaviour.get("bidid", "bid-" + uuid.uuid4().hex))
        page = behaviour.get("page", "rewarded.html" if rewarded else "interstitial.html")
        bid = {
            "id": "bid-1",
            "impid": str(imp.get("id", "1")),
            "price": float(behaviour.get("price", 1.5)),
            "adm": behaviour.get("adm", "%s/ads/%s" % (origin, page)),
            "burl": behaviour.get("burl", "%s/v1/billing?bidid=%s&win=1" % (origin, bidid)),
        }
        response = {"id": request.get("id", ""), "bidid": bidid, "cur": "USD"}
        if name == "noadm":
            del bid["adm"]
        if name in ("noburl", "noburl-nobidid"):
            del bid["burl"]
        if name == "noburl-nobidid":
            del response["bidid"]
        if name == "nobid":
            response["seatbid"] = []
        elif name == "emptyseat":
            response["seatbid"] = [{"seat": "local", "bid": []}]
        elif name == "firstseatempty":
            response["seatbid"] = [{"seat": "empty", "bid": []}, {"seat": "local", "bid": [bid]}]
        elif name != "noseat":
            response["seatbid"] = [{"seat": "local", "bid": [bid]}]
        return response

    def send_cut(self, body, reset, missing):
        """Headers promising more than is sent, then the end of the connection: after half the
        body with a TCP reset (`reset`), or after the whole body with an orderly close and a
        Content-Length `missing` bytes too long."""
        self.close_connection = True
        self.send_response(200)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body) + (0 if reset else missing)))
        self.end_headers()
        self.wfile.write(body[:len(body) // 2] if reset else body)
        self.wfile.flush()
        if reset:
            # A zero linger time makes close() send RST instead of FIN.
            self.connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
            self.connection.close()
        else:
            self.connection.shutdown(socket.SHUT_RDWR)

    def send_huge(self, size, chunked):
        self.send_response(200)
        self.send_header("Content-Type", "application/json")
        if chunked:
            self.send_header("Transfer-Encoding", "chunked")
        else:
            self.send_header("Content-Length", str(size))
        self.end_headers()
        block = b"a" * 65536
        left = size
        while left > 0:
            piece = block[:min(left, len(block))]
            if chunked:
                self.wfile.write(b"%x\r\n" % len(piece) + piece + b"\r\n")
            else:
                self.wfile.write(piece)
            left -= len(piece)
        if chunked:
            self.wfile.write(b"0\r\n\r\n")


def parse_args(argv):
    here = os.path.dirname(os.path.abspath(__file__))
    parser = argparse.ArgumentParser(description="Local HTTPS ad exchange on 127.0.0.1.")
    parser.add_argument("--port", type=int, default=DEFAULT_PORT,
                        help="port on 127.0.0.1 (0: any free port; default %d)" % DEFAULT_PORT)
    parser.add_argument("--state-dir", help="where the CA, the keys and the logs go "
                        "(default: a new temporary directory)")
    parser.add_argument("--ready-file", help="written with the port once the server listens")
    parser.add_argument("--lifetime", type=float, default=DEFAULT_LIFETIME,
                        help="seconds after which the server exits by itself (default 900)")
    parser.add_argument("--idle-timeout", type=float, default=0.0,
                        help="exit after this many seconds without a request (0: never)")
    parser.add_argument("--behaviours", help="JSON file: {adUnit: behaviour or {behaviour, ...}}")
    parser.add_argument("--pages-dir", default=os.path.join(here, "pages"),
                        help="directory of the static pages (default: pages/ next to this file)")
    parser.add_argument("--parent-pid", type=int, default=0,
                        help="exit as soon as this process is no longer the parent")
    args = parser.parse_args(argv)
    if args.lifetime <= 0:
        parser.error("--lifetime must be positive")
    if not 0 <= args.port <= 65535:
        parser.error("--port must be between 0 and 65535")
    return args


def load_behaviours(path):
    if not path:
        return {}
    with open(path, encoding="utf-8") as source:
        raw = json.load(source)
    if not isinstance(raw, dict):
        raise ValueError("the behaviours file holds a JSON object")
    return {unit: normalise_behaviour(setting) for unit, setting in raw.items()}


def main(argv):
    args = parse_args(argv)
    state_dir = args.state_dir or tempfile.mkdtemp(prefix="vemba-exchange-")
    os.makedirs(state_dir, exist_ok=True)
    try:
        behaviours = load_behaviours(args.behaviours)
        ca_path, cert_path, key_path = make_certificates(state_dir)
    except (OSError, ValueError, RuntimeError) as error:
        print("exchange: %s" % error, file=sys.stderr)
        return 2

    context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
    context.minimum_version = ssl.TLSVersion.TLSv1_2
    context.load_cert_chain(cert_path, key_path)
    context.set_alpn_protocols(["http/1.1"])

    state = ExchangeState(state_dir, behaviours)
    try:
        server = ExchangeServer(args.port, context, state, args.pages_dir)
    except OSError as error:
        print("exchange: cannot listen on %s:%d: %s" % (HOST, args.port, error), file=sys.stderr)
        return 2

    stop = threading.Event()
    signal.signal(signal.SIGTERM, lambda *_: stop.set())
    signal.signal(signal.SIGINT, lambda *_: stop.set())

    serving = threading.Thread(target=server.serve_forever, kwargs={"poll_interval": 0.1},
                               daemon=True)
    serving.start()
    if args.ready_file:
        write_atomically(args.ready_file, "%d\n" % server.port)
    print("exchange: listening on %s (CA %s, log %s)" % (server.origin, ca_path, state.log_path),
          file=sys.stderr, flush=True)

    started = time.monotonic()
    reason = "signal"
    while not stop.wait(0.1):
        now = time.monotonic()
        with state.lock:
            idle_for = now - state.last_activity
        if now - started >= args.lifetime:
            reason = "lifetime over"
            break
        if args.idle_timeout > 0 and idle_for >= args.idle_timeout:
            reason = "idle"
            break
        if args.parent_pid and os.getppid() != args.parent_pid:
            reason = "parent gone"
            break
    server.stopping.set()
    server.shutdown()
    server.server_close()
    print("exchange: stopped (%s)" % reason, file=sys.stderr, flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
