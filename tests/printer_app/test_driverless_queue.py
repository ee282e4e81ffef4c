"""A CUPS driverless queue (lpadmin -m everywhere) in a private spooler, printing through brellian-printer-app."""
# Copyright 2026 The rastertobrellian authors.
import os
import shutil
import struct
import subprocess
import sys
import time
import unittest

import app_harness as h
import private_cupsd

BUILD = h.BUILD
MM = 600 / 25.4  # dots per millimetre of the 1060


def card_pdf(path):
    """A one-page CR80 PDF (85.6 x 54 mm) with one black rectangle 20 x 10 mm whose lower left corner is 10 mm
    from the left and 10 mm from the bottom edge."""
    pt = 72 / 25.4
    content = b"0 0 0 rg %.3f %.3f %.3f %.3f re f\n" % (10 * pt, 10 * pt, 20 * pt, 10 * pt)
    objs = [b"<< /Type /Catalog /Pages 2 0 R >>", b"<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
            b"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 %.3f %.3f] /Contents 4 0 R >>" % (85.6 * pt, 54 * pt),
            b"<< /Length %d >>\nstream\n" % len(content) + content + b"endstream"]
    out, offsets = b"%PDF-1.4\n", []
    for i, o in enumerate(objs):
        offsets.append(len(out))
        out += b"%d 0 obj\n" % (i + 1) + o + b"\nendobj\n"
    xref = len(out)
    out += b"xref\n0 %d\n0000000000 65535 f \n" % (len(objs) + 1)
    out += b"".join(b"%010d 00000 n \n" % o for o in offsets)
    out += b"trailer\n<< /Size %d /Root 1 0 R >>\nstartxref\n%d\n%%%%EOF\n" % (len(objs) + 1, xref)
    with open(path, "wb") as f:
        f.write(out)
    return path


def read_raster(path):
    """The first page of a kept CUPS raster file (version 3, uncompressed, 24-bit RGB):
    (resolution, page size in points, width, height, rows)."""
    with open(path, "rb") as f:
        data = f.read()
    endian = "<" if data[:4] in (b"2SaR", b"3SaR") else ">"
    assert data[:4] in (b"3SaR", b"RaS3"), "not an uncompressed raster: %r" % data[:4]
    head = 4
    res = struct.unpack_from(endian + "II", data, head + 276)
    size = struct.unpack_from(endian + "II", data, head + 352)
    width, height, _, _, bpp, bpl = struct.unpack_from(endian + "IIIIII", data, head + 372)
    assert bpp == 24, "bits per pixel %d" % bpp
    body = data[head + 1796: head + 1796 + bpl * height]
    rows = [body[y * bpl:(y + 1) * bpl] for y in range(height)]
    return res, size, width, height, rows


def dark_box(width, rows):
    """Bounding box (left, top, right, bottom) of the pixels darker than mid-grey, or None."""
    box = None
    for y, row in enumerate(rows):
        xs = [x for x in range(0, width) if row[3 * x] + row[3 * x + 1] + row[3 * x + 2] < 3 * 128]
        if xs:
            l, r = xs[0], xs[-1]
            box = (l, y, r, y) if box is None else (min(box[0], l), box[1], max(box[2], r), y)
    return box


def colour_panel(stream):
    """The first colour panel of a job stream: (width, height, rows of RGB bytes)."""
    width = height = None
    data, inside = [], False
    for pos, rtype, length in h.records(stream):
        if rtype == 8 and width is None and stream[pos + 10] == 0:
            width, height = struct.unpack_from("<HH", stream, pos + 6)
            inside = True
        elif rtype == 9 and inside:
            break
        elif rtype == 10 and inside:
            data.append(stream[pos + 6:pos + 6 + length])
    body = b"".join(data)
    assert width and len(body) == width * height * 3, "no whole colour panel in the stream"
    return width, height, [body[y * width * 3:(y + 1) * width * 3] for y in range(height)]


def dark_box_fast(width, rows):
    """dark_box, looking at the dots of a row only when some byte of it is dark."""
    return dark_box(width, [row if min(row) < 128 else b"\xff" * len(row) for row in rows])


@unittest.skipUnless(shutil.which("cupsd") and os.path.exists("/usr/lib/cups/filter/gstoraster"),
                     "needs cupsd and cups-filters")
class DriverlessQueueTest(unittest.TestCase):
    """lpadmin -m everywhere against the application: PDF, text and a picture come out on the card at true size."""

    @classmethod
    def setUpClass(cls):
        cls.server, outs = h.start_server([("card60", "brellian_1060")])
        cls.out = outs["card60"]
        cls.cups = private_cupsd.PrivateCupsd(os.path.join(cls.server.tmp, "cups"))
        cls.cups.start()
        r = cls.cups.run("lpadmin", "-p", "cards", "-E", "-v", cls.server.uri("card60"), "-m", "everywhere")
        if r.returncode != 0:
            raise AssertionError("lpadmin failed: " + r.stdout + r.stderr)
        # The spooler writes the queue's PPD from the printer's attributes after lpadmin returns.
        cls.ppd = os.path.join(cls.cups.root, "ppd", "cards.ppd")
        deadline = time.time() + 60
        while not os.path.exists(cls.ppd) and time.time() < deadline:
            time.sleep(0.2)

    @classmethod
    def tearDownClass(cls):
        cls.cups.stop()
        cls.server.stop()

    def print_file(self, path):
        """Print with no option; the kept raster of the job's first card, or None when the application took the
        document as it came (PDF, which the application prints through its own chain) and kept no raster.
        Either way the printer got exactly one complete card."""
        kept = self.server.env["BRELLIAN_APP_RASTER_DIR"]
        before, out_before = set(os.listdir(kept)), set(os.listdir(self.out))
        r = self.cups.run("lp", "-d", "cards", path)
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertTrue(self.cups.wait_idle(), "the spooler's job did not end")
        deadline = time.time() + 60
        while set(os.listdir(self.out)) == out_before and time.time() < deadline:
            time.sleep(0.2)
        outputs = sorted(set(os.listdir(self.out)) - out_before)
        self.assertEqual(len(outputs), 1, "no card reached the printer:\n" + self.cups.error_log()[-3000:])
        time.sleep(0.5)
        with open(os.path.join(self.out, outputs[0]), "rb") as f:
            stream = f.read()
        self.assertEqual(h.mask_card_ids(stream)[1], 2, "one card: a start-card and an end-card record")
        self.last_stream = stream
        new = sorted(n for n in os.listdir(kept) if n not in before and n.endswith("-card1.ras"))
        return read_raster(os.path.join(kept, new[0])) if new else None

    def assert_card_page(self, raster):
        res, size, width, height, _ = raster
        self.assertEqual(res, (600, 600))
        self.assertEqual(size, (242, 153), "the page is not the card (85.6 x 54 mm) but %s points" % (size,))
        self.assertEqual((width, height), (2022, 1275))

    def test_generated_queue_defaults_to_a_card_size(self):
        with open(self.ppd, errors="replace") as f:
            text = f.read()
        self.assertIn("*DefaultPageSize: 85.6x54mm\n", text)
        self.assertIn("*PageSize 85.6x54mm:", text, "the default names a size with a margin, not only a borderless one")

    def test_pdf_prints_at_true_size(self):
        raster = self.print_file(card_pdf(os.path.join(self.server.tmp, "rect.pdf")))
        if raster is not None:
            self.assert_card_page(raster)
            left, top, right, bottom = dark_box(raster[2], raster[4])
            # 10 mm from the left, 10 mm from the bottom (34 mm from the top), 20 x 10 mm; within 0.2 mm.
            for got, want in ((left, 10), (top, 34), (right + 1, 30), (bottom + 1, 44)):
                self.assertAlmostEqual(got / MM, want, delta=0.2)
            return
        # The application took the PDF itself and rendered it through its own
        # chain: measure the rectangle on the card's colour panel, which is
        # the card (85.6 x 54 mm) centred on the 1060's larger panel.
        width, height, rows = colour_panel(self.last_stream)
        box = dark_box_fast(width, rows)
        self.assertIsNotNone(box, "nothing printed on the colour panel")
        left, top, right, bottom = box
        self.assertAlmostEqual((right + 1 - left) / MM, 20, delta=0.2, msg="the rectangle is not 20 mm wide")
        self.assertAlmostEqual((bottom + 1 - top) / MM, 10, delta=0.2, msg="the rectangle is not 10 mm high")
        card_left, card_top = (width - 85.6 * MM) / 2, (height - 54 * MM) / 2
        # 10 mm from the card's left edge and 34 mm from its top, within 0.3 mm (the panel's centring rounds).
        self.assertAlmostEqual((left - card_left) / MM, 10, delta=0.3)
        self.assertAlmostEqual((top - card_top) / MM, 34, delta=0.3)

    def test_text_prints_on_the_card(self):
        path = os.path.join(self.server.tmp, "note.txt")
        with open(path, "w") as f:
            f.write("VISITOR\nBrellian card\n")
        raster = self.print_file(path)
        if raster is not None:
            self.assert_card_page(raster)
            self.assertIsNotNone(dark_box(raster[2], raster[4]), "no text on the card")
        else:
            width, height, rows = colour_panel(self.last_stream)
            box = dark_box_fast(width, rows)
            self.assertIsNotNone(box, "no text on the card")
            # Two lines of text at the card's own size: more than 3 mm and less than the card high.
            self.assertGreater((box[3] + 1 - box[1]) / MM, 3)
            self.assertLess((box[3] + 1 - box[1]) / MM, 54)

    def test_picture_prints_on_the_card(self):
        ppm = os.path.join(self.server.tmp, "photo.ppm")
        w, hgt = 428, 270
        with open(ppm, "wb") as f:
            f.write(b"P6 %d %d 255\n" % (w, hgt))
            f.write(bytes(v for y in range(hgt) for x in range(w) for v in ((0, 0, 0) if x < w // 2 else (255, 255, 255))))
        jpeg = os.path.join(self.server.tmp, "photo.jpg")
        with open(jpeg, "wb") as f:
            subprocess.run(["cjpeg", "-quality", "95", ppm], stdout=f, check=True)
        raster = self.print_file(jpeg)
        self.assertIsNotNone(raster, "a picture reaches the application as raster")
        self.assert_card_page(raster)
        row = raster[4][raster[3] // 2]
        dark = [row[3 * x] < 128 for x in range(raster[2])]
        edge = dark.index(False, 10)
        self.assertTrue(all(dark[10:edge]), "the black half starts at the card's left edge")
        self.assertFalse(any(dark[edge:-10]), "the white half ends at the card's right edge")
        self.assertAlmostEqual(edge / MM, 85.6 / 2, delta=2.0, msg="the picture fills the card's width")


if __name__ == "__main__":
    sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
    unittest.main(verbosity=2)
