"""brellian-printer-app with a device that cannot be opened (a network printer that refuses the connection, a
file: device in a missing directory): the printer's state message names the cause while the job waits, and the job
prints and the message clears when the device can be opened."""
# Copyright 2026 The rastertobrellian authors.
import os
import shutil
import socket
import subprocess
import threading
import time
import unittest

import app_harness as h

BUILD = os.environ.get("BRELLIAN_BUILD_DIR", os.path.join(os.path.dirname(__file__), "..", "..", "build-test"))


def jpeg_picture(path):
    """A small JPEG picture (cjpeg from a PPM)."""
    ppm = path + ".ppm"
    with open(ppm, "wb") as f:
        f.write(b"P6 64 40 255\n" + bytes((x * 4) % 256 for x in range(64 * 40 * 3)))
    with open(path, "wb") as f:
        subprocess.run(["cjpeg", ppm], stdout=f, check=True)


def read_text(path):
    """A text file's contents."""
    with open(path, errors="replace") as f:
        return f.read()


def printer_state(server, printer):
    """printer-state, its message (ipptool's escapes of quotes undone) and reasons from Get-Printer-Attributes."""
    state = h.ipp_simple(server, printer, "Get-Printer-Attributes",
                         ["ATTR keyword requested-attributes "
                          "printer-state,printer-state-message,printer-state-reasons"])
    if "printer-state-message" in state:
        state["printer-state-message"] = state["printer-state-message"].replace('\\"', '"')
    return state


def poll(what, check, seconds):
    """Call what() until check(result) holds or the time is up; the last result."""
    deadline = time.time() + seconds
    while True:
        result = what()
        if check(result) or time.time() > deadline:
            return result
        time.sleep(0.2)


class Sink(threading.Thread):
    """A printer's raw port: accepts connections and keeps every byte received."""

    def __init__(self, port):
        super().__init__(daemon=True)
        self.listener = socket.socket()
        self.listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self.listener.bind(("127.0.0.1", port))
        self.listener.listen(4)
        self.data = b""
        self.closed = threading.Event()  # a connection has ended

    def run(self):
        while True:
            try:
                conn, _ = self.listener.accept()
            except OSError:
                return
            with conn:
                while True:
                    chunk = conn.recv(65536)
                    if not chunk:
                        break
                    self.data += chunk
            self.closed.set()


class UnreachableDeviceTest(unittest.TestCase):

    def setUp(self):
        self.server = h.AppServer(BUILD)
        self.server.start()
        self.port = h.free_port()  # nothing listens there: connections are refused
        self.server.add_printer("net", "brellian_1030", "socket://127.0.0.1:%d" % self.port)
        self.sink = None

    def tearDown(self):
        if self.sink:
            self.sink.listener.close()
        self.server.stop()

    def print_picture(self, printer):
        """Print a JPEG picture (queued at once, unlike streamed raster); the job's id."""
        picture = os.path.join(self.server.tmp, "card.jpg")
        jpeg_picture(picture)
        test = os.path.join(self.server.tmp, "print.test")
        with open(test, "w") as f:
            f.write("{\nOPERATION Print-Job\nGROUP operation-attributes-tag\nATTR charset attributes-charset utf-8\n"
                    "ATTR language attributes-natural-language en\nATTR uri printer-uri $uri\n"
                    "ATTR name requesting-user-name tester\nATTR mimeMediaType document-format image/jpeg\n"
                    "FILE $filename\nSTATUS successful-ok\nDISPLAY job-id\n}\n")
        r = subprocess.run(["ipptool", "-tv", "-f", picture, self.server.uri(printer), test], capture_output=True,
                           text=True, timeout=60)
        self.assertEqual(r.returncode, 0, r.stdout[-2000:])
        return r.stdout.split("job-id (integer) = ")[1].split()[0]

    def test_a_file_device_in_a_missing_directory_is_named_until_it_exists(self):
        missing = os.path.join(self.server.tmp, "missing")
        os.makedirs(missing)  # PAPPL adds a file: device only when it can write there
        open(os.path.join(missing, "card.brj"), "wb").close()
        self.server.add_printer("local", "brellian_1030", "file://%s/card.brj" % missing)
        shutil.rmtree(missing)
        job_id = self.print_picture("local")
        expected = "Unable to open \"%s/card.brj\": No such file or directory." % missing
        state = poll(lambda: printer_state(self.server, "local"),
                     lambda s: expected in s.get("printer-state-message", ""), 20)
        self.assertIn(expected, state.get("printer-state-message", ""), state)
        os.makedirs(missing)
        job = poll(lambda: h.ipp_simple(self.server, "local", "Get-Job-Attributes",
                                        ["ATTR integer job-id %s" % job_id]),
                   lambda j: j.get("job-state") in ("completed", "aborted", "canceled"), 30)
        self.assertEqual(job.get("job-state"), "completed", job)
        self.assertTrue(os.path.getsize(os.path.join(missing, "card.brj")) > 0)
        self.assertNotIn("Unable to open", printer_state(self.server, "local").get("printer-state-message", ""))

    def test_the_state_message_names_the_refusal_until_the_printer_answers(self):
        job_id = self.print_picture("net")

        expected = "Cannot connect to 127.0.0.1:%d: Connection refused." % self.port
        state = poll(lambda: printer_state(self.server, "net"),
                     lambda s: expected in s.get("printer-state-message", ""), 20)
        self.assertIn(expected, state.get("printer-state-message", ""), state)
        self.assertEqual(state.get("printer-state"), "stopped")
        self.assertIn("offline-report", state.get("printer-state-reasons", ""), state)
        # Still said after PAPPL's next attempt (it retries every 5 seconds and logs it).
        retried = poll(lambda: read_text(self.server.log), lambda log: "Still unable to open device." in log, 15)
        self.assertIn("Still unable to open device.", retried)
        state = printer_state(self.server, "net")
        self.assertIn(expected, state.get("printer-state-message", ""), state)
        job = h.ipp_simple(self.server, "net", "Get-Job-Attributes", ["ATTR integer job-id %s" % job_id])
        self.assertIn(job.get("job-state"), ("pending", "processing"), job)
        status, page = h.http_request(self.server, "GET", "/net/")
        self.assertEqual(status, 200)
        self.assertIn(expected, page, "the printer's web page shows it too")

        self.sink = Sink(self.port)
        self.sink.start()
        job = poll(lambda: h.ipp_simple(self.server, "net", "Get-Job-Attributes",
                                        ["ATTR integer job-id %s" % job_id]),
                   lambda j: j.get("job-state") in ("completed", "aborted", "canceled"), 30)
        self.assertEqual(job.get("job-state"), "completed", job)
        self.assertTrue(self.sink.closed.wait(10), "the device was closed")
        self.assertEqual(h.record_types(self.sink.data)[0], h.ICMD_STARTJOB, "the printer got the job's stream")
        state = printer_state(self.server, "net")
        self.assertNotIn("Cannot connect", state.get("printer-state-message", ""), state)
        self.assertNotIn("offline-report", state.get("printer-state-reasons", ""), state)
        self.assertNotIn("Cannot connect", h.http_request(self.server, "GET", "/net/")[1])


if __name__ == "__main__":
    unittest.main(verbosity=2)
