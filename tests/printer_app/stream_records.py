"""The job command stream as the printer application tests read it: record
types and offsets from their one owner, src/jobstream/records.h, and the
records, panels and lookup tables of a stream."""
# Copyright 2026 The rastertobrellian authors.
import os
import re
import struct

SOURCE = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", ".."))


def stream_constants():
    """The record types and field offsets of the job command stream, read from
    their one owner, src/jobstream/records.h (ICMD_*, STARTIMAGE_*)."""
    with open(os.path.join(SOURCE, "src", "jobstream", "records.h")) as f:
        text = f.read()
    return {name: int(value) for name, value in
            re.findall(r"constexpr \w+ ((?:ICMD|STARTIMAGE)_[A-Z_]+) = (\d+);", text)}


_STREAM = stream_constants()
ICMD_HEADER_BYTES = _STREAM["ICMD_HEADER_BYTES"]
ICMD_STARTJOB = _STREAM["ICMD_STARTJOB"]
ICMD_STARTCARD = _STREAM["ICMD_STARTCARD"]
ICMD_ENDCARD = _STREAM["ICMD_ENDCARD"]
ICMD_STARTSIDE = _STREAM["ICMD_STARTSIDE"]
ICMD_STARTIMAGE = _STREAM["ICMD_STARTIMAGE"]
ICMD_ENDIMAGE = _STREAM["ICMD_ENDIMAGE"]
ICMD_IMAGE = _STREAM["ICMD_IMAGE"]
ICMD_LUTTABLE = _STREAM["ICMD_LUTTABLE"]
STARTIMAGE_PANEL = _STREAM["STARTIMAGE_PANEL"]
PANEL_COLOR, PANEL_K, PANEL_UV, PANEL_PO = 0, 1, 2, 3


def records(stream):
    """The records of a job command stream: (offset, type, payload length)."""
    out, pos = [], 0
    while pos + ICMD_HEADER_BYTES <= len(stream):
        rtype, length = struct.unpack_from("<HI", stream, pos)
        out.append((pos, rtype, length))
        pos += ICMD_HEADER_BYTES + length
    if pos != len(stream):
        raise AssertionError("stream does not end on a record boundary (%d of %d)" % (pos, len(stream)))
    return out


def record_types(stream, rtype=None):
    """The type of every record of a stream, or the records of one type."""
    if rtype is None:
        return [t for _, t, _ in records(stream)]
    return [r for r in records(stream) if r[1] == rtype]


def panel_types(stream):
    """The panel type of every start-image record of a job stream."""
    return [stream[pos + STARTIMAGE_PANEL] for pos, _, _ in record_types(stream, ICMD_STARTIMAGE)]


def panel_data(stream, panel):
    """The bytes of every panel of one type (PANEL_COLOR ... PANEL_PO), joined."""
    out, current = [], None
    for pos, rtype, length in records(stream):
        if rtype == ICMD_STARTIMAGE:
            current = stream[pos + STARTIMAGE_PANEL]
        elif rtype == ICMD_ENDIMAGE:
            current = None
        elif rtype == ICMD_IMAGE and current == panel:
            out.append(stream[pos + ICMD_HEADER_BYTES:pos + ICMD_HEADER_BYTES + length])
    return b"".join(out)


def lut_payloads(stream):
    """The payload of every lookup-table record."""
    return [stream[pos + ICMD_HEADER_BYTES:pos + ICMD_HEADER_BYTES + length]
            for pos, _, length in record_types(stream, ICMD_LUTTABLE)]


def mask_card_ids(stream):
    """The stream with the 8-byte card id of every start-card and end-card record zeroed; (bytes, count)."""
    data = bytearray(stream)
    count = 0
    for pos, rtype, length in records(stream):
        if rtype in (ICMD_STARTCARD, ICMD_ENDCARD) and length >= 8:
            data[pos + ICMD_HEADER_BYTES:pos + ICMD_HEADER_BYTES + 8] = b"\0" * 8
            count += 1
    return bytes(data), count
