"""A private CUPS spooler for the printer application's tests: its own directories, a local socket, the system's filters."""
# Copyright 2026 The rastertobrellian authors.
import os
import shutil
import subprocess
import time


class PrivateCupsd:
    """cupsd run in the foreground on a directory of its own, listening only on a socket in it."""

    def __init__(self, root):
        self.root = root
        self.socket = os.path.join(root, "cupsd.sock")
        self.proc = None

    def start(self):
        for sub in ("spool/tmp", "cache", "state", "log", "ppd"):
            os.makedirs(os.path.join(self.root, sub), exist_ok=True)
        os.chmod(os.path.join(self.root, "spool/tmp"), 0o1777)
        with open(os.path.join(self.root, "cupsd.conf"), "w") as f:
            f.write("Listen %s\nLogLevel debug\nWebInterface No\nBrowsing No\n"
                    "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
                    "<Policy default>\n  <Limit All>\n    Order deny,allow\n  </Limit>\n</Policy>\n" % self.socket)
        r = self.root
        with open(os.path.join(r, "cups-files.conf"), "w") as f:
            f.write("ServerRoot %s\nServerBin /usr/lib/cups\nDataDir /usr/share/cups\nRequestRoot %s/spool\n"
                    "CacheDir %s/cache\nStateDir %s/state\nTempDir %s/spool/tmp\nAccessLog %s/log/access_log\n"
                    "ErrorLog %s/log/error_log\nPageLog %s/log/page_log\nUser lp\nGroup lp\nSystemGroup root\n"
                    % (r, r, r, r, r, r, r, r))
        self.proc = subprocess.Popen([shutil.which("cupsd") or "/usr/sbin/cupsd", "-f", "-c",
                                      os.path.join(r, "cupsd.conf"), "-s", os.path.join(r, "cups-files.conf")],
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        deadline = time.time() + 20
        while time.time() < deadline:
            if "is running" in self.run("lpstat", "-r").stdout:
                return
            time.sleep(0.1)
        raise RuntimeError("the private cupsd did not start:\n" + self.error_log()[-3000:])

    def run(self, *args):
        """A client command (lpadmin, lp, lpstat) against this spooler; the completed process."""
        env = dict(os.environ, CUPS_SERVER=self.socket)
        return subprocess.run(list(args), env=env, capture_output=True, text=True, timeout=120)

    def wait_idle(self, seconds=120):
        deadline = time.time() + seconds
        while time.time() < deadline:
            r = self.run("lpstat", "-o")
            if r.returncode == 0 and not r.stdout.strip():
                return True
            time.sleep(0.2)
        return False

    def error_log(self):
        try:
            with open(os.path.join(self.root, "log", "error_log"), errors="replace") as f:
                return f.read()
        except OSError:
            return ""

    def stop(self):
        if self.proc and self.proc.poll() is None:
            self.proc.terminate()
            try:
                self.proc.wait(timeout=20)
            except subprocess.TimeoutExpired:
                self.proc.kill()
                self.proc.wait()
