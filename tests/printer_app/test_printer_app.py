"""End-to-end tests of brellian-printer-app: IPP jobs on file: devices compared with rastertobrellian's own output."""
# Copyright 2026 The rastertobrellian authors.
import os
import random
import subprocess
import sys
import unittest

import app_harness as h

BUILD, TOOLS = h.BUILD, h.TOOLS
PPD = {"card30": "br1030.ppd", "card35": "br1035.ppd", "card60": "br1060.ppd"}


def rasterwrite(path, *args):
    subprocess.run([os.path.join(TOOLS, "brellian-rasterwrite"), "-o", path] + list(args), check=True)
    return path


class PrinterAppTest(unittest.TestCase):
    """One server with one printer per model; every job's device output checked against the filter."""

    @classmethod
    def setUpClass(cls):
        cls.real_filter = os.path.join(BUILD, "rastertobrellian")
        cls.server = h.AppServer(BUILD)
        t = cls.server.tmp
        # The filter is run through a wrapper that execs it: a title holding
        # "slow" starts it 3 s late (a cancel then lands mid-page), one
        # holding "warn" adds a warning line before the filter's own.
        wrapper = os.path.join(t, "filter-wrapper.sh")
        with open(wrapper, "w") as f:
            f.write("#!/bin/sh\ncase \"$3\" in *slow*) sleep 3;; esac\n"
                    "case \"$3\" in *warn*) echo 'WARNING: Test warning from the wrapper' >&2;; esac\n"
                    "echo \"DEBUG: filter user $(id -un)\" >&2\n"
                    "exec '%s' \"$@\"\n" % cls.real_filter)
        os.chmod(wrapper, 0o755)
        cls.server.env["BRELLIAN_FILTER"] = wrapper
        cls.server.start()
        cls.out = {}
        for name, driver in (("card30", "brellian_1030"), ("card35", "brellian_1035"), ("card60", "brellian_1060")):
            cls.out[name] = cls.server.add_printer(name, driver)
        cls.pwg300 = rasterwrite(os.path.join(t, "p300.pwg"), "--pwg", "-r", "300", "pattern")
        cls.pwg300_duplex = rasterwrite(os.path.join(t, "d300.pwg"), "--pwg", "--duplex", "-r", "300", "pattern",
                                        "solid:40,90,200")
        cls.urf300 = rasterwrite(os.path.join(t, "p300.urf"), "--apple", "-r", "300", "pattern")
        cls.pwg600 = rasterwrite(os.path.join(t, "p600.pwg"), "--pwg", "-r", "600", "-W", "2072", "-H", "1328",
                                 "pattern")
        cls.pwg600_two = rasterwrite(os.path.join(t, "two600.pwg"), "--pwg", "-r", "600", "-W", "2072", "-H", "1328",
                                     "pattern", "solid:200,30,30")
        cls.pwg600_six = rasterwrite(os.path.join(t, "six600.pwg"), "--pwg", "-r", "600", "-W", "2072", "-H", "1328",
                                     *(["pattern"] * 6))
        ppm = os.path.join(t, "photo.ppm")
        w, hgt = 320, 200
        with open(ppm, "wb") as f:
            f.write(b"P6 %d %d 255\n" % (w, hgt))
            f.write(bytes(v for y in range(hgt) for x in range(w) for v in (x * 255 // w, y * 255 // hgt, 90)))
        cls.jpeg = os.path.join(t, "photo.jpg")
        with open(cls.jpeg, "wb") as f:
            subprocess.run(["cjpeg", "-quality", "90", ppm], stdout=f, check=True)
        cls.serial = "T%06x" % random.randrange(1 << 24)

    @classmethod
    def tearDownClass(cls):
        cls.server.stop(keep=os.environ.get("BRELLIAN_KEEP_TEST_DIR") == "1")

    # -- helpers --------------------------------------------------------------

    def device_output(self, printer, job_name):
        path = os.path.join(self.out[printer], job_name + ".brj")
        self.assertTrue(os.path.exists(path), "no device output " + path)
        with open(path, "rb") as f:
            return f.read()

    def kept_rasters(self, printer, job_id):
        d = self.server.env["BRELLIAN_APP_RASTER_DIR"]
        names = sorted((n for n in os.listdir(d) if n.startswith("%s-job%s-card" % (printer, job_id))),
                       key=lambda n: int(n.rsplit("-card", 1)[1].split(".")[0]))
        return [os.path.join(d, n) for n in names]

    def assert_same_as_filter(self, printer, job, options, serial=""):
        """The device output is the filter's output for each card's raster and options, but the card ids."""
        job_id, title = job["job-id"], job["job-name"]
        rasters = self.kept_rasters(printer, job_id)
        self.assertGreater(len(rasters), 0, "no raster kept for job %s" % job_id)
        expected, stderr_all = b"", ""
        for r in rasters:
            out, err, status = h.run_filter(self.real_filter, BUILD, PPD[printer], r, job_id, title, options, printer,
                                            serial)
            self.assertEqual(status, 0, err)
            expected += out
            stderr_all += err
        got = self.device_output(printer, title)
        got_masked, n_got = h.mask_card_ids(got)
        want_masked, n_want = h.mask_card_ids(expected)
        self.assertEqual(n_got, n_want)
        self.assertGreater(n_got, 0, "no card in the stream")
        self.assertEqual(len(got), len(expected))
        self.assertTrue(got_masked == want_masked, "device output differs from the filter's beyond the card ids")
        return len(rasters), stderr_all

    def print_job(self, printer, document, fmt, name, attrs=(), **kw):
        job = h.ipp_print(self.server, printer, document, fmt, name, attrs, **kw)
        self.assertIn("job-id", job)
        return job

    # -- tests ----------------------------------------------------------------

    def test_pwg_grayscale_rotated_on_1030(self):
        job = self.print_job("card30", self.pwg300, "image/pwg-raster", "gray30",
                             [("keyword", "brellian-front-ribbon", "grayscale"),
                              ("boolean", "brellian-front-rotate", "true")])
        self.assertEqual(job["job-state"], "completed")
        self.assertEqual(job["job-state-message"], "1 card printed.")
        cards, _ = self.assert_same_as_filter("card30", job, "frontRibbon=Grayscale frontRotation=Yes")
        self.assertEqual(cards, 1)

    def test_pwg_duplex_on_1035(self):
        job = self.print_job("card35", self.pwg300_duplex, "image/pwg-raster", "duplex35",
                             [("keyword", "sides", "two-sided-long-edge"),
                              ("keyword", "brellian-back-ribbon", "monochrome"),
                              ("text", "brellian-back-options", "secure-erase=true")])
        self.assertEqual(job["job-state"], "completed")
        cards, _ = self.assert_same_as_filter("card35", job, "backRibbon=Monochrome backSecureErase=Yes")
        self.assertEqual(cards, 1)
        sides = h.record_types(self.device_output("card35", "duplex35"), h.ICMD_STARTSIDE)
        self.assertEqual(len(sides), 2, "a two-sided card has two start-side records")

    def test_pwg_custom_areas_and_card_options_on_1060(self):
        areas = "resin=2mm 2mm 30mm 10mm;40mm 40mm 20mm 8mm|no-resin=5mm 5mm 3mm 3mm"
        job = self.print_job("card60", self.pwg600, "image/pwg-raster", "areas60",
                             [("keyword", "brellian-front-ribbon", "color-k"),
                              ("keyword", "brellian-front-resin", "custom-areas"),
                              ("text", "brellian-front-custom-areas", areas),
                              ("keyword", "brellian-card-thickness", "thin"),
                              ("boolean", "brellian-eject-existing", "false"),
                              ("text", "brellian-plugin", "demo-plugin")])
        self.assertEqual(job["job-state"], "completed")
        self.assert_same_as_filter("card60", job,
                                   "frontRibbon=ColorK frontResin=CustomAreas "
                                   "frontResinInclude1='Custom.2mm 2mm 30mm 10mm' "
                                   "frontResinInclude2='Custom.40mm 40mm 20mm 8mm' "
                                   "frontResinExclude1='Custom.5mm 5mm 3mm 3mm' cardThickness=Thin "
                                   "cardEjectExisting=No printerPlugin=Custom.demo-plugin")

    def test_jpeg_with_copies_gives_one_card_each(self):
        job = self.print_job("card35", self.jpeg, "image/jpeg", "photo35", [], copies=2)
        self.assertEqual(job["job-state"], "completed")
        self.assertEqual(job["job-state-message"], "2 cards printed.")
        cards, _ = self.assert_same_as_filter("card35", job, "")
        self.assertEqual(cards, 2)

    def test_apple_raster_on_1035(self):
        job = self.print_job("card35", self.urf300, "image/urf", "urf35", [("keyword", "brellian-front-ribbon",
                                                                         "color-k")])
        self.assertEqual(job["job-state"], "completed")
        self.assert_same_as_filter("card35", job, "frontRibbon=ColorK")

    def test_jpeg_on_1060(self):
        job = self.print_job("card60", self.jpeg, "image/jpeg", "photo60", [("keyword", "brellian-front-ribbon",
                                                                           "grayscale")])
        self.assertEqual(job["job-state"], "completed")
        self.assert_same_as_filter("card60", job, "frontRibbon=Grayscale")

    def test_pages_beyond_one_card_start_the_next_card(self):
        job = self.print_job("card60", self.pwg600_two, "image/pwg-raster", "two60")
        self.assertEqual(job["job-state"], "completed")
        cards, _ = self.assert_same_as_filter("card60", job, "")
        self.assertEqual(cards, 2)

    def test_color_k_default_prints_a_one_page_card_black_in_resin(self):
        # Colour + resin black with nothing else asked: the resin comes from
        # the page's own pure black, so one page makes the whole card.
        page = rasterwrite(os.path.join(self.server.tmp, "black300.pwg"), "--pwg", "-r", "300", "solid:0,0,0")
        job = self.print_job("card30", page, "image/pwg-raster", "colork30",
                             [("keyword", "brellian-front-ribbon", "color-k")])
        self.assertEqual(job["job-state"], "completed")
        self.assertEqual(job["job-state-message"], "1 card printed.")
        self.assert_same_as_filter("card30", job, "frontRibbon=ColorK frontResin=Card")
        stream = self.device_output("card30", "colork30")
        types = [stream[pos + 10] for pos, rtype, length in h.records(stream) if rtype == 8]
        self.assertEqual(types, [0, 1], "a colour panel and its resin black panel")
        black = b"".join(stream[pos + 6:pos + 6 + length] for pos, rtype, length in h.records(stream)
                         if rtype == 10)[-1036 * 664:]
        self.assertEqual(black, b"\xff" * (1036 * 664), "every pure black dot takes resin")

    def test_value_not_offered_falls_back_to_the_default(self):
        # A YMCK ribbon has no UV panel: the printer does not offer UV from the page.
        job = self.print_job("card30", self.pwg300, "image/pwg-raster", "nouv30",
                             [("keyword", "brellian-front-uv", "page")])
        self.assertEqual(job["job-state"], "completed")
        self.assert_same_as_filter("card30", job, "frontUV=None")

    def test_cancelled_job_ends_the_stream_as_the_filter_does(self):
        job = self.print_job("card60", self.pwg600_six, "image/pwg-raster", "slow-cancel60", cancel_after=1.0)
        self.assertEqual(job["job-state"], "canceled")
        stream = self.device_output("card60", "slow-cancel60")
        kinds = h.record_types(stream)
        self.assertTrue(kinds and kinds[0] == h.ICMD_STARTJOB, "the stream starts with the job header")
        self.assertNotIn(2, kinds, "a cancelled stream has no job footer")
        dump = subprocess.run([os.path.join(TOOLS, "brellian-jobdump"), "-q", "-"], input=stream, capture_output=True)
        self.assertEqual(dump.returncode, 3, dump.stdout.decode() + dump.stderr.decode())

    def test_filter_warning_becomes_the_job_message(self):
        job = self.print_job("card30", self.pwg300, "image/pwg-raster", "warn30")
        self.assertEqual(job["job-state"], "completed")
        self.assertIn("Test warning from the wrapper", job["job-state-message"])
        self.assertIn("job-completed-with-warnings", job["job-state-reasons"])
        self.assert_same_as_filter("card30", job, "")

    def test_missing_preset(self):
        # The printer's serial selects its presets; none of this serial exist.
        status, text = h.set_device(self.server, "card35",
                                    {"serial": self.serial, "ribbon-type": "YMCK-UV", "flip-turn": "on"})
        self.assertIn("Device settings saved.", text)
        try:
            job = self.print_job("card35", self.pwg300, "image/pwg-raster", "nopreset35",
                                 [("keyword", "brellian-front-color-table", "table-2"),
                                  ("keyword", "brellian-front-uv", "preset-3")])
            self.assertEqual(job["job-state"], "completed")
            _, stderr = self.assert_same_as_filter("card35", job, "ribbonType=YMCK-UV frontLUTTable=LUT2 frontUV=Preset3",
                                                   self.serial)
            warnings = [l[len("WARNING:"):].strip() for l in stderr.splitlines() if l.startswith("WARNING:")]
            # The filter warns of each missing preset; the last warning is the job's message.
            self.assertTrue(any(w.startswith("frontUV=Preset3") for w in warnings), stderr)
            self.assertTrue(any(w.startswith("frontLUTTable=LUT2") for w in warnings), stderr)
            self.assertIn(warnings[-1][:60], job["job-state-message"])
            self.assertIn("job-completed-with-warnings", job["job-state-reasons"])
        finally:
            h.set_device(self.server, "card35", {"serial": "", "ribbon-type": "YMCK"})

    def test_raw_job_stream_is_checked_then_sent(self):
        job = self.print_job("card30", self.pwg300, "image/pwg-raster", "forraw30")
        stream = self.device_output("card30", "forraw30")
        raw = h.write_bytes(os.path.join(self.server.tmp, "good.brj"), stream)
        job = self.print_job("card30", raw, "application/vnd.brellian-job", "raw30")
        self.assertEqual(job["job-state"], "completed", job)
        self.assertEqual(self.device_output("card30", "raw30"), stream)
        cut = h.write_bytes(os.path.join(self.server.tmp, "cut.brj"), stream[:len(stream) // 2])
        job = self.print_job("card30", cut, "application/vnd.brellian-job", "rawcut30")
        self.assertEqual(job["job-state"], "aborted", job)
        self.assertIn("Not a usable job stream", job["job-state-message"])
        path = os.path.join(self.out["card30"], "rawcut30.brj")
        self.assertTrue(not os.path.exists(path) or os.path.getsize(path) == 0, "nothing of a bad stream is sent")

    @unittest.skipUnless(os.geteuid() == 0, "the application drops privileges only when run as root")
    def test_filter_runs_as_the_spoolers_user(self):
        self.print_job("card30", self.pwg300, "image/pwg-raster", "user30")
        with open(self.server.log) as f:
            log = f.read()
        self.assertIn("Filter: DEBUG: filter user lp", log)
        self.assertNotIn("Filter: DEBUG: filter user root", log)

    def test_printers_and_device_settings_survive_a_restart(self):
        status, text = h.set_device(self.server, "card30", {"laminator": "on"})
        self.assertIn("Device settings saved.", text)
        self.assertIn("brellian-laminate-default", h.ipp_simple(self.server, "card30", "Get-Printer-Attributes",
                                                        ["ATTR keyword requested-attributes brellian-laminate-default"]))
        self.server.restart()
        self.assertTrue({"card30", "card35", "card60"} <= set(self.server.printers()))
        status, body = h.http_request(self.server, "GET", "/card30/device")
        self.assertIn('name="laminator" checked', body)
        self.assertIn("brellian-laminate-default", h.ipp_simple(self.server, "card30", "Get-Printer-Attributes",
                                                        ["ATTR keyword requested-attributes brellian-laminate-default"]))
        status, text = h.post_form(self.server, "/card30/device", h.parse_page(body)[0][0], {"laminator": None})
        self.assertNotIn("brellian-laminate-default", h.ipp_simple(
            self.server, "card30", "Get-Printer-Attributes", ["ATTR keyword requested-attributes brellian-laminate-default"]))

    def set_default(self, printer, syntax, name, value):
        test = os.path.join(self.server.tmp, "set-default.test")
        with open(test, "w") as f:
            f.write("{\nOPERATION Set-Printer-Attributes\nGROUP operation-attributes-tag\n"
                    "ATTR charset attributes-charset utf-8\nATTR language attributes-natural-language en\n"
                    "ATTR uri printer-uri $uri\nATTR name requesting-user-name tester\n"
                    "GROUP printer-attributes-tag\nATTR %s %s-default %s\nSTATUS successful-ok\n}\n"
                    % (syntax, name, value))
        r = subprocess.run(["ipptool", "-t", self.server.uri(printer), test], capture_output=True, text=True)
        self.assertEqual(r.returncode, 0, r.stdout)

    def test_printer_default_applies_to_jobs_without_the_attribute(self):
        self.set_default("card30", "keyword", "brellian-front-ribbon", "monochrome")
        try:
            job = self.print_job("card30", self.pwg300, "image/pwg-raster", "default30")
            self.assertEqual(job["job-state"], "completed")
            self.assert_same_as_filter("card30", job, "frontRibbon=Monochrome")
            job = self.print_job("card30", self.pwg300, "image/pwg-raster", "override30",
                                 [("keyword", "brellian-front-ribbon", "color")])
            self.assert_same_as_filter("card30", job, "frontRibbon=Color")
        finally:
            self.set_default("card30", "keyword", "brellian-front-ribbon", "color")

    def test_socket_device_receives_the_same_stream(self):
        import socket
        import threading
        listener = socket.socket()
        listener.bind(("127.0.0.1", 0))
        listener.listen(1)
        listener.settimeout(60)
        received = []

        def receive():
            conn, _ = listener.accept()
            data = b""
            while True:
                chunk = conn.recv(65536)
                if not chunk:
                    break
                data += chunk
            conn.close()
            received.append(data)
        thread = threading.Thread(target=receive)
        thread.start()
        self.server.system_op([
            "OPERATION Create-Printer", "GROUP operation-attributes-tag", "ATTR charset attributes-charset utf-8",
            "ATTR language attributes-natural-language en", "ATTR uri system-uri $uri",
            "ATTR name requesting-user-name tester", "ATTR keyword printer-service-type print",
            "ATTR keyword smi55357-driver brellian_1030",
            "ATTR uri smi55357-device-uri socket://127.0.0.1:%d" % listener.getsockname()[1],
            "GROUP printer-attributes-tag", "ATTR name printer-name net30", "STATUS successful-ok"])
        job = self.print_job("net30", self.pwg300, "image/pwg-raster", "net30",
                             [("keyword", "brellian-front-ribbon", "grayscale")])
        thread.join(60)
        listener.close()
        self.assertEqual(job["job-state"], "completed")
        self.assertEqual(len(received), 1)
        raster = self.kept_rasters("net30", job["job-id"])[0]
        out, err, status = h.run_filter(self.real_filter, BUILD, "br1030.ppd", raster, job["job-id"], "net30",
                                        "frontRibbon=Grayscale", "net30")
        self.assertEqual(h.mask_card_ids(received[0]), h.mask_card_ids(out))

    def test_cups_ipptool_tests_pass(self):
        for printer, doc in (("card30", self.pwg300), ("card35", self.pwg300), ("card60", self.pwg600)):
            r = h.run_ipptool_test(self.server, printer, "get-printer-attributes.test")
            self.assertEqual(r.returncode, 0, r.stdout + r.stderr)
            r = h.run_ipptool_test(self.server, printer, "print-job-and-wait.test", doc, "image/pwg-raster")
            self.assertEqual(r.returncode, 0, r.stdout + r.stderr)

    def card_attributes(self, printer):
        test = os.path.join(os.path.dirname(os.path.abspath(__file__)), "card-attributes.test")
        r = subprocess.run(["ipptool", "-tv", self.server.uri(printer), test], capture_output=True, text=True)
        self.assertEqual(r.returncode, 0, r.stdout)
        return r.stdout.split("RECEIVED:", 1)[1]

    def test_printer_attributes(self):
        out = self.card_attributes("card30")
        self.assertIn("brellian-front-ribbon-supported (1setOf keyword) = color,color-k,grayscale,monochrome", out)
        self.assertIn("brellian-front-uv-supported (keyword) = none", out, "a YMCK ribbon offers no UV")
        self.assertIn("sides-supported (keyword) = one-sided", out)
        self.assertNotIn("brellian-back-ribbon", out, "a one-sided model offers no back-side options")
        self.assertNotIn("brellian-mag-track-1-format", out, "no magnetic encoder is installed")
        self.assertIn("om_cr80_54x85.6mm", out)
        self.assertIn("printer-resolution-supported (resolution) = 300dpi", out)
        out = self.card_attributes("card60")
        self.assertIn("brellian-back-ribbon-supported", out)
        self.assertIn("two-sided-long-edge", out)
        self.assertIn("printer-resolution-supported (resolution) = 600dpi", out)
        self.assertIn("image/jpeg", out)
        self.assertIn("image/pwg-raster", out)
        status, strings = h.http_request(self.server, "GET", "/en.strings")
        self.assertEqual(status, 200)
        self.assertIn('"brellian-front-ribbon.color-k" = "Colour + resin black";', strings)


if __name__ == "__main__":
    unittest.main(verbosity=2)
