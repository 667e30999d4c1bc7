#!/usr/bin/env python3
"""Checks of the exchange's page routes over real HTTPS on 127.0.0.1 (no browser needed).

    python3 tools/exchange/test_site_routes.py
"""

import http.client
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

    def get(self, path, timeout=10):
        connection = http.client.HTTPSConnection("127.0.0.1", self.port, context=self.tls,
                                                 timeout=timeout)
        try:
            connection.request("GET", path)
            response = connection.getresponse()
            return response.status, response.read().decode("utf-8")
        finally:
            connection.close()

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

    def test_requests_that_never_answer(self):
        for path in ("/ads/never/interstitial.html", "/checkout/never", "/checkout/never/x.svg"):
            with self.subTest(path=path), self.assertRaises(socket.timeout):
                self.get(path, timeout=0.4)


if __name__ == "__main__":
    unittest.main()
