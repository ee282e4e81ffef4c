"""brellian-printer-app started as the shipped systemd unit starts it, restarted with a fresh private /tmp:
every printer, default, device setting and preset is back."""
# Copyright 2026 The rastertobrellian authors.
import os
import random
import shlex
import shutil
import subprocess
import tempfile
import unittest

import app_harness as h

BUILD = h.BUILD
UNIT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "packaging", "brellian-printer-app.service")


def root_log(root):
    """Where the server's standard error goes."""
    return os.path.join(root, "server.stderr")


def unit_server_args(port):
    """The arguments after "server" in the unit's ExecStart, with the port replaced."""
    with open(UNIT) as f:
        line = next(l for l in f if l.startswith("ExecStart="))
    args = shlex.split(line.split("=", 1)[1])
    args = args[args.index("server") + 1:]
    return [("server-port=%d" % port if a.startswith("server-port=") else a) for a in args]


class UnitServer:
    """The server as root with the unit's own options, in a private mount namespace whose /var/lib, /var/spool and
    /run are directories of the test, and whose /tmp is a new empty directory at every start (PrivateTmp)."""

    def __init__(self, root):
        self.root = root
        self.port = h.free_port()
        self.proc = None
        self.starts = 0
        for d in ("var-lib", "var-spool", "run"):
            os.makedirs(os.path.join(root, d), exist_ok=True)
        self.env = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "BRELLIAN_FILTER": os.path.join(BUILD, "rastertobrellian"),
                    "BRELLIAN_PPD_DIR": os.path.join(BUILD, "ppd")}

    def start(self):
        self.starts += 1
        self.errfile = open(root_log(self.root), "ab")
        tmp = os.path.join(self.root, "tmp-%d" % self.starts)
        os.makedirs(tmp)
        os.chmod(tmp, 0o1777)
        app = os.path.join(BUILD, "app", "brellian-printer-app")
        # A build tree that lies below /tmp would vanish under the new /tmp:
        # its top folder is held at a path of the private /run and put back
        # at its own path inside the new /tmp.
        keep = ""
        real = os.path.realpath(BUILD)
        if real.startswith("/tmp/"):
            top = "/tmp/" + real.split("/")[2]
            keep = "mkdir -p /run/.build && mount --bind %s /run/.build && " % shlex.quote(top)
            back = " && mkdir -p %s && mount --bind /run/.build %s" % (shlex.quote(top), shlex.quote(top))
        else:
            back = ""
        script = ("mount --bind %s /var/lib && mount --bind %s /var/spool && mount --bind %s /run && %s"
                  "mount --bind %s /tmp%s && exec %s server %s" % (
                      shlex.quote(os.path.join(self.root, "var-lib")), shlex.quote(os.path.join(self.root, "var-spool")),
                      shlex.quote(os.path.join(self.root, "run")), keep, shlex.quote(tmp), back, shlex.quote(app),
                      " ".join(shlex.quote(a) for a in unit_server_args(self.port))))
        self.proc = subprocess.Popen(["unshare", "--mount", "--propagation", "private", "sh", "-c", script],
                                     env=self.env, stdout=subprocess.DEVNULL, stderr=self.errfile)
        if not h.wait_for_port(self.port):
            with open(root_log(self.root), errors="replace") as f:
                raise RuntimeError("the server did not start:\n" + f.read()[-2000:])

    def stop(self):
        if self.proc and self.proc.poll() is None:
            h.stop_process(self.proc)
            self.errfile.close()

    def cli(self, *args):
        """A client sub-command inside the server's namespace (its /run holds the server's socket)."""
        return subprocess.run(["nsenter", "--target", str(self.proc.pid), "--mount",
                               os.path.join(BUILD, "app", "brellian-printer-app")] + list(args),
                              env=self.env, capture_output=True, text=True, timeout=60)


@unittest.skipUnless(os.geteuid() == 0 and shutil.which("unshare") and shutil.which("nsenter"),
                     "needs root, unshare and nsenter")
class UnitRestartTest(unittest.TestCase):

    def test_everything_an_administrator_sets_survives_a_restart_of_the_unit(self):
        self.assertNotIn("spool-directory", " ".join(unit_server_args(1)), "the unit relies on the default")
        root = tempfile.mkdtemp(prefix="unit-", dir=BUILD)
        os.chmod(root, 0o755)
        server = UnitServer(root)
        # The harness's helpers need only a port, a directory and a URI.
        server.tmp, server.uri = root, (lambda p: "ipp://localhost:%d/ipp/print/%s" % (server.port, p))
        serial = "U%06x" % random.randrange(1 << 24)
        settings = h.settings_path(1060, serial)
        try:
            server.start()
            out = os.path.join(root, "out")
            os.makedirs(out)
            r = server.cli("add", "-d", "cards", "-m", "brellian_1060", "-v", "file://%s?ext=brj" % out)
            self.assertEqual(r.returncode, 0, r.stderr)
            test = os.path.join(root, "set.test")
            with open(test, "w") as f:
                f.write("{\nOPERATION Set-Printer-Attributes\nGROUP operation-attributes-tag\n"
                        "ATTR charset attributes-charset utf-8\nATTR language attributes-natural-language en\n"
                        "ATTR uri printer-uri $uri\nATTR name requesting-user-name root\nGROUP printer-attributes-tag\n"
                        "ATTR keyword brellian-front-ribbon-default grayscale\nSTATUS successful-ok\n}\n")
            r = subprocess.run(["ipptool", "-t", server.uri("cards"), test], capture_output=True, text=True)
            self.assertEqual(r.returncode, 0, r.stdout)
            status, text = h.set_device(server, "cards", {"serial": serial, "ribbon-type": "YMCK-UV", "laminator": "on"})
            self.assertIn("Device settings saved.", text)
            status, body = h.http_request(server, "GET", "/cards/presets")
            form = next(f for f in h.parse_page(body)[0] if f["fields"].get("action") == "settings")
            status, text = h.post_form(server, "/cards/presets", form, {"resin.2.include.1": "3mm 3mm 40mm 12mm"})
            self.assertEqual(status, 200)

            server.stop()
            server.start()

            r = server.cli("printers")
            self.assertEqual(r.stdout.split(), ["cards"], r.stderr)
            attrs = h.ipp_simple(server, "cards", "Get-Printer-Attributes",
                                 ["ATTR keyword requested-attributes brellian-front-ribbon-default,"
                                  "brellian-laminate-default,brellian-front-uv-supported"])
            self.assertEqual(attrs.get("brellian-front-ribbon-default"), "grayscale", "the default is back")
            self.assertIn("brellian-laminate-default", attrs, "the laminator is still installed")
            self.assertIn("preset-1", attrs.get("brellian-front-uv-supported", ""), "the UV ribbon is still loaded")
            status, body = h.http_request(server, "GET", "/cards/device")
            self.assertIn('value="%s"' % serial, body, "the serial number is back")
            status, body = h.http_request(server, "GET", "/cards/presets")
            self.assertIn("3mm 3mm 40mm 12mm", body, "the preset is back")
            self.assertTrue(os.listdir(os.path.join(root, "var-spool", "brellian-printer-app")))
            self.assertTrue(os.path.exists(os.path.join(root, "var-lib", "brellian-printer-app.state")))
        finally:
            server.stop()
            if os.path.exists(settings):
                os.unlink(settings)
            shutil.rmtree(root, ignore_errors=True)


if __name__ == "__main__":
    unittest.main(verbosity=2)
