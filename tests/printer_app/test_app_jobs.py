"""End-to-end tests of how brellian-printer-app takes and prints jobs: copies, documents cut short, a failing
filter, the descriptors the filter gets, and file: devices against planted links and long names."""
# Copyright 2026 The rastertobrellian authors.
import os
import re
import socket
import struct
import subprocess
import time
import unittest
import uuid

import app_harness as h
import test_printer_app as base
from test_printer_app import BUILD, rasterwrite


def ipp_attr(tag, name, value):
    """One IPP attribute: value tag, name, value."""
    name, value = name.encode(), value.encode()
    return struct.pack(">BH", tag, len(name)) + name + struct.pack(">H", len(value)) + value


def print_job_request(server, printer, job_name, fmt):
    """The IPP part of a Print-Job request, without its document."""
    return (struct.pack(">BBHI", 2, 0, 0x0002, 1) + b"\x01"
            + ipp_attr(0x47, "attributes-charset", "utf-8")
            + ipp_attr(0x48, "attributes-natural-language", "en")
            + ipp_attr(0x45, "printer-uri", server.uri(printer))
            + ipp_attr(0x42, "requesting-user-name", "tester")
            + ipp_attr(0x42, "job-name", job_name)
            + ipp_attr(0x49, "document-format", fmt) + b"\x03")


def send_partial_job(server, printer, job_name, fmt, document, sent):
    """A Print-Job whose HTTP request announces the whole document but carries only its first `sent` bytes;
    the open socket (the client may close it or keep it silent)."""
    body = print_job_request(server, printer, job_name, fmt) + document
    head = ("POST /ipp/print/%s HTTP/1.1\r\nHost: localhost:%d\r\nContent-Type: application/ipp\r\n"
            "Content-Length: %d\r\n\r\n" % (printer, server.port, len(body))).encode()
    s = socket.create_connection(("127.0.0.1", server.port), timeout=30)
    s.sendall(head + body[:len(body) - len(document) + sent])
    return s


def get_jobs(server, printer):
    """Every job of a printer (IPP Get-Jobs, which-jobs=all): a list of {attribute: text}."""
    test = os.path.join(server.tmp, "jobs-%s.test" % uuid.uuid4().hex)
    with open(test, "w") as f:
        f.write("{\nOPERATION Get-Jobs\nGROUP operation-attributes-tag\nATTR charset attributes-charset utf-8\n"
                "ATTR language attributes-natural-language en\nATTR uri printer-uri $uri\n"
                "ATTR name requesting-user-name tester\nATTR keyword which-jobs all\n"
                "ATTR keyword requested-attributes job-id,job-name,job-state,job-state-message,job-state-reasons\n"
                "STATUS successful-ok\n}\n")
    r = subprocess.run(["ipptool", "-tv", server.uri(printer), test], capture_output=True, text=True, timeout=60)
    jobs = []
    for line in r.stdout.split("RECEIVED:", 1)[-1].splitlines():
        m = re.match(r"\s+([a-z-]+) \(([^)]*)\) = (.*)$", line)
        if not m or not m.group(1).startswith("job-"):
            continue
        if not jobs or m.group(1) in jobs[-1]:  # a job's attributes come as one group
            jobs.append({})
        jobs[-1][m.group(1)] = m.group(3)
    return jobs


def wait_job_end(server, printer, job_name, timeout):
    """The attributes of the job named job_name once it has ended, or None after timeout seconds."""
    deadline = time.time() + timeout
    while time.time() < deadline:
        for job in get_jobs(server, printer):
            if job.get("job-name") == job_name and job.get("job-state") in ("canceled", "aborted", "completed"):
                return job
        time.sleep(0.2)
    return None


class AppJobsTest(unittest.TestCase):
    """One server, one printer per model; the filter runs through a stand-in that records its descriptors."""

    assert_same_as_filter = base.PrinterAppTest.assert_same_as_filter
    device_output = base.PrinterAppTest.device_output
    kept_rasters = base.PrinterAppTest.kept_rasters
    print_job = base.PrinterAppTest.print_job

    @classmethod
    def setUpClass(cls):
        cls.real_filter = os.path.join(BUILD, "rastertobrellian")
        cls.server = h.AppServer(BUILD)
        t = cls.server.tmp
        cls.fd_dir = os.path.join(t, "fds")
        os.makedirs(cls.fd_dir)
        os.chmod(cls.fd_dir, 0o777)  # the filter may run as the spooler's user
        standin = os.path.join(t, "filter-standin.py")
        with open(standin, "w") as f:
            f.write("#!%s\nimport os, sys\nfds = {}\nfor n in os.listdir('/proc/self/fd'):\n"
                    "    try:\n        fds[n] = os.readlink('/proc/self/fd/' + n)\n    except OSError:\n"
                    "        pass\nwith open(os.path.join(%r, sys.argv[1] + '.txt'), 'a') as f:\n"
                    "    f.write(repr(fds) + '\\n')\nos.execv(%r, [%r] + sys.argv[1:])\n"
                    % ("/usr/bin/python3", cls.fd_dir, cls.real_filter, cls.real_filter))
        os.chmod(standin, 0o755)
        cls.server.env["BRELLIAN_FILTER"] = standin
        cls.server.start()
        cls.out = {}
        for name, driver in (("card30", "brellian_1030"), ("card60", "brellian_1060")):
            cls.out[name] = cls.server.add_printer(name, driver)
        cls.pwg300 = rasterwrite(os.path.join(t, "p300.pwg"), "--pwg", "-r", "300", "pattern")
        cls.urf300 = rasterwrite(os.path.join(t, "p300.urf"), "--apple", "-r", "300", "pattern")
        cls.pwg600_two = rasterwrite(os.path.join(t, "two600.pwg"), "--pwg", "-r", "600", "-W", "2072", "-H",
                                     "1328", "pattern", "solid:200,30,30")
        noisy = os.path.join(t, "noisy.png")
        with open(noisy, "wb") as f:  # a page that PWG's run-length coding cannot shrink
            f.write(h.png_rgb(300, 200, lambda x, y: ((x * 37 + y * 11) % 251, (x * x + y) % 253, (y * 29) % 255)))
        cls.noisy_pwg = rasterwrite(os.path.join(t, "noisy.pwg"), "--pwg", "-r", "300", noisy)
        cls.huge = rasterwrite(os.path.join(t, "huge.pwg"), "--pwg", "-r", "300", "--claim-height", "1000000",
                               "pattern")

    @classmethod
    def tearDownClass(cls):
        cls.server.stop(keep=os.environ.get("BRELLIAN_KEEP_TEST_DIR") == "1")

    def test_pwg_copies_print_one_card_each(self):
        job = self.print_job("card30", self.pwg300, "image/pwg-raster", "copies30", copies=3)
        self.assertEqual(job["job-state"], "completed", job)
        self.assertEqual(job["job-state-message"], "3 cards printed.")
        cards, _ = self.assert_same_as_filter("card30", job, "")
        self.assertEqual(cards, 3)

    def test_apple_raster_copies_of_a_two_card_document(self):
        job = self.print_job("card60", self.pwg600_two, "image/pwg-raster", "copies60", copies=2)
        self.assertEqual(job["job-state"], "completed", job)
        self.assertEqual(job["job-state-message"], "4 cards printed.")
        job = self.print_job("card30", self.urf300, "image/urf", "urfcopies30", copies=2)
        self.assertEqual(job["job-state-message"], "2 cards printed.")
        cards, _ = self.assert_same_as_filter("card30", job, "")
        self.assertEqual(cards, 2)

    def test_raw_job_stream_copies(self):
        job = self.print_job("card30", self.pwg300, "image/pwg-raster", "forrawcopies30")
        stream = self.device_output("card30", "forrawcopies30")
        raw = h.write_bytes(os.path.join(self.server.tmp, "copies.brj"), stream)
        job = self.print_job("card30", raw, "application/vnd.brellian-job", "rawcopies30", copies=3)
        self.assertEqual(job["job-state"], "completed", job)
        self.assertEqual(self.device_output("card30", "rawcopies30"), stream * 3)

    def test_filter_gets_no_descriptor_of_the_server(self):
        job = self.print_job("card30", self.pwg300, "image/pwg-raster", "fds30")
        self.assertEqual(job["job-state"], "completed", job)
        with open(os.path.join(self.fd_dir, job["job-id"] + ".txt")) as f:
            records = [eval(line) for line in f]
        self.assertEqual(len(records), 1)
        extra = {fd: target for fd, target in records[0].items()
                 if fd not in ("0", "1", "2") and not target.startswith("/proc/")}
        self.assertEqual(extra, {}, "descriptors of the server in the filter")
        self.assertTrue(all(records[0][fd].startswith("pipe:") for fd in ("0", "1", "2")), records[0])

    def test_upload_cut_short_aborts_and_sends_nothing(self):
        with open(self.noisy_pwg, "rb") as f:
            doc = f.read()
        self.assertGreater(len(doc), 100000)
        s = send_partial_job(self.server, "card30", "cut30", "image/pwg-raster", doc, len(doc) // 2)
        time.sleep(0.5)
        s.close()
        job = wait_job_end(self.server, "card30", "cut30", 60)
        self.assertIsNotNone(job, "the job did not end")
        self.assertEqual(job["job-state"], "aborted", job)
        self.assertIn("did not arrive whole", job["job-state-message"])
        path = os.path.join(self.out["card30"], "cut30.brj")
        self.assertTrue(not os.path.exists(path) or os.path.getsize(path) == 0, "a cut document reached the printer")

    def test_failed_filter_frees_the_printer_and_shows_its_error(self):
        with open(self.huge, "rb") as f:
            doc = f.read()
        s = send_partial_job(self.server, "card30", "huge30", "image/pwg-raster", doc, len(doc))
        try:
            # The client keeps its connection open and sends nothing more: the
            # job must end on the filter's error without waiting for it.
            job = wait_job_end(self.server, "card30", "huge30", 30)
            self.assertIsNotNone(job, "the printer is held by a job whose filter has failed")
            self.assertIn(job["job-state"], ("aborted", "canceled"))
            self.assertNotEqual(job["job-state-message"], "Cancelled.")
            self.assertIn("errors-detected", job["job-state-reasons"])
            after = self.print_job("card30", self.pwg300, "image/pwg-raster", "afterhuge30")
            self.assertEqual(after["job-state"], "completed", after)
        finally:
            s.close()

    def test_file_device_writes_through_no_planted_link(self):
        victim = os.path.join(self.server.tmp, "victim")
        hard_victim = os.path.join(self.server.tmp, "hard-victim")
        for path in (victim, hard_victim):
            with open(path, "w") as f:
                f.write("root's own\n")
            os.chmod(path, 0o600)
        os.symlink(victim, os.path.join(self.out["card30"], "planted30.brj"))
        os.link(hard_victim, os.path.join(self.out["card30"], "hardlink30.brj"))
        for name in ("planted30", "hardlink30"):
            job = self.print_job("card30", self.pwg300, "image/pwg-raster", name)
            self.assertEqual(job["job-state"], "completed", job)
            out = os.path.join(self.out["card30"], name + ".brj")
            self.assertFalse(os.path.islink(out))
            self.assertEqual(os.stat(out).st_nlink, 1)
            self.assertGreater(os.path.getsize(out), 1000)
        for path in (victim, hard_victim):
            with open(path) as f:
                self.assertEqual(f.read(), "root's own\n", path + " was written through a link")

    def test_file_device_long_job_name(self):
        name = "long-" + "x" * 250  # 255 bytes, the longest IPP name; with ".brj" over the file-name limit
        job = self.print_job("card30", self.pwg300, "image/pwg-raster", name)
        self.assertEqual(job["job-state"], "completed", job)
        self.assertTrue(os.path.getsize(os.path.join(self.out["card30"], name[:96] + ".brj")) > 1000)
        job = self.print_job("card30", self.pwg300, "image/pwg-raster", "../../odd name")
        self.assertEqual(job["job-state"], "completed", job)
        self.assertTrue(os.path.exists(os.path.join(self.out["card30"], "_._.._odd_name.brj")))
        after = self.print_job("card30", self.pwg300, "image/pwg-raster", "afterlong30")
        self.assertEqual(after["job-state"], "completed", after)

    def test_pdf_prints_the_card_a_ppd_queue_prints(self):
        pdf = os.path.join(os.path.dirname(__file__), "..", "..", "docs", "samples", "sample-card.pdf")
        job = self.print_job("card60", pdf, "application/pdf", "pdf60")
        self.assertEqual(job["job-state"], "completed", job)
        # The sample has two pages; a simplex card takes one (the filter warns of the other, as on a PPD queue).
        self.assertTrue(job["job-state-message"].startswith("1 card printed"), job["job-state-message"])
        # The PPD queue's chain, run by the spooler's own test tool, up to the raster the filter reads.
        raster = os.path.join(self.server.tmp, "pdf60.ras")
        with open(raster, "wb") as f:
            r = subprocess.run(["cupsfilter", "-p", os.path.join(BUILD, "ppd", "br1060.ppd"), "-m",
                                "application/vnd.cups-raster", "-e", pdf], stdout=f, stderr=subprocess.PIPE)
        self.assertEqual(r.returncode, 0, r.stderr.decode(errors="replace")[-2000:])
        out, err, status = h.run_filter(self.real_filter, BUILD, "br1060.ppd", raster, job["job-id"], "pdf60", "",
                                        "card60")
        self.assertEqual(status, 0, err)
        got, n_got = h.mask_card_ids(self.device_output("card60", "pdf60"))
        want, n_want = h.mask_card_ids(out)
        self.assertEqual(n_got, 2)  # start and end of one card
        self.assertEqual(len(got), len(want))
        self.assertTrue(got == want, "the application's card differs from the PPD queue's")

    def test_pdf_copies_sent_as_octet_stream(self):
        pdf = os.path.join(os.path.dirname(__file__), "..", "..", "docs", "samples", "sample-card.pdf")
        job = self.print_job("card30", pdf, "application/octet-stream", "pdfauto30", copies=2)
        self.assertEqual(job["job-state"], "completed", job)
        self.assertTrue(job["job-state-message"].startswith("2 cards printed"), job["job-state-message"])

    def test_twenty_clients_at_once_all_print(self):
        import concurrent.futures
        jpeg = os.path.join(self.server.tmp, "photo.jpg")
        with open(jpeg, "wb") as f:
            ppm = b"P6 64 40 255\n" + bytes((x * 4) % 256 for x in range(64 * 40 * 3))
            f.write(subprocess.run(["cjpeg"], input=ppm, capture_output=True, check=True).stdout)
        docs = [(self.pwg300, "image/pwg-raster")] * 8 + [(self.urf300, "image/urf")] * 8 + [(jpeg, "image/jpeg")] * 4

        def submit(i):
            doc, fmt = docs[i]
            return h.ipp_print(self.server, "card30", doc, fmt, "crowd%02d" % i)
        with concurrent.futures.ThreadPoolExecutor(max_workers=20) as pool:
            jobs = list(pool.map(submit, range(20)))
        states = sorted(set((j["job-state"], j["job-state-message"]) for j in jobs))
        failed = [str(j.get("job-id")) for j in jobs if j["job-state"] != "completed"]
        self.assertEqual(states, [("completed", "1 card printed.")], h.job_log_lines(self.server, failed))
        for i in range(20):
            self.assertGreater(os.path.getsize(os.path.join(self.out["card30"], "crowd%02d.brj" % i)), 1000)


if __name__ == "__main__":
    unittest.main(verbosity=2)
