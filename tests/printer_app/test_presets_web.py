"""The Card presets and Device settings pages of brellian-printer-app over HTTP: each change reaches the next job."""
# Copyright 2026 The rastertobrellian authors.
import os
import subprocess
import unittest

import app_harness as h

BUILD, TOOLS = h.BUILD, h.TOOLS
panel_types, panel_data, lut_payloads = h.panel_types, h.panel_data, h.lut_payloads


class PresetsWebTest(h.PresetsPrinterTest):
    """One 1060 printer with a UV ribbon; its presets changed through the page, jobs printed after each change."""
    PRINTER, SERIAL_PREFIX = "web60", "W"

    @classmethod
    def left_files(cls):
        return [os.path.join(h.CONF_DIR, "uv", cls.serial + ".uv"), os.path.join(h.CONF_DIR, "lut", cls.serial + "inv.csv")]

    def presets_form(self, action, source=None):
        status, body = h.http_request(self.server, "GET", "/web60/presets", source=source)
        self.assertEqual(status, 200)
        forms, text = h.parse_page(body)
        for f in forms:
            if f["fields"].get("action") == action:
                return f, text
        self.fail("no %s form on the page: %s" % (action, text[-500:]))

    def settings_bytes(self):
        if not os.path.exists(self.settings_file):
            return None
        with open(self.settings_file, "rb") as f:
            return f.read()

    def test_1_area_change_reaches_the_next_job(self):
        attrs = [("keyword", "brellian-front-ribbon", "color-k"), ("keyword", "brellian-front-resin", "preset-2")]
        before = self.print_card(attrs)
        form, _ = self.presets_form("settings")
        status, text = h.post_form(self.server, "/web60/presets", form, {"resin.2.include.1": "3mm 3mm 40mm 12mm"})
        self.assertIn("Presets saved.", text)
        show = subprocess.run([os.path.join(TOOLS, "brellian-settings"), "--file", self.settings_file, "show"],
                              capture_output=True, text=True)
        self.assertIn("resin.2.include.1 = 3mm 3mm 40mm 12mm", show.stdout + show.stderr)
        after = self.print_card(attrs)
        self.assertNotEqual(h.mask_card_ids(before)[0], h.mask_card_ids(after)[0], "the new area changes the card")
        self.assertNotEqual(panel_data(before, h.PANEL_K), panel_data(after, h.PANEL_K), "the resin area changes the black panel")

    def test_2_uv_upload_reaches_the_next_job(self):
        attrs = [("keyword", "brellian-front-uv", "preset-4")]
        self.assertNotIn(h.PANEL_UV, panel_types(self.print_card(attrs)), "no UV file yet: no UV panel")
        form, _ = self.presets_form("uv")
        png = h.png_rgb(207, 132, lambda x, y: (0, 0, 0) if (x // 20 + y // 20) % 2 else (255, 255, 255))
        status, text = h.post_form(self.server, "/web60/presets", form,
                                   {"uv-preset": "4", "uv-name": self.serial + ".uv", "uv-fit": "stretch"},
                                   files={"uv-file": ("logo.png", png, "image/png")})
        self.assertIn("installed as UV preset 4", text)
        self.assertIn(h.PANEL_UV, panel_types(self.print_card(attrs)), "the uploaded UV image gives a UV panel")

    def test_3_lut_upload_reaches_the_next_job(self):
        attrs = [("keyword", "brellian-front-color-table", "table-3")]
        before = lut_payloads(self.print_card(attrs))
        form, _ = self.presets_form("lut")
        csv = h.lut_csv(lambda i: 255 - i).encode()
        status, text = h.post_form(self.server, "/web60/presets", form,
                                   {"lut-table": "3", "lut-name": self.serial + "inv"},
                                   files={"lut-file": ("inv.csv", csv, "text/csv")})
        self.assertIn("installed as table 3", text)
        after = lut_payloads(self.print_card(attrs))
        self.assertNotEqual(before, after, "the uploaded table is sent with the side")
        self.assertIn(bytes([255, 254, 253]), after[0], "the inverted table is in the stream")

    def test_4_bad_uploads_change_nothing(self):
        before = self.settings_bytes()
        form, _ = self.presets_form("lut")
        status, text = h.post_form(self.server, "/web60/presets", form, {"lut-table": "1", "lut-name": "broken"},
                                   files={"lut-file": ("broken.csv", b"level,red,green,blue\n0,1,2\n", "text/csv")})
        self.assertIn("Not a usable colour table", text)
        self.assertIn("Nothing was changed.", text)
        form, _ = self.presets_form("uv")
        status, text = h.post_form(self.server, "/web60/presets", form, {"uv-preset": "1", "uv-name": "broken.uv"},
                                   files={"uv-file": ("broken.png", b"not a picture", "image/png")})
        self.assertIn("Not a usable PNG picture", text)
        form, _ = self.presets_form("settings")
        status, text = h.post_form(self.server, "/web60/presets", form, {"resin.1.include.1": "3mm banana"})
        self.assertIn("resin.1.include.1", text)
        self.assertIn("Nothing was changed.", text)
        self.assertEqual(before, self.settings_bytes())
        self.assertFalse(os.path.exists(os.path.join(BUILD, "sysroot", "etc", "brellian", "lut", "broken.csv")))
        self.assertFalse(os.path.exists(os.path.join(BUILD, "sysroot", "etc", "brellian", "uv", "broken.uv")))

    def test_5_other_address_or_no_token_changes_nothing(self):
        before = self.settings_bytes()
        form, _ = self.presets_form("settings")
        status, text = h.post_form(self.server, "/web60/presets", form, {"plugin": "remote-change"},
                                   source="127.0.0.2")
        self.assertEqual(status, 403, text)
        status, _ = h.http_request(self.server, "GET", "/web60/presets", source="127.0.0.2")
        self.assertEqual(status, 403, "another machine does not even see the page before signing in")
        no_token = dict(form)
        no_token["fields"] = {k: v for k, v in form["fields"].items() if k != "session"}
        status, text = h.post_form(self.server, "/web60/presets", no_token, {"plugin": "no-token"})
        self.assertIn("Invalid form data", text)
        status, body = h.http_request(self.server, "GET", "/web60/device")
        dev_form = h.parse_page(body)[0][0]
        status, text = h.post_form(self.server, "/web60/device", dev_form, {"serial": "OTHER"}, source="127.0.0.2")
        self.assertEqual(status, 403, text)
        self.assertEqual(before, self.settings_bytes())
        status, body = h.http_request(self.server, "GET", "/web60/device")
        self.assertIn('value="%s"' % self.serial, body)

    def test_6_paths_named_in_a_form_are_never_read_or_removed(self):
        """Only a real multipart file part is taken; a path typed into a form field is neither read nor deleted."""
        lut_dir = os.path.join(BUILD, "sysroot", "etc", "brellian", "lut")
        secret_dir = os.path.join(self.server.tmp, "secret")
        os.makedirs(secret_dir, exist_ok=True)
        victim = os.path.join(secret_dir, "victim.csv")
        with open(victim, "w") as f:
            f.write(h.lut_csv(lambda i: i))  # a usable table: it would be installed if it were read
        os.chmod(victim, 0o600)
        # Files in the server's temporary directory that look like its own
        # upload files: a link to the victim, and a second name of it.
        link = os.path.join(self.server.tmp, "0123456789abc")
        os.symlink(victim, link)
        second = os.path.join(self.server.tmp, "0123456789abd")
        os.link(victim, second)
        before = self.settings_bytes()
        for path in (victim, link, second):
            for multipart in (False, True):
                form, _ = self.presets_form("lut")
                form = dict(form)
                form["enctype"] = "multipart/form-data" if multipart else "application/x-www-form-urlencoded"
                status, text = h.post_form(self.server, "/web60/presets", form,
                                           {"lut-table": "2", "lut-name": "stolen", "lut-file": path})
                self.assertIn("No file was uploaded", text, (path, multipart))
                self.assertTrue(os.path.exists(victim), (path, multipart))
                self.assertTrue(os.path.lexists(path), (path, multipart))
        self.assertFalse(os.path.exists(os.path.join(lut_dir, "stolen.csv")))
        self.assertEqual(before, self.settings_bytes())
        form, _ = self.presets_form("uv")
        status, text = h.post_form(self.server, "/web60/presets", form,
                                   {"uv-preset": "1", "uv-name": "stolen.uv", "uv-file": victim})
        self.assertIn("No file was uploaded", text)
        self.assertTrue(os.path.exists(victim))
        for p in (link, second):
            os.unlink(p)


if __name__ == "__main__":
    unittest.main(verbosity=2)
