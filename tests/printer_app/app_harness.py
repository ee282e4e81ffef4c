"""Test harness of brellian-printer-app: a private server, IPP jobs through ipptool, web forms, stream comparison."""
# Copyright 2026 The rastertobrellian authors.
import atexit
import os
import re
import shutil
import signal
import socket
import struct
import subprocess
import tempfile
import time
import unittest
import uuid

HERE = os.path.dirname(os.path.abspath(__file__))
SOURCE = os.path.normpath(os.path.join(HERE, "..", ".."))
BUILD = os.environ.get("BRELLIAN_BUILD_DIR", os.path.join(SOURCE, "build-test"))
TOOLS = os.path.join(BUILD, "tools")
CONF_DIR = os.path.join(BUILD, "sysroot", "etc", "brellian")
SETTINGS_DIR = os.path.join(CONF_DIR, "settings")

# The stream helpers live in stream_records.py; the tests reach them here.
from stream_records import (ICMD_ENDCARD, ICMD_HEADER_BYTES, ICMD_IMAGE, ICMD_LUTTABLE, ICMD_STARTCARD,  # noqa: E402,F401
                            ICMD_STARTIMAGE, ICMD_STARTJOB, ICMD_STARTSIDE, PANEL_COLOR, PANEL_K, PANEL_PO, PANEL_UV,
                            STARTIMAGE_PANEL, lut_payloads, mask_card_ids, panel_data, panel_types, record_types,
                            records)
# So do the HTTP, form and IPP request helpers of app_http.py.
from app_http import (FormParser, dechunk, http_complete, http_request, http_request_bytes, ipp_encode,  # noqa: E402,F401
                      ipp_request, parse_page, post_form)


def free_port():
    """A TCP port on the loopback address that nothing listens on now."""
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


def write_bytes(path, data):
    """Write data to the file at path; the path."""
    with open(path, "wb") as f:
        f.write(data)
    return path


def stop_process(proc):
    """End a server process as its service manager would: SIGTERM, then up to 20 s, then SIGKILL."""
    proc.send_signal(signal.SIGTERM)
    try:
        proc.wait(timeout=20)
    except subprocess.TimeoutExpired:
        proc.kill()
        proc.wait()


def wait_for_port(port, seconds=20):
    """Whether something accepts connections on the loopback port within the given seconds."""
    deadline = time.time() + seconds
    while time.time() < deadline:
        try:
            with socket.create_connection(("127.0.0.1", port), timeout=1):
                return True
        except OSError:
            time.sleep(0.1)
    return False


class AppServer:
    """One brellian-printer-app server in a temporary directory, with file: devices."""

    def __init__(self, build, filter_path=None, tls=False):
        self.build = build
        self.tls = tls  # TLS on, as the shipped unit runs the server
        self.app = os.path.join(build, "app", "brellian-printer-app")
        self.filter = os.path.join(build, "rastertobrellian")
        self.tmp = tempfile.mkdtemp(prefix="brellian-app-")
        os.chmod(self.tmp, 0o755)  # the filter may run as the spooler's user
        self.port = free_port()
        self.env = dict(os.environ)
        self.env.update({
            "XDG_CONFIG_HOME": os.path.join(self.tmp, "config"),
            "HOME": self.tmp,
            "BRELLIAN_FILTER": filter_path or self.filter,
            "BRELLIAN_PPD_DIR": os.path.join(build, "ppd"),
            "BRELLIAN_APP_RASTER_DIR": os.path.join(self.tmp, "raster"),
            "TMPDIR": self.tmp,
        })
        os.makedirs(self.env["BRELLIAN_APP_RASTER_DIR"])
        self.log = os.path.join(self.tmp, "log")
        self.proc = None

    def start(self):
        """Start the server and wait until it answers."""
        args = [self.app, "server", "-o", "server-port=%d" % self.port, "-o", "listen-hostname=localhost",
                "-o", "spool-directory=" + os.path.join(self.tmp, "spool"), "-o", "log-file=" + self.log,
                "-o", "log-level=debug"] + ([] if self.tls else ["-o", "server-options=no-tls"])
        os.makedirs(os.path.join(self.tmp, "spool"), exist_ok=True)
        self.errfile = open(os.path.join(self.tmp, "server.stderr"), "ab")
        self.proc = subprocess.Popen(args, env=self.env, stdout=subprocess.DEVNULL, stderr=self.errfile)
        atexit.register(self.kill_if_running)  # also when a class set-up fails before its tear-down
        if not wait_for_port(self.port):
            raise RuntimeError("the server did not start")

    def kill_if_running(self):
        if self.proc and self.proc.poll() is None:
            self.proc.kill()
            self.proc.wait()

    def restart(self):
        """Stop the server and start it again on the same directory and port."""
        self.stop(keep=True)
        self.start()

    def stop(self, keep=False):
        """Stop the server (SIGTERM, then wait) and remove the directory unless asked to keep it."""
        if self.proc:
            stop_process(self.proc)
            self.proc = None
            self.errfile.close()
        with open(os.path.join(self.tmp, "server.stderr"), errors="replace") as f:
            report = f.read()
        if not keep:
            shutil.rmtree(self.tmp, ignore_errors=True)
        if "Sanitizer" in report or "runtime error" in report:
            raise AssertionError("the server reported:\n" + report[-4000:])

    def cli(self, *args):
        """Run a client sub-command of the application; its completed process."""
        return subprocess.run([self.app] + list(args), env=self.env, capture_output=True, text=True, timeout=60)

    def system_op(self, lines):
        """One IPP operation on the system object through ipptool; its standard output."""
        test = os.path.join(self.tmp, "system-%s.test" % uuid.uuid4().hex)
        with open(test, "w") as f:
            f.write("\n".join(["{"] + lines + ["}"]) + "\n")
        r = subprocess.run(["ipptool", "-tv", "ipp://localhost:%d/ipp/system" % self.port, test],
                           capture_output=True, text=True, timeout=60)
        if r.returncode != 0:
            raise RuntimeError("ipptool failed: " + r.stdout[-2000:] + r.stderr[-500:])
        return r.stdout.split("RECEIVED:", 1)[-1]

    def add_printer(self, name, driver, device_uri=None):
        """Add a printer (IPP Create-Printer) whose device is a directory of .brj files; the directory.
        With device_uri, that device instead (and None).
        IPP and not the client sub-commands: those reach whichever server owns the machine's local socket."""
        out = None if device_uri else os.path.join(self.tmp, "out-" + name)
        if out:
            os.makedirs(out)
        self.system_op(["OPERATION Create-Printer", "GROUP operation-attributes-tag",
                        "ATTR charset attributes-charset utf-8", "ATTR language attributes-natural-language en",
                        "ATTR uri system-uri $uri", "ATTR name requesting-user-name tester",
                        "ATTR keyword printer-service-type print", "ATTR keyword smi55357-driver " + driver,
                        "ATTR uri smi55357-device-uri " + (device_uri or "file://%s?ext=brj" % out),
                        "GROUP printer-attributes-tag",
                        "ATTR name printer-name " + name, "STATUS successful-ok"])
        return out

    def printers(self):
        """The names of the server's printers (IPP Get-Printers)."""
        out = self.system_op(["OPERATION Get-Printers", "GROUP operation-attributes-tag",
                              "ATTR charset attributes-charset utf-8", "ATTR language attributes-natural-language en",
                              "ATTR uri system-uri $uri", "ATTR keyword requested-attributes printer-name",
                              "STATUS successful-ok", "DISPLAY printer-name"])
        return sorted(re.findall(r"printer-name \(nameWithoutLanguage\) = (\S+)", out))

    def uri(self, printer):
        return "ipp://localhost:%d/ipp/print/%s" % (self.port, printer)

    def url(self, path):
        return "http://localhost:%d%s" % (self.port, path)


def ipp_simple(server, printer, operation, extra=(), display=()):
    """One IPP operation on a printer through ipptool; its response attributes (name -> text)."""
    lines = ["{", "OPERATION %s" % operation, "GROUP operation-attributes-tag",
             "ATTR charset attributes-charset utf-8", "ATTR language attributes-natural-language en",
             "ATTR uri printer-uri $uri", "ATTR name requesting-user-name tester"] + list(extra)
    lines += ["STATUS successful-ok"] + ["DISPLAY %s" % d for d in display] + ["}"]
    test = os.path.join(server.tmp, "op-%s.test" % uuid.uuid4().hex)
    with open(test, "w") as f:
        f.write("\n".join(lines) + "\n")
    r = subprocess.run(["ipptool", "-tv", server.uri(printer), test], capture_output=True, text=True, timeout=60)
    out = {}
    for line in r.stdout.split("RECEIVED:", 1)[-1].splitlines():
        m = re.match(r"\s+([a-z-]+) \(([^)]*)\) = (.*)$", line)
        if m:
            out[m.group(1)] = m.group(3)
    return out


def cancel_when_processing(server, printer, delay, timeout=60):
    """Wait until a job of the printer is processing, then after delay seconds cancel it; its id or None."""
    deadline = time.time() + timeout
    while time.time() < deadline:
        jobs = ipp_simple(server, printer, "Get-Jobs", ["ATTR keyword which-jobs not-completed",
                                                        "ATTR keyword requested-attributes job-id,job-state"])
        if jobs.get("job-state") == "processing":
            time.sleep(delay)
            ipp_simple(server, printer, "Cancel-Job", ["ATTR integer job-id %s" % jobs["job-id"]])
            return jobs["job-id"]
        time.sleep(0.2)
    return None


def ipp_print(server, printer, document, fmt, job_name, attrs=(), cancel_after=None, copies=None):
    """Print a document with ipptool and wait for the job to end; the job's attributes (name -> text)."""
    lines = ["{", "NAME \"print %s\"" % job_name, "OPERATION Print-Job", "GROUP operation-attributes-tag",
             "ATTR charset attributes-charset utf-8", "ATTR language attributes-natural-language en",
             "ATTR uri printer-uri $uri", "ATTR name requesting-user-name tester",
             "ATTR name job-name \"%s\"" % job_name, "ATTR mimeMediaType document-format %s" % fmt,
             "GROUP job-attributes-tag"]
    if copies:
        lines.append("ATTR integer copies %d" % copies)
    for syntax, name, value in attrs:
        if syntax in ("text", "name"):
            value = "\"%s\"" % value.replace("\\", "\\\\").replace("\"", "\\\"")
        lines.append("ATTR %s %s %s" % (syntax, name, value))
    lines += ["FILE $filename", "STATUS successful-ok", "STATUS successful-ok-ignored-or-substituted-attributes",
              "EXPECT job-id", "}"]
    lines += ["{", "NAME \"wait\"", "OPERATION Get-Job-Attributes", "GROUP operation-attributes-tag",
              "ATTR charset attributes-charset utf-8", "ATTR language attributes-natural-language en",
              "ATTR uri printer-uri $uri", "ATTR integer job-id $job-id", "ATTR name requesting-user-name tester",
              "STATUS successful-ok", "EXPECT job-state WITH-VALUE >6 REPEAT-NO-MATCH REPEAT-LIMIT 600",
              "DISPLAY job-id", "DISPLAY job-state", "DISPLAY job-state-message", "DISPLAY job-state-reasons",
              "DISPLAY job-name", "}"]
    test = os.path.join(server.tmp, "job-%s.test" % uuid.uuid4().hex)
    with open(test, "w") as f:
        f.write("\n".join(lines) + "\n")
    args = ["ipptool", "-tv", "-f", document, server.uri(printer), test]
    if cancel_after is None:
        r = subprocess.run(args, capture_output=True, text=True, timeout=300)
    else:
        # A streamed raster job answers Print-Job only when it ends: cancel it from a second connection.
        proc = subprocess.Popen(args, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        cancel_when_processing(server, printer, cancel_after)
        stdout, stderr = proc.communicate(timeout=300)
        r = subprocess.CompletedProcess(args, proc.returncode, stdout, stderr)
    attrs_out = {}
    for line in r.stdout.splitlines():
        m = re.match(r"\s+([a-z-]+) \(([^)]*)\) = (.*)$", line)
        if m:
            attrs_out[m.group(1)] = m.group(3)
    if r.returncode != 0:
        raise AssertionError("ipptool failed:\n" + r.stdout[-3000:] + r.stderr[-1000:])
    return attrs_out


def job_log_lines(server, job_ids, most=80):
    """The server log's lines about the given jobs (the last `most` of them), to explain a failed job."""
    marks = tuple("[Job %s]" % j for j in job_ids)
    try:
        with open(server.log, errors="replace") as f:
            lines = [line.rstrip() for line in f if line.startswith(("E ", "W ", "I ")) and any(m in line for m in marks)]
    except OSError as e:
        return "no server log: %s" % e
    return "server log of jobs %s:\n%s" % (", ".join(job_ids), "\n".join(lines[-most:]))


def run_ipptool_test(server, printer, test, document=None, fmt=None):
    """One of CUPS' own ipptool tests against a printer; the completed process."""
    args = ["ipptool", "-t"]
    if document:
        args += ["-f", document]
    if fmt:
        args += ["-d", "filetype=" + fmt]
    args += [server.uri(printer), os.path.join("/usr/share/cups/ipptool", test)]
    return subprocess.run(args, capture_output=True, text=True, timeout=300)


def run_filter(filter_path, build, ppd, raster, job_id, title, options, printer, serial=""):
    """rastertobrellian run as the spooler runs it; (stdout bytes, stderr text, status)."""
    env = {"PATH": os.environ.get("PATH", "/usr/bin:/bin"), "HOME": os.environ.get("HOME", "/tmp"),
           "PPD": os.path.join(build, "ppd", ppd), "PRINTER": printer,
           "DEVICE_URI": "file:///dev/null" + ("?serial=" + serial if serial else "")}
    with open(raster, "rb") as f:
        r = subprocess.run([filter_path, str(job_id), "tester", title, "1", options], stdin=f, capture_output=True,
                           env=env, timeout=300)
    return r.stdout, r.stderr.decode("utf-8", "replace"), r.returncode


def start_server(printers):
    """A started server with the printers added, given as (name, driver)
    pairs; (server, {name: device output directory})."""
    server = AppServer(BUILD)
    server.start()
    return server, {name: server.add_printer(name, driver) for name, driver in printers}


def set_device(server, printer, changes, source=None):
    """Post the printer's Device settings form with some fields changed (None
    unchecks a box); (status, page text)."""
    status, body = http_request(server, "GET", "/%s/device" % printer, source=source)
    return post_form(server, "/%s/device" % printer, parse_page(body)[0][0], changes, source=source)


def settings_path(model, serial):
    """The settings file of a printer of the model (1030, 1035, 1060) with the
    serial number, in the build's system tree."""
    return os.path.join(SETTINGS_DIR, "brellian_br-%s_%s.dat" % (model, serial.lower()))


def print_to_device(server, printer, out, document, job_name, attrs=(), fmt="image/pwg-raster"):
    """Print a document, check that the job completed, and return what the
    printer's file: device (directory out) received for it."""
    job = ipp_print(server, printer, document, fmt, job_name, attrs)
    if job.get("job-state") != "completed":
        raise AssertionError("the job %s did not complete: %r" % (job_name, job))
    with open(os.path.join(out, job_name + ".brj"), "rb") as f:
        return f.read()


class PresetsPrinterTest(unittest.TestCase):
    """The start-up of the presets tests: a server with one 1060 printer
    (PRINTER), a UV ribbon, a flip-turn unit and a random serial number
    (starting with SERIAL_PREFIX) set on its Device settings page, and a
    600 dpi PWG card (cls.raster).  cls.out is the device's directory,
    cls.settings_file the printer's settings file; left_files() names the
    preset files a test class leaves in the build's system tree, removed
    with the settings file at the end (the server's directory is kept when
    BRELLIAN_KEEP_TEST_DIR=1)."""

    PRINTER, SERIAL_PREFIX = None, None

    @classmethod
    def setUpClass(cls):
        cls.server, outs = start_server([(cls.PRINTER, "brellian_1060")])
        cls.out = outs[cls.PRINTER]
        cls.raster = os.path.join(cls.server.tmp, "card.pwg")
        subprocess.run([os.path.join(TOOLS, "brellian-rasterwrite"), "--pwg", "-r", "600", "-W", "2072", "-H", "1328",
                        "-o", cls.raster, "pattern"], check=True)
        cls.serial = "%s%06x" % (cls.SERIAL_PREFIX, uuid.uuid4().int & 0xFFFFFF)
        status, text = set_device(cls.server, cls.PRINTER,
                                  {"serial": cls.serial, "ribbon-type": "YMCK-UV", "flip-turn": "on"})
        assert "Device settings saved." in text, text
        cls.settings_file = settings_path(1060, cls.serial)
        cls.jobs = 0

    @classmethod
    def left_files(cls):
        """The preset files the suite leaves in the build's system tree (none here)."""
        return []

    @classmethod
    def tearDownClass(cls):
        cls.server.stop(keep=os.environ.get("BRELLIAN_KEEP_TEST_DIR") == "1")
        for path in [cls.settings_file] + cls.left_files():
            if os.path.exists(path):
                os.unlink(path)

    def print_card(self, attrs):
        """Print the card with the job attributes; what the device received."""
        type(self).jobs += 1
        return print_to_device(self.server, self.PRINTER, self.out, self.raster,
                               "%s-%d" % (self.PRINTER, self.jobs), attrs)


def png_rgb(width, height, pixel):
    """An 8-bit RGB PNG of width x height whose pixel (x, y) is pixel(x, y) = (r, g, b)."""
    import zlib
    raw = b"".join(b"\0" + b"".join(bytes(pixel(x, y)) for x in range(width)) for y in range(height))

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xffffffff)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 2, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(raw)) + chunk(b"IEND", b""))


def lut_csv(fn):
    """A lookup table CSV whose entry i of each channel is fn(i)."""
    return "level,red,green,blue\n" + "".join("%d,%d,%d,%d\n" % (i, fn(i), fn(i), fn(i)) for i in range(256))
