"""brellian-batch through brellian-printer-app: a 20-card merged PDF and a CSV of tracks, one job stream per card."""
# Copyright 2026 The rastertobrellian authors.
import os
import struct
import subprocess
import sys
import unittest

import app_harness as h

BUILD, TOOLS = h.BUILD, h.TOOLS
CARDS = 20
ICMD_MAGENCODE, ICMD_STARTIMAGE, ICMD_IMAGE = 5, 8, 10


def track1(card):
    return "CARD %02d HOLDER" % card


def track2(card):
    return "4000%02d=2612" % card


def merged_pdf(path, cards):
    """A mail merge's PDF: CR80 page i white with a black bar from the left edge i * 3.5 mm wide."""
    ps = path + ".ps"
    with open(ps, "w") as f:
        f.write("%!PS\n<< /PageSize [242.65 153.07] >> setpagedevice\n"
                "/card { 0 setgray 0 0 3 -1 roll 9.9213 mul 153.07 rectfill showpage } def\n")
        f.write("".join("%d card\n" % i for i in range(1, cards + 1)))
    subprocess.run(["gs", "-q", "-dSAFER", "-dBATCH", "-dNOPAUSE", "-sDEVICE=pdfwrite", "-sOutputFile=" + path, ps],
                   check=True)


def read_card(stream):
    """Tracks 1 and 2 as text and the widest bar of the front side's panels (part of the panel's width) of one
    job stream: the bar is black, so it is on the colour panel or, drawn in solid black, on the black panel."""
    tracks, bars = ["", "", ""], []
    width = height = bpp = 0
    rows, done = b"", True
    for pos, rtype, length in h.records(stream):
        payload = stream[pos + 6:pos + 6 + length]
        if rtype == ICMD_MAGENCODE:
            for t in range(3):
                fmt, n = payload[t * 130], payload[t * 130 + 1]
                base = ord("0") if fmt in (180, 196) else ord(" ")
                tracks[t] = "".join(chr(base + c) for c in payload[t * 130 + 2:t * 130 + 2 + n])
        elif rtype == ICMD_STARTIMAGE:
            width, height = struct.unpack_from("<HH", payload, 0)
            bpp, rows, done = (3 if payload[4] == 0 else 1), b"", False
        elif rtype == ICMD_IMAGE and not done:
            rows += payload
            middle = (height // 2) * width * bpp
            if len(rows) >= middle + width * bpp:
                row = rows[middle:middle + width * bpp]
                white = row[-bpp:]
                dark = sum(1 for x in range(width)
                           if sum(abs(row[x * bpp + k] - white[k]) for k in range(bpp)) > 96)
                bars.append(dark / width)
                done, rows = True, b""
    return tracks[0], tracks[1], (max(bars) if bars else None)


class BatchAppTest(unittest.TestCase):
    """One server, one model 1030 printer with a magnetic encoder and a file: device."""

    @classmethod
    def setUpClass(cls):
        cls.server, outs = h.start_server([("card30", "brellian_1030")])
        cls.out = outs["card30"]
        status, text = h.set_device(cls.server, "card30", {"mag-encoder": "on"})
        if "Device settings saved." not in text:
            raise AssertionError("the magnetic encoder could not be set: " + text[-2000:])

    @classmethod
    def tearDownClass(cls):
        cls.server.stop(keep=os.environ.get("BRELLIAN_KEEP_TEST_DIR") == "1")

    def test_twenty_cards_from_a_merged_pdf_and_a_csv(self):
        t = self.server.tmp
        pdf, csv = os.path.join(t, "merge.pdf"), os.path.join(t, "people.csv")
        merged_pdf(pdf, CARDS)
        with open(csv, "w") as f:
            f.write("track1,track2\n" + "".join("%s,%s\n" % (track1(i), track2(i)) for i in range(1, CARDS + 1)))
        r = subprocess.run([os.path.join(TOOLS, "brellian-batch"), "-d", self.server.uri("card30"), "--csv", csv,
                            "--poll-interval", "100", pdf], capture_output=True, text=True, timeout=300)
        self.assertEqual(0, r.returncode, r.stdout + r.stderr + self.server_log())
        self.assertIn("printed      %d" % CARDS, r.stdout)
        names = sorted(n for n in os.listdir(self.out) if n.endswith(".brj"))
        self.assertEqual(CARDS, len(names), names)
        seen = {}
        for name in names:
            path = os.path.join(self.out, name)
            dump = subprocess.run([os.path.join(TOOLS, "brellian-jobdump"), "-q", path], capture_output=True, text=True)
            self.assertEqual(0, dump.returncode, name + ": " + dump.stdout)
            with open(path, "rb") as f:
                t1, t2, bar = read_card(f.read())
            # The card is told by its track 1; its track 2 and page must be that row's and page's.
            cards = [i for i in range(1, CARDS + 1) if track1(i) == t1]
            self.assertEqual(1, len(cards), name + ": track 1 of no row: " + t1)
            card = cards[0]
            self.assertEqual(track2(card), t2, name)
            self.assertIsNotNone(bar, name)
            self.assertAlmostEqual(card * 3.5 / 85.6, bar, delta=0.02, msg=name)
            seen[card] = seen.get(card, 0) + 1
        self.assertEqual({i: 1 for i in range(1, CARDS + 1)}, seen)

    def server_log(self):
        with open(self.server.log, errors="replace") as f:
            return f.read()[-3000:]


if __name__ == "__main__":
    if not os.path.exists(os.path.join(BUILD, "app", "brellian-printer-app")):
        sys.exit(77)
    unittest.main()
