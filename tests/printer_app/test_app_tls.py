"""brellian-printer-app with TLS on, as the shipped unit runs it: the printer URIs and their security and
authentication values agree for a client on this machine, and CUPS' stock ipptool tests pass."""
# Copyright 2026 The rastertobrellian authors.
import os
import subprocess
import tempfile
import time
import unittest

import app_harness as h
from test_app_system import gpa, stock_samples

BUILD = os.environ.get("BRELLIAN_BUILD_DIR", os.path.join(os.path.dirname(__file__), "..", "..", "build-test"))


def values(output, name):
    """The values of an attribute in ipptool's verbose output."""
    for line in output.splitlines():
        if line.strip().startswith(name + " ("):
            return line.split(" = ", 1)[1].split(",")
    return []


class AppTlsTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.server = h.AppServer(BUILD, tls=True)
        cls.server.start()
        cls.server.add_printer("card", "brellian_1030")

    @classmethod
    def tearDownClass(cls):
        cls.server.stop()

    def test_uri_attributes_agree_in_count_and_order(self):
        out = gpa(self.server, "card", "printer-uri-supported,uri-security-supported,uri-authentication-supported")
        uris = values(out, "printer-uri-supported")
        security = values(out, "uri-security-supported")
        self.assertEqual(len(uris), 1, out)
        self.assertEqual(len(security), len(uris), out)
        self.assertEqual(len(values(out, "uri-authentication-supported")), len(uris), out)
        for uri, sec in zip(uris, security):
            self.assertEqual(sec, "tls" if uri.startswith("ipps:") else "none", out)

    def test_cups_stock_ipptool_tests_pass_with_tls_on(self):
        time.sleep(1.1)  # ipp-1.1.test wants printer-up-time > 0
        d = tempfile.mkdtemp(prefix="stock-", dir=self.server.tmp)
        doc = stock_samples(d, 300)
        for t in ("ipp-1.1.test", "ipp-2.0.test", "ipp-everywhere.test"):
            r = subprocess.run(["ipptool", "-t", "-f", doc, "-d", "filetype=image/pwg-raster", self.server.uri("card"),
                                os.path.join(d, t)], capture_output=True, text=True, timeout=300)
            report = "%s:\n%s%s" % (t, r.stdout[-4000:], r.stderr[-1000:])
            self.assertEqual(r.returncode, 0, report)
            self.assertNotIn("[FAIL]", r.stdout, report)
            self.assertIn("[PASS]", r.stdout, report)


if __name__ == "__main__":
    unittest.main(verbosity=2)
