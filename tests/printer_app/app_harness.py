"""Test harness of brellian-printer-app: a private server, IPP jobs through ipptool, web forms, stream comparison."""
# Copyright 2026 The rastertobrellian authors.
import atexit
import html.parser
import os
import re
import shutil
import signal
import socket
import struct
import subprocess
import tempfile
import time
import urllib.parse
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




def free_port():
    """A TCP port on the loopback address that nothing listens on now."""
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


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
        deadline = time.time() + 20
        while time.time() < deadline:
            try:
                with socket.create_connection(("127.0.0.1", self.port), timeout=1):
                    return
            except OSError:
                time.sleep(0.1)
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
            self.proc.send_signal(signal.SIGTERM)
            try:
                self.proc.wait(timeout=20)
            except subprocess.TimeoutExpired:
                self.proc.kill()
                self.proc.wait()
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


def start_presets_printer(name, serial_prefix):
    """The start-up of the presets tests: a server with one 1060 printer, a
    UV ribbon and a flip-turn unit and a random serial number set on its
    Device settings page, and a 600 dpi PWG card.  Returns (server, device
    output directory, raster, serial, settings file)."""
    server = AppServer(BUILD)
    server.start()
    out = server.add_printer(name, "brellian_1060")
    raster = os.path.join(server.tmp, "card.pwg")
    subprocess.run([os.path.join(TOOLS, "brellian-rasterwrite"), "--pwg", "-r", "600", "-W", "2072", "-H", "1328",
                    "-o", raster, "pattern"], check=True)
    serial = "%s%06x" % (serial_prefix, uuid.uuid4().int & 0xFFFFFF)
    status, body = http_request(server, "GET", "/%s/device" % name)
    forms, _ = parse_page(body)
    status, text = post_form(server, "/%s/device" % name, forms[0],
                             {"serial": serial, "ribbon-type": "YMCK-UV", "flip-turn": "on"})
    assert "Device settings saved." in text, text
    settings_file = os.path.join(SETTINGS_DIR, "brellian_br-1060_%s.dat" % serial.lower())
    return server, out, raster, serial, settings_file


def stop_presets_printer(server, paths):
    """Stop the server (kept when BRELLIAN_KEEP_TEST_DIR=1) and remove the
    preset files a test left in the build's system tree."""
    server.stop(keep=os.environ.get("BRELLIAN_KEEP_TEST_DIR") == "1")
    for path in paths:
        if os.path.exists(path):
            os.unlink(path)


class FormParser(html.parser.HTMLParser):
    """The forms of a page: action, enctype and the inputs with their values; and the page's text."""

    def __init__(self):
        super().__init__()
        self.forms, self.text = [], []
        self.select = None

    def handle_starttag(self, tag, attrs):
        a = dict(attrs)
        if tag == "form":
            self.forms.append({"action": a.get("action", ""), "enctype": a.get("enctype", ""), "fields": {}})
        elif tag == "option" and self.select and self.forms:
            fields = self.forms[-1]["fields"]
            value = a.get("value")
            if "selected" in a or self.select not in fields:
                fields[self.select] = value if value is not None else "?"
                self.pending = value is None
        elif tag in ("input", "textarea") and self.forms and a.get("name"):
            if a.get("type") == "checkbox" and "checked" not in a:
                return
            self.forms[-1]["fields"][a["name"]] = a.get("value", "")

        if tag == "select":
            self.select = a.get("name")

    def handle_endtag(self, tag):
        if tag == "select":
            self.select = None

    def handle_data(self, data):
        if getattr(self, "pending", False) and self.select and self.forms:
            self.forms[-1]["fields"][self.select] = data.strip()
            self.pending = False
        self.text.append(data)


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


def parse_page(body):
    p = FormParser()
    p.feed(body)
    return p.forms, " ".join(" ".join(p.text).split())


def dechunk(rest):
    """The body of a chunked HTTP response, or None while it is incomplete."""
    out = b""
    while True:
        size_line, sep, rest = rest.partition(b"\r\n")
        if not sep:
            return None
        size = int(size_line.split(b";")[0] or b"0", 16)
        if size == 0:
            return out
        if len(rest) < size + 2:
            return None
        out += rest[:size]
        rest = rest[size + 2:]


def http_complete(data):
    """Whether a whole HTTP response has arrived (the server keeps the connection open)."""
    head, sep, rest = data.partition(b"\r\n\r\n")
    if not sep:
        return False
    lower = head.lower()
    if b"transfer-encoding: chunked" in lower:
        return dechunk(rest) is not None
    m = re.search(rb"content-length: *(\d+)", lower)
    return m is not None and len(rest) >= int(m.group(1))


def http_request(server, method, path, body=b"", headers=None, source=None):
    """One HTTP request over a plain socket (optionally from a given loopback source address); (status, text)."""
    status, rest = http_request_bytes(server, method, path, body, headers, source)
    return status, rest.decode("utf-8", "replace")


def post_form(server, path, form, changes, files=None, source=None, headers=None):
    """Post a page's form with some fields changed (and files attached); (status, page text)."""
    extra_headers = headers
    fields = dict(form["fields"])
    fields.update(changes)
    fields = {k: v for k, v in fields.items() if v is not None}  # None unchecks a box
    if files is None and form["enctype"] != "multipart/form-data":
        body = urllib.parse.urlencode(fields).encode()
        headers = {"Content-Type": "application/x-www-form-urlencoded"}
    else:
        boundary = "----brellian" + uuid.uuid4().hex
        parts = []
        for k, v in fields.items():
            parts.append(("--%s\r\nContent-Disposition: form-data; name=\"%s\"\r\n\r\n" % (boundary, k)).encode()
                         + v.encode() + b"\r\n")
        for k, (fname, data, ctype) in (files or {}).items():
            parts.append(("--%s\r\nContent-Disposition: form-data; name=\"%s\"; filename=\"%s\"\r\n"
                          "Content-Type: %s\r\n\r\n" % (boundary, k, fname, ctype)).encode() + data + b"\r\n")
        body = b"".join(parts) + ("--%s--\r\n" % boundary).encode()
        headers = {"Content-Type": "multipart/form-data; boundary=" + boundary}
    headers.update(extra_headers or {})
    status, text = http_request(server, "POST", path, body, headers, source)
    return status, parse_page(text)[1]


IPP_TAGS = {"charset": 0x47, "language": 0x48, "uri": 0x45, "name": 0x42, "text": 0x41, "keyword": 0x44,
            "integer": 0x21, "boolean": 0x22, "enum": 0x23, "mimeMediaType": 0x49}
IPP_GROUPS = {"operation": 0x01, "job": 0x02, "printer": 0x04, "system": 0x0a}


def ipp_encode(op, groups, request_id=1):
    """An IPP/2.0 request: groups is [(group, [(syntax, name, value), ...]), ...]."""
    out = struct.pack(">BBHI", 2, 0, op, request_id)
    for group, attrs in groups:
        out += bytes([IPP_GROUPS[group]])
        for syntax, name, value in attrs:
            if syntax in ("integer", "enum"):
                data = struct.pack(">i", value)
            elif syntax == "boolean":
                data = bytes([1 if value else 0])
            else:
                data = value.encode()
            out += struct.pack(">BH", IPP_TAGS[syntax], len(name)) + name.encode() + struct.pack(">H", len(data)) + data
    return out + b"\x03"


def ipp_request(server, path, op, groups, source=None, headers=None, document=b""):
    """One IPP request over HTTP (optionally from another source address); (HTTP status, IPP status or None).
    Operation attributes charset and language come first by themselves."""
    ops = [("charset", "attributes-charset", "utf-8"), ("language", "attributes-natural-language", "en")]
    groups = list(groups)
    if groups and groups[0][0] == "operation":
        groups[0] = ("operation", ops + list(groups[0][1]))
    else:
        groups.insert(0, ("operation", ops))
    body = ipp_encode(op, groups) + document
    hdrs = {"Content-Type": "application/ipp"}
    hdrs.update(headers or {})
    status, head_body = http_request_bytes(server, "POST", path, body, hdrs, source)
    if status != 200 or len(head_body) < 4:
        return status, None
    return status, struct.unpack(">H", head_body[2:4])[0]


def http_request_bytes(server, method, path, body=b"", headers=None, source=None):
    """Like http_request, the body as bytes; (status, body)."""
    headers = dict(headers or {})
    headers.setdefault("Host", "localhost:%d" % server.port)
    headers["Content-Length"] = str(len(body))
    headers["Connection"] = "close"
    req = "%s %s HTTP/1.1\r\n" % (method, path) + "".join("%s: %s\r\n" % kv for kv in headers.items()) + "\r\n"
    s = socket.socket()
    s.settimeout(60)
    if source:
        s.bind((source, 0))
    s.connect(("127.0.0.1", server.port))
    s.sendall(req.encode() + body)
    data = b""
    while True:
        try:
            chunk = s.recv(65536)
        except ConnectionResetError:
            break
        if chunk:
            data += chunk
        if http_complete(data) or not chunk:
            break
    s.close()
    head, _, rest = data.partition(b"\r\n\r\n")
    status = int(head.split(b" ")[1])
    if b"transfer-encoding: chunked" in head.lower():
        rest = dechunk(rest) or b""
    return status, rest
