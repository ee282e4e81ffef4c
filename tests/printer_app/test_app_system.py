"""brellian-printer-app as a server left running: deleting printers, restarts of the shipped unit, no DNS-SD,
CUPS' stock ipptool tests, the client sub-commands."""
# Copyright 2026 The rastertobrellian authors.
import gzip
import os
import random
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

import app_harness as h

BUILD = h.BUILD
SOURCE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
RASTERWRITE = os.path.join(BUILD, "tools", "brellian-rasterwrite")
STOCK = "/usr/share/cups/ipptool"
MODELS = (("card30", "brellian_1030", 300), ("card35", "brellian_1035", 300), ("card60", "brellian_1060", 600))


def gpa(server, printer, names):
    """Get-Printer-Attributes for the names; ipptool's verbose output."""
    test = os.path.join(server.tmp, "gpa.test")
    with open(test, "w") as f:
        f.write("{\nOPERATION Get-Printer-Attributes\nGROUP operation-attributes-tag\n"
                "ATTR charset attributes-charset utf-8\nATTR language attributes-natural-language en\n"
                "ATTR uri printer-uri $uri\nATTR keyword requested-attributes %s\n}\n" % names)
    return subprocess.run(["ipptool", "-tv", server.uri(printer), test], capture_output=True, text=True).stdout


def stock_samples(directory, dpi):
    """Copies of the three stock tests with the sample documents they name beside them: real PWG raster for the
    printer's own resolution and colour space, empty files for the others (the tests skip those, but ipptool
    stops reading a test file at the first missing name), JPEG pictures and small PDF and PostScript pages."""
    for t in ("ipp-1.1.test", "ipp-2.0.test", "ipp-everywhere.test"):
        shutil.copy(os.path.join(STOCK, t), directory)
    names = set()
    for t in ("ipp-1.1.test", "ipp-everywhere.test"):
        with open(os.path.join(STOCK, t)) as f:
            names |= {line.split()[1] for line in f if line.strip().startswith("FILE ") and "$" not in line}
    mine = "pwg-raster-samples-%ddpi/srgb-8/" % dpi
    for name in names:
        path = os.path.join(directory, name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        if name.startswith(mine):
            pages = ["pattern", "solid:200,30,30"] if "/document-" in name else ["pattern"]
            subprocess.run([RASTERWRITE, "--pwg", "-r", str(dpi), "-o", path] + pages, check=True)
        elif name.endswith(".jpg"):
            ppm = path + ".ppm"
            with open(ppm, "wb") as f:
                f.write(b"P6 64 40 255\n" + bytes((x * 4) % 256 for x in range(64 * 40 * 3)))
            with open(path, "wb") as f:
                subprocess.run(["cjpeg", ppm], stdout=f, check=True)
        elif name.endswith(".pdf"):
            shutil.copy(os.path.join(SOURCE, "docs", "samples", "sample-card.pdf"), path)
        elif name.endswith(".ps"):
            shutil.copy(os.path.join(SOURCE, "docs", "samples", "sample-card.ps"), path)
        else:
            open(path, "wb").close()
    doc = os.path.join(directory, mine + "onepage-letter-srgb-8-%ddpi.pwg" % dpi)
    with open(doc, "rb") as f, gzip.open(doc + ".gz", "wb") as g:
        g.write(f.read())
    return doc


class AppSystemTest(unittest.TestCase):
    """One server with one printer per model."""

    @classmethod
    def setUpClass(cls):
        cls.server, cls.out = h.start_server([(name, driver) for name, driver, _ in MODELS])

    @classmethod
    def tearDownClass(cls):
        cls.server.stop()

    def test_deleting_a_printer_in_the_web_page_leaves_the_server_answering(self):
        self.server.add_printer("gone", "brellian_1060")
        status, body = h.http_request(self.server, "GET", "/gone/delete")
        self.assertEqual(status, 200)
        forms, _ = h.parse_page(body)
        status, _ = h.post_form(self.server, "/gone/delete", forms[-1], {})
        self.assertLess(status, 400)
        self.assertNotIn("gone", self.server.printers(), "the server answers and the printer is gone")
        status, _ = h.http_request(self.server, "GET", "/gone/presets")
        self.assertEqual(status, 404, "its own pages went with it")
        self.server.restart()
        self.assertNotIn("gone", self.server.printers(), "the deleted printer stays deleted after a restart")
        self.assertTrue({"card30", "card35", "card60"} <= set(self.server.printers()))

    def test_a_shutdown_request_ends_an_idle_server_at_once(self):
        # PAPPL's main loop sleeps up to 30 s between rounds; the request must not wait for the next one.
        self.server.system_op(["OPERATION Shutdown-All-Printers", "GROUP operation-attributes-tag",
                               "ATTR charset attributes-charset utf-8", "ATTR language attributes-natural-language en",
                               "ATTR uri system-uri $uri", "ATTR name requesting-user-name tester",
                               "STATUS successful-ok"])
        try:
            status = self.server.proc.wait(timeout=10)
        except subprocess.TimeoutExpired:
            status = None
        self.server.restart()  # the other tests go on with the same printers
        self.assertEqual(status, 0, "the server did not end within 10 s of the shutdown request")
        self.assertTrue({"card30", "card35", "card60"} <= set(self.server.printers()))

    def test_add_names_a_file_device_the_server_cannot_write(self):
        missing = os.path.join(self.server.tmp, "no-such-dir")
        r = self.server.cli("add", "-d", "nowhere", "-m", "brellian_1060", "-v", "file://%s?ext=brj" % missing)
        self.assertEqual(r.returncode, 1, r.stderr)
        self.assertIn("%s: No such file or directory" % missing, r.stderr)
        self.assertIn("install -d -m 0750 %s" % missing, r.stderr)
        self.assertNotIn("nowhere", self.server.printers())

    def test_presets_page_without_a_serial_links_to_the_device_settings(self):
        status, body = h.http_request(self.server, "GET", "/card60/presets")
        self.assertEqual(status, 200)
        self.assertIn('serial number on the <a href="/card60/device">Device settings</a> page', body)

    def test_ipp_delete_printer_by_the_id_the_printer_reports(self):
        self.server.add_printer("gone2", "brellian_1030")
        out = gpa(self.server, "gone2", "brellian-printer-id")
        printer_id = int(out.split("brellian-printer-id (integer) = ")[1].split()[0])
        self.assertGreater(printer_id, 0)
        self.server.system_op(["OPERATION Delete-Printer", "GROUP operation-attributes-tag",
                               "ATTR charset attributes-charset utf-8", "ATTR language attributes-natural-language en",
                               "ATTR uri system-uri $uri", "ATTR name requesting-user-name tester",
                               "ATTR integer printer-id %d" % printer_id, "STATUS successful-ok"])
        self.assertNotIn("gone2", self.server.printers())

    def test_cli_delete_submit_and_options_work_as_their_help_says(self):
        uri = "ipp://localhost:%d" % self.server.port
        self.server.add_printer("gone3", "brellian_1030")
        r = self.server.cli("delete", "-u", uri, "-d", "gone3")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertNotIn("gone3", self.server.printers())
        r = self.server.cli("options", "-u", uri, "-d", "card60")
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertIn("-o brellian-front-ribbon=color (default)\n", r.stdout)
        self.assertIn("-o brellian-front-ribbon=monochrome\n", r.stdout)
        self.assertIn("-o brellian-front-rotate=true|false (default: false)\n", r.stdout)
        self.assertIn("-o sides=two-sided-long-edge\n", r.stdout)
        doc = os.path.join(self.server.tmp, "cli.pwg")
        subprocess.run([RASTERWRITE, "--pwg", "-r", "600", "-W", "2072", "-H", "1328", "-o", doc, "pattern"],
                       check=True)
        r = self.server.cli("submit", "-u", uri, "-d", "card60", "-n", "2", "-o", "brellian-front-ribbon=monochrome",
                            doc)
        self.assertEqual(r.returncode, 0, r.stderr)
        job_id = r.stdout.strip().rsplit("-", 1)[1]
        job = h.ipp_simple(self.server, "card60", "Get-Job-Attributes",
                           ["ATTR integer job-id %s" % job_id, "ATTR keyword requested-attributes all"])
        self.assertEqual(job.get("copies"), "2", "submit -n 2 asks for two copies")
        self.assertEqual(job.get("brellian-front-ribbon"), "monochrome")

    def test_printer_strings_languages_do_not_grow(self):
        for _ in range(5):
            out = gpa(self.server, "card35", "all")
        self.assertEqual(out.count("printer-strings-languages-supported (naturalLanguage) = en"), 1, out[-2000:])
        self.assertNotIn("Duplicate", out)
        self.assertIn("printer-strings-uri (uri) = http://", out)

    def test_cups_stock_ipptool_tests_pass_on_every_model(self):
        time.sleep(1.1)  # ipp-1.1.test wants printer-up-time > 0
        for name, _, dpi in MODELS:
            d = tempfile.mkdtemp(prefix="stock-", dir=self.server.tmp)
            doc = stock_samples(d, dpi)
            for t in ("ipp-1.1.test", "ipp-2.0.test", "ipp-everywhere.test"):
                r = subprocess.run(["ipptool", "-t", "-f", doc, "-d", "filetype=image/pwg-raster",
                                    self.server.uri(name), os.path.join(d, t)],
                                   capture_output=True, text=True, timeout=900)
                report = "%s on %s:\n%s%s" % (t, name, r.stdout[-4000:], r.stderr[-1000:])
                self.assertEqual(r.returncode, 0, report)
                self.assertNotIn("[FAIL]", r.stdout, report)
                self.assertNotIn("cannot be read", r.stderr, report)
                if t == "ipp-everywhere.test":
                    self.assertIn("Print color.jpg-4x6 @ %ddpi, srgb-8, gzip" % dpi, r.stdout, report)
                    self.assertNotIn("srgb-8, gzip                    [SKIP]", r.stdout, report)

    def test_without_dnssd_pages_and_commands_say_so_and_the_server_stays_up(self):
        probe = subprocess.run(["avahi-browse", "-t", "-a", "-p"], capture_output=True, text=True) \
            if shutil.which("avahi-browse") else None
        if probe is not None and probe.returncode == 0:
            self.skipTest("avahi-daemon runs on this machine")
        status, body = h.http_request(self.server, "GET", "/addprinter")
        self.assertEqual(status, 200)
        self.assertIn("DNS-SD is not available", body)
        self.assertIsNone(self.server.proc.poll(), "the server is still running")
        self.assertIn("card60", self.server.printers())
        r = subprocess.run([self.server.app, "devices"], env=self.server.env, capture_output=True, text=True,
                           timeout=60)
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertIn("DNS-SD is not available", r.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=2)
