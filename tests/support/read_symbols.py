#!/usr/bin/python3
# read_symbols.py - Print every Data Matrix and PDF417 symbol found in the
# binary PGM (P5) or PPM (P6) pictures named on the command line, one
# "Format:text" line each (the two-dimensional symbols zbarimg cannot read).
# Copyright 2026 The rastertobrellian authors.
import sys

import numpy
import zxingcpp


def read_netpbm(path):
    """'read_netpbm()' - The picture as a numpy array (rows, columns[, 3])."""
    with open(path, 'rb') as f:
        data = f.read()
    fields, pos = [], 0
    while len(fields) < 4:
        while data[pos:pos + 1].isspace():
            pos += 1
        if data[pos:pos + 1] == b'#':
            pos = data.index(b'\n', pos)
            continue
        end = pos
        while not data[end:end + 1].isspace():
            end += 1
        fields.append(data[pos:end])
        pos = end
    pos += 1
    kind, width, height = fields[0], int(fields[1]), int(fields[2])
    channels = 3 if kind == b'P6' else 1
    pixels = numpy.frombuffer(data, dtype=numpy.uint8, count=width * height * channels, offset=pos)
    return pixels.reshape((height, width, channels) if channels == 3 else (height, width))


def main():
    formats = zxingcpp.BarcodeFormat.DataMatrix | zxingcpp.BarcodeFormat.PDF417
    found = 0
    for path in sys.argv[1:]:
        for result in zxingcpp.read_barcodes(read_netpbm(path), formats=formats):
            print('%s:%s' % (result.format.name, result.text))
            found += 1
    return 0 if found else 4


if __name__ == '__main__':
    sys.exit(main())
