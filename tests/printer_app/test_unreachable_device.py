"""brellian-printer-app with a network printer that does not answer: the printer's state message names the cause
while the job waits, and the job prints and the message clears when the printer answers."""
# Copyright 2026 The rastertobrellian authors.
import os
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


def printer_state(server, printer):
    """printer-state and printer-state-message from Get-Printer-Attributes."""
    return h.ipp_simple(server, printer, "Get-Printer-Attributes",
                        ["ATTR keyword requested-attributes printer-state,printer-state-message,"
                         "printer-state-reasons"])


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
        self.server.system_op(["OPERATION Create-Printer", "GROUP operation-attributes-tag",
                               "ATTR charset attributes-charset utf-8", "ATTR language attributes-natural-language en",
                               "ATTR uri system-uri $uri", "ATTR name requesting-user-name tester",
                               "ATTR keyword printer-service-type print", "ATTR keyword smi55357-driver brellian_1030",
                               "ATTR uri smi55357-device-uri socket://127.0.0.1:%d" % self.port,
                               "GROUP printer-attributes-tag", "ATTR name printer-name net", "STATUS successful-ok"])
        self.sink = None

    def tearDown(self):
        if self.sink:
            self.sink.listener.close()
        self.server.stop()

    def test_the_state_message_names_the_refusal_until_the_printer_answers(self):
        picture = os.path.join(self.server.tmp, "card.jpg")
        jpeg_picture(picture)
        test = os.path.join(self.server.tmp, "print.test")
        with open(test, "w") as f:
            f.write("{\nOPERATION Print-Job\nGROUP operation-attributes-tag\nATTR charset attributes-charset utf-8\n"
                    "ATTR language attributes-natural-language en\nATTR uri printer-uri $uri\n"
                    "ATTR name requesting-user-name tester\nATTR mimeMediaType document-format image/jpeg\n"
                    "FILE $filename\nSTATUS successful-ok\nDISPLAY job-id\n}\n")
        r = subprocess.run(["ipptool", "-tv", "-f", picture, self.server.uri("net"), test], capture_output=True,
                           text=True, timeout=60)
        self.assertEqual(r.returncode, 0, r.stdout[-2000:])
        job_id = r.stdout.split("job-id (integer) = ")[1].split()[0]

        expected = "Cannot connect to 127.0.0.1:%d: Connection refused." % self.port
        state = poll(lambda: printer_state(self.server, "net"),
                     lambda s: expected in s.get("printer-state-message", ""), 20)
        self.assertIn(expected, state.get("printer-state-message", ""), state)
        self.assertEqual(state.get("printer-state"), "stopped")
        self.assertIn("offline-report", state.get("printer-state-reasons", ""), state)
        # Still said after PAPPL's next attempt (it retries every 5 seconds and logs it).
        retried = poll(lambda: open(self.server.log, errors="replace").read(),
                       lambda log: "Still unable to open device." in log, 15)
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
