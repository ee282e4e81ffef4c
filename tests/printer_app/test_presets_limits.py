"""The limits of the Card presets page: upload sizes named and exact, name lengths checked up front, strict numbers,
a bound on the number of UV files."""
# Copyright 2026 The rastertobrellian authors.
import os
import random
import unittest

import app_harness as h

BUILD = h.BUILD
UV_DIR = os.path.join(BUILD, "sysroot", "etc", "brellian", "uv")
MIB = 1024 * 1024


class PresetsLimitsTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.server, _ = h.start_server([("lim", "brellian_1060")])
        cls.serial = "L%06x" % random.randrange(1 << 24)
        status, text = h.set_device(cls.server, "lim", {"serial": cls.serial, "ribbon-type": "YMCK-UV"})
        assert "Device settings saved." in text, text
        cls.made = []

    @classmethod
    def tearDownClass(cls):
        cls.server.stop()
        for name in cls.made:
            path = os.path.join(UV_DIR, name)
            if os.path.exists(path):
                os.unlink(path)
        settings = h.settings_path(1060, cls.serial)
        if os.path.exists(settings):
            os.unlink(settings)

    def upload(self, fields, data):
        status, body = h.http_request(self.server, "GET", "/lim/presets")
        form = [f for f in h.parse_page(body)[0] if f["fields"].get("action") == "uv"][0]
        values = {"uv-preset": "1", "uv-name": self.serial + ".uv", "uv-fit": "stretch"}
        values.update(fields)
        self.made.append(values["uv-name"])
        status, text = h.post_form(self.server, "/lim/presets", form, values,
                                   files={"uv-file": ("card.png", data, "image/png")})
        self.assertEqual(status, 200)
        return text

    def padded_png(self, size):
        png = h.png_rgb(60, 40, lambda x, y: (0, 0, 0) if x < 30 else (255, 255, 255))
        return png + b"\0" * (size - len(png))  # bytes after IEND are ignored by the decoder

    def test_1_a_picture_of_exactly_2_mib_is_taken(self):
        self.assertIn("installed as UV preset 1", self.upload({}, self.padded_png(2 * MIB)))

    def test_2_a_larger_picture_names_the_limit(self):
        text = self.upload({"uv-name": self.serial + "-big.uv"}, self.padded_png(2 * MIB + 1))
        self.assertIn("The file is larger than the limit of 2 MiB.", text)
        self.assertNotIn("No file was uploaded", text)
        text = self.upload({"uv-name": self.serial + "-huge.uv"}, b"\0" * (60 * MIB))
        self.assertIn("larger than the limit of 2 MiB", text)
        self.assertFalse(os.path.exists(os.path.join(UV_DIR, self.serial + "-big.uv")))

    def test_3_long_names_are_refused_up_front(self):
        for length in (129, 248, 300):
            name = "n" * length
            text = self.upload({"uv-name": name}, self.padded_png(1000))
            self.assertIn("The name is %d bytes long; at most 128 bytes are allowed." % length, text)
            self.assertFalse(os.path.exists(os.path.join(UV_DIR, name)))
        self.assertIn("installed as UV preset 1", self.upload({"uv-name": "m" * 128}, self.padded_png(1000)))

    def test_4_numbers_are_read_strictly(self):
        for bad in ("1x", " 1", "+1", "01x", "6", "0", ""):
            text = self.upload({"uv-preset": bad, "uv-name": self.serial + "-n.uv"}, self.padded_png(1000))
            self.assertIn("The UV preset must be a number from 1 to 5.", text, bad)
        self.assertFalse(os.path.exists(os.path.join(UV_DIR, self.serial + "-n.uv")))

    def test_5_at_most_50_uv_files(self):
        os.makedirs(UV_DIR, exist_ok=True)
        present = [n for n in os.listdir(UV_DIR) if not n.startswith(".")]
        for i in range(max(1, 50 - len(present))):
            name = "%s-fill%02d.uv" % (self.serial, i)
            with open(os.path.join(UV_DIR, name), "wb") as f:
                f.write(b"\0")
            self.made.append(name)
        text = self.upload({"uv-name": self.serial + "-one-more.uv"}, self.padded_png(1000))
        self.assertIn("UV files (at most 50)", text)
        self.assertFalse(os.path.exists(os.path.join(UV_DIR, self.serial + "-one-more.uv")))
        # An installed name can still be replaced.
        self.assertIn("installed as UV preset 1", self.upload({"uv-name": self.serial + "-fill00.uv"}, self.padded_png(1000)))


if __name__ == "__main__":
    unittest.main(verbosity=2)
