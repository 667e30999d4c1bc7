#!/usr/bin/env python3
"""Checks of the exchange's page routes over real HTTPS on 127.0.0.1 (no browser needed).

    python3 tools/exchange/test_site_routes.py
"""

import http.client
import json
import os
import shutil
import socket
import ssl
import subprocess
import sys
import tempfile
import time
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))


class Exchange:
    """The exchange as a child process on a free loopback port; stopped by its PID."""

    def __init__(self):
        self.state_dir = tempfile.mkdtemp(prefix="vemba-site-")
        ready = os.path.join(self.state_dir, "ready")
        self.process = subprocess.Popen(
            [sys.executable, os.path.join(HERE, "exchange.py"), "--port", "0", "--state-dir",
             self.state_dir, "--ready-file", ready, "--lifetime", "600", "--idle-timeout", "120",
             "--parent-pid", str(os.getpid())], stderr=subprocess.DEVNULL)
        deadline = time.monotonic() + 20
        while not os.path.exists(ready):
            if time.monotonic() > deadline or self.process.poll() is not None:
                raise RuntimeError("the exchange did not start")
            time.sleep(0.02)
        with open(ready, encoding="ascii") as source:
            self.port = int(source.read())
        self.origin = "https://127.0.0.1:%d" % self.port

    def stop(self):
        self.process.terminate()
        self.process.wait(10)
        shutil.rmtree(self.state_dir, ignore_errors=True)


class SiteRoutesTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.exchange = Exchange()
        cls.port = cls.exchange.port
        cls.tls = ssl.create_default_context(cafile=os.path.join(cls.exchange.state_dir, "ca.pem"))

    @classmethod
    def tearDownClass(cls):
        cls.exchange.stop()

    def get(self, path, headers=None, timeout=10):
        connection = http.client.HTTPSConnection("127.0.0.1", self.port, context=self.tls,
                                                 timeout=timeout)
        try:
            connection.request("GET", path, headers=headers or {})
            response = connection.getresponse()
            return response.status, response.read().decode("utf-8")
        finally:
            connection.close()

    def page_log(self, prefix):
        _, text = self.get("/_log?kind=page&pathPrefix=" + prefix)
        return [json.loads(line) for line in text.splitlines()]

    def test_status_of_each_checkout_path(self):
        cases = [("/checkout/demo", 200), ("/checkout/", 200), ("/checkout/status/404", 404),
                 ("/checkout/status/410", 410), ("/checkout/status/500", 500),
                 ("/checkout/status/503", 503), ("/checkout/status/399", 404),
                 ("/checkout/multipass/status/500", 500), ("/checkout/multipass/demo", 200),
                 ("/checkout/error/expired", 200), ("/checkout/error/teapot", 404),
                 ("/checkout/a/b/c", 404), ("/checkout/demo/Thank_You?order_id=3", 200),
                 ("/checkout/x/y/thank-you?order_id=3", 200), ("/checkout/terms", 200),
                 ("/landing/interstitial?from=interstitial", 200),
                 ("/ads/never/missing.html", 404), ("/ads/slow-first/k/../../exchange.py", 404)]
        for path, status in cases:
            with self.subTest(path=path):
                self.assertEqual(self.get(path)[0], status)

    def test_fail_once_fails_the_first_request_of_each_key_only(self):
        keys = ["fo-a", "fo-a", "fo-a", "fo-b"]
        self.assertEqual([self.get("/checkout/fail-once/" + k)[0] for k in keys], [500, 200, 200, 500])
        entries = self.page_log("/checkout/fail-once/fo-a")
        self.assertEqual([e["status"] for e in entries], [500, 200, 200])

    def test_page_requests_are_logged_with_their_headers(self):
        self.get("/checkout/logged", {"Sec-Purpose": "prefetch", "User-Agent": "X VembaCheckoutKit/3.4.0"})
        entry = self.page_log("/checkout/logged")[-1]
        self.assertIn(["Sec-Purpose", "prefetch"], entry["headers"])
        self.assertIn(["User-Agent", "X VembaCheckoutKit/3.4.0"], entry["headers"])
        self.assertEqual(entry["variant"], "checkout")

    def test_slow_first_waits_once_per_key(self):
        started = time.monotonic()
        self.assertEqual(self.get("/ads/slow-first/sf-a/interstitial.html?seconds=0.4")[0], 200)
        self.assertGreaterEqual(time.monotonic() - started, 0.4)
        # The second request of the key would wait 20 s if it were held: it is answered at once.
        started = time.monotonic()
        self.assertEqual(self.get("/ads/slow-first/sf-a/interstitial.html?seconds=20")[0], 200)
        self.assertLess(time.monotonic() - started, 10)

    def test_requests_that_never_answer(self):
        for path in ("/ads/never/interstitial.html", "/checkout/never", "/checkout/never/x.svg"):
            with self.subTest(path=path), self.assertRaises(socket.timeout):
                self.get(path, timeout=0.4)

    def test_redirect_loop_sends_every_request_one_hop_further(self):
        connection = http.client.HTTPSConnection("127.0.0.1", self.port, context=self.tls)
        for hop in (0, 1, 7):
            with self.subTest(hop=hop):
                connection.request("GET", "/ads/redirect-loop/interstitial.html?auto=close&hop=%d"
                                   % hop)
                response = connection.getresponse()
                response.read()
                self.assertEqual(response.status, 302)
                self.assertEqual(response.getheader("Location"),
                                 "/ads/redirect-loop/interstitial.html?auto=close&hop=%d" % (hop + 1))
        connection.close()
        self.assertEqual(self.get("/ads/redirect-loop/missing.html")[0], 404)
        entries = self.page_log("/ads/redirect-loop/")
        self.assertEqual([e["hop"] for e in entries], [0, 1, 7])


if __name__ == "__main__":
    unittest.main()
