"""Who may change what in brellian-printer-app: every state-changing page and IPP operation refused from another
address (127.0.0.2 stands for another machine) and behind a reverse proxy, allowed from this machine and to a
signed-in administrator; the control socket owner-only; a custom-areas text the filter cannot use refused."""
# Copyright 2026 The rastertobrellian authors.
import base64
import os
import stat
import subprocess
import time
import unittest

import app_harness as h

BUILD = h.BUILD
OTHER = "127.0.0.2"

# IPP operation codes.
CREATE_JOB, CANCEL_JOB = 0x05, 0x08
PAUSE_PRINTER, RESUME_PRINTER, SET_PRINTER_ATTRIBUTES = 0x10, 0x11, 0x13
HOLD_NEW_JOBS, DISABLE_PRINTER, CANCEL_JOBS = 0x25, 0x22, 0x38
CREATE_PRINTER, DELETE_PRINTER, SET_SYSTEM_ATTRIBUTES, SHUTDOWN_ALL = 0x4c, 0x4e, 0x57, 0x58


def refused(result):
    """An HTTP refusal (400 for a Host that is not this server, 401, 403, 426) or an IPP status that is not a success."""
    status, ipp_status = result
    return status in (400, 401, 403, 426) or (status == 200 and ipp_status is not None and ipp_status >= 0x0400)


class AccessTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.server, _ = h.start_server([("acc", "brellian_1060"), ("victim", "brellian_1030")])

    @classmethod
    def tearDownClass(cls):
        cls.server.stop()

    def printer_op(self, printer, op, extra=(), source=None, user="tester", headers=None, groups=()):
        attrs = [("uri", "printer-uri", self.server.uri(printer)), ("name", "requesting-user-name", user)]
        return h.ipp_request(self.server, "/ipp/print/" + printer, op, [("operation", attrs + list(extra))] +
                             list(groups), source=source, headers=headers)

    def system_op(self, op, extra=(), source=None, groups=()):
        attrs = [("uri", "system-uri", "ipp://localhost:%d/ipp/system" % self.server.port),
                 ("name", "requesting-user-name", "tester")]
        return h.ipp_request(self.server, "/ipp/system", op, [("operation", attrs + list(extra))] + list(groups),
                             source=source)

    def page(self, path, **kw):
        status, body = h.http_request(self.server, "GET", path, **kw)
        self.assertEqual(status, 200, path)
        return h.parse_page(body)

    def state(self):
        """What the pages and operations below could change."""
        keys = ("printer-state", "printer-location", "printer-is-accepting-jobs", "brellian-front-ribbon-default")
        printer = h.ipp_simple(self.server, "acc", "Get-Printer-Attributes", display=keys)
        printer = {k: printer.get(k) for k in keys}
        return (self.server.printers(), printer, self.page("/acc/device")[0][0]["fields"],
                self.page("/acc/presets")[1].split("Card presets", 1)[-1])

    def test_1_pages_refused_from_another_address(self):
        before = self.state()
        token = self.page("/config")[0][0]["fields"]["session"]
        forms = []
        for path in ("/config", "/security", "/logs", "/acc/", "/acc/config", "/acc/printing", "/acc/media",
                     "/acc/delete", "/acc/presets", "/acc/device", "/acc/jobs"):
            forms += [(path, f) for f in self.page(path)[0]]
        changes = {"location": "moved", "new_password": "x1234567", "new_password2": "x1234567",
                   "brellian-front-ribbon": "monochrome", "serial": "REMOTE", "plugin": "remote"}
        forms.append(("/addprinter", {"action": "/addprinter", "enctype": "", "fields": {
            "session": token, "printer_name": "evil", "driver_name": "brellian_1060",
            "device_uri": "socket://192.0.2.1"}}))
        forms.append(("/acc/cancelall", {"action": "/acc/cancelall", "enctype": "", "fields": {"session": token}}))
        self.assertGreaterEqual(len(forms), 12)
        for path, form in forms:
            status, text = h.post_form(self.server, form["action"] or path, form,
                                       {k: v for k, v in changes.items() if k in form["fields"]}, source=OTHER)
            self.assertIn(status, (401, 403), (path, form["fields"].get("action"), text[:200]))
        for path in ("/config", "/acc/config", "/acc/printing", "/acc/delete", "/acc/presets", "/logs", "/logfile.txt",
                     "/acc/uv-preview?name=x"):
            self.assertIn(h.http_request(self.server, "GET", path, source=OTHER)[0], (401, 403), path)
        self.assertEqual(h.http_request(self.server, "GET", "/logs")[0], 200, "the log view, on this machine")
        self.assertEqual(before, self.state())

    def test_2_reverse_proxy_on_this_machine_is_not_local(self):
        before = self.state()
        form = self.page("/acc/config")[0][0]
        for headers in ({"Host": "cards.example.com"}, {"Origin": "https://cards.example.com"},
                        {"Referer": "https://cards.example.com/acc/config"}, {"Host": "192.0.2.7:8631"}):
            body = "&".join("%s=%s" % (k, v if k != "location" else "proxied") for k, v in form["fields"].items())
            hdrs = dict(headers, **{"Content-Type": "application/x-www-form-urlencoded"})
            status, _ = h.http_request(self.server, "POST", "/acc/config", body.encode(), hdrs)
            self.assertIn(status, (400, 401, 403), headers)
            ipp_headers = {k: v for k, v in headers.items() if k == "Host"}
            if ipp_headers:
                self.assertTrue(refused(self.printer_op("acc", PAUSE_PRINTER, headers=ipp_headers)), headers)
        self.assertEqual(before, self.state())

    def test_3_ipp_operations_refused_from_another_address(self):
        before = self.state()
        results = {
            "Create-Printer": self.system_op(CREATE_PRINTER, [
                ("keyword", "printer-service-type", "print"), ("keyword", "smi55357-driver", "brellian_1060"),
                ("uri", "smi55357-device-uri", "socket://192.0.2.1")],
                source=OTHER, groups=[("printer", [("name", "printer-name", "evil")])]),
            "Delete-Printer": self.system_op(DELETE_PRINTER, [("integer", "printer-id", 2)], source=OTHER),
            "Set-System-Attributes": self.system_op(SET_SYSTEM_ATTRIBUTES, source=OTHER,
                                                    groups=[("system", [("text", "system-location", "moved")])]),
            "Shutdown-All-Printers": self.system_op(SHUTDOWN_ALL, source=OTHER),
            "Set-Printer-Attributes": self.printer_op("acc", SET_PRINTER_ATTRIBUTES, source=OTHER, groups=[
                ("printer", [("text", "printer-location", "moved"),
                             ("keyword", "brellian-front-ribbon-default", "monochrome")])]),
            "Pause-Printer": self.printer_op("acc", PAUSE_PRINTER, source=OTHER),
            "Hold-New-Jobs": self.printer_op("acc", HOLD_NEW_JOBS, source=OTHER),
            "Disable-Printer": self.printer_op("acc", DISABLE_PRINTER, source=OTHER),
            "Cancel-Jobs": self.printer_op("acc", CANCEL_JOBS, source=OTHER),
        }
        for name, result in results.items():
            self.assertTrue(refused(result), (name, result))
        self.assertEqual(before, self.state())
        # The same from this machine is carried out.
        self.assertEqual(self.printer_op("acc", PAUSE_PRINTER), (200, 0))
        self.assertEqual(self.printer_op("acc", RESUME_PRINTER), (200, 0))

    def test_4_other_users_jobs_cannot_be_cancelled(self):
        status, ipp_status = self.printer_op("acc", CREATE_JOB, user="alice")
        self.assertEqual((status, ipp_status), (200, 0))
        jobs = h.ipp_simple(self.server, "acc", "Get-Jobs", ["ATTR keyword which-jobs not-completed",
                                                              "ATTR keyword requested-attributes job-id"])
        job_id = int(jobs["job-id"])
        self.assertTrue(refused(self.printer_op("acc", CANCEL_JOB, [("integer", "job-id", job_id)], source=OTHER,
                                                user="mallory")))
        state = h.ipp_simple(self.server, "acc", "Get-Job-Attributes", ["ATTR integer job-id %d" % job_id],
                             display=("job-state",))
        self.assertNotEqual(state.get("job-state"), "canceled")
        self.assertEqual(self.printer_op("acc", CANCEL_JOB, [("integer", "job-id", job_id)], user="alice"), (200, 0))

    def test_5_six_custom_areas_are_not_dropped_without_a_word(self):
        raster = os.path.join(self.server.tmp, "card.pwg")
        subprocess.run([os.path.join(BUILD, "tools", "brellian-rasterwrite"), "--pwg", "-r", "600", "-W", "2072",
                        "-H", "1328", "-o", raster, "pattern"], check=True)
        areas = "resin=" + ";".join("%dmm 1mm 2mm 2mm" % (i + 1) for i in range(6))
        job = h.ipp_print(self.server, "acc", raster, "image/pwg-raster", "six-areas",
                          [("keyword", "brellian-front-ribbon", "color-k"),
                           ("keyword", "brellian-front-resin", "custom-areas"),
                           ("text", "brellian-front-custom-areas", areas)])
        self.assertEqual(job["job-state"], "aborted", job)
        self.assertIn("more than 5 areas for resin", job.get("job-state-message", ""))

    def test_6_control_socket_is_owner_only(self):
        """A server of its own as user nobody, so that its socket is in a directory of its own."""
        tmp = os.path.join(self.server.tmp, "nobody")
        os.makedirs(tmp)
        os.chown(tmp, 65534, 65534)
        env = dict(self.server.env, TMPDIR=tmp, HOME=tmp, XDG_CONFIG_HOME=tmp)
        proc = subprocess.Popen(["setpriv", "--reuid=65534", "--regid=65534", "--clear-groups",
                                 self.server.app, "server", "-o", "server-port=%d" % h.free_port(),
                                 "-o", "listen-hostname=localhost", "-o", "server-options=no-tls",
                                 "-o", "spool-directory=" + tmp, "-o", "log-file=" + os.path.join(tmp, "log")],
                                env=env, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            path = os.path.join(tmp, "brellian-printer-app65534.sock")
            deadline = time.time() + 20
            while time.time() < deadline and not os.path.exists(path):
                time.sleep(0.1)
            self.assertTrue(os.path.exists(path), "no control socket")
            time.sleep(1.5)  # the first pass of the server's loop
            self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), 0o600)
        finally:
            proc.terminate()
            proc.wait(timeout=20)

    def test_7_printer_home_forms_stay_guarded_after_a_restart(self):
        self.server.restart()
        before = self.state()
        for form in self.page("/acc/")[0]:
            status, text = h.post_form(self.server, form["action"] or "/acc/", form, {}, source=OTHER)
            self.assertIn(status, (401, 403), (form["fields"].get("action"), text[:200]))
        self.assertEqual(before, self.state())

    def test_9_signed_in_administrator_may_change(self):
        form = self.page("/security")[0][0]
        status, text = h.post_form(self.server, "/security", form,
                                   {"new_password": "Card-Admin-7", "new_password2": "Card-Admin-7"})
        self.assertIn("Password changed", text)
        good = {"Authorization": "Basic " + base64.b64encode(b"admin:Card-Admin-7").decode()}
        bad = {"Authorization": "Basic " + base64.b64encode(b"admin:Card-Admin-8").decode()}
        self.assertEqual(h.http_request(self.server, "GET", "/acc/config", source=OTHER)[0], 401)
        self.assertEqual(h.http_request(self.server, "GET", "/acc/config", headers=bad, source=OTHER)[0], 401)
        self.assertEqual(h.http_request(self.server, "GET", "/acc/config", headers=good, source=OTHER)[0], 200)
        self.assertTrue(refused(self.printer_op("acc", PAUSE_PRINTER, source=OTHER, headers=bad)))
        self.assertEqual(self.printer_op("acc", PAUSE_PRINTER, source=OTHER, headers=good), (200, 0))
        self.assertEqual(self.printer_op("acc", RESUME_PRINTER, source=OTHER, headers=good), (200, 0))
        # Another site's form, posted with the remembered credentials, is refused.
        forged = dict(good, Origin="http://evil.example")
        self.assertTrue(refused(self.printer_op("acc", PAUSE_PRINTER, source=OTHER, headers=forged)))
        fields = self.page("/acc/config", headers=good, source=OTHER)[0][0]["fields"]
        body = "&".join("%s=%s" % (k, "signed-in" if k == "location" else v) for k, v in fields.items()).encode()
        status, _ = h.http_request(self.server, "POST", "/acc/config", body,
                                   dict(good, **{"Content-Type": "application/x-www-form-urlencoded"}), OTHER)
        self.assertEqual(status, 200)
        self.assertEqual(h.ipp_simple(self.server, "acc", "Get-Printer-Attributes",
                                      display=("printer-location",)).get("printer-location"), "signed-in")
        # The application's own form token belongs to one session: a form taken on this machine does not
        # work in a signed-in session elsewhere, the session's own form does.
        local_form = self.page("/acc/device")[0][0]
        status, text = h.post_form(self.server, "/acc/device", local_form, {"serial": "SESSION1"}, source=OTHER,
                                   headers=good)
        self.assertIn("Invalid form data", text)
        remote_form = self.page("/acc/device", headers=good, source=OTHER)[0][0]
        self.assertNotEqual(local_form["fields"]["brellian-token"], remote_form["fields"]["brellian-token"])
        status, text = h.post_form(self.server, "/acc/device", remote_form, {"serial": "SESSION2"}, source=OTHER,
                                   headers=good)
        self.assertIn("Device settings saved.", text)


if __name__ == "__main__":
    unittest.main(verbosity=2)
