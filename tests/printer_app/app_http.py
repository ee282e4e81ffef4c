"""HTTP and IPP over a plain socket for the printer application's tests: requests, chunked bodies, forms and
the pages' text, IPP requests encoded by hand."""
# Copyright 2026 The rastertobrellian authors.
import html.parser
import re
import socket
import struct
import urllib.parse
import uuid


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
