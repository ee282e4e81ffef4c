"""The Card presets page in a real browser (Debian's headless Chromium): each change reaches the next job."""
# Copyright 2026 The rastertobrellian authors.
import json
import os
import shutil
import subprocess
import unittest

import app_harness as h
from app_harness import BUILD, lut_payloads, panel_data, panel_types

HERE = os.path.dirname(os.path.abspath(__file__))
PLAYWRIGHT_DIR = os.path.join(BUILD, "printer-app-browser")


def install_driver():
    """playwright-core from the npm registry into the build tree, once."""
    if os.path.isdir(os.path.join(PLAYWRIGHT_DIR, "node_modules", "playwright-core")):
        return
    os.makedirs(PLAYWRIGHT_DIR, exist_ok=True)
    shutil.copy(os.path.join(HERE, "browser", "package.json"), PLAYWRIGHT_DIR)
    subprocess.run(["npm", "install", "--no-audit", "--no-fund", "--loglevel=error"], cwd=PLAYWRIGHT_DIR, check=True,
                   timeout=300)


class PresetsBrowserTest(h.PresetsPrinterTest):
    PRINTER, SERIAL_PREFIX = "browser60", "B"

    @classmethod
    def setUpClass(cls):
        install_driver()
        super().setUpClass()

    @classmethod
    def left_files(cls):
        return [os.path.join(h.CONF_DIR, "uv", cls.serial + ".uv"), os.path.join(h.CONF_DIR, "lut", cls.serial + ".csv")]

    def browse(self, steps, shot):
        steps_file = os.path.join(self.server.tmp, "steps.json")
        with open(steps_file, "w") as f:
            json.dump(steps, f)
        env = dict(os.environ, BRELLIAN_PLAYWRIGHT_DIR=PLAYWRIGHT_DIR, TMPDIR=self.server.tmp)
        r = subprocess.run(["node", os.path.join(HERE, "browser", "presets_browser.cjs"),
                            self.server.url("/browser60/presets"), steps_file, shot],
                           capture_output=True, text=True, env=env, timeout=300)
        self.assertEqual(r.returncode, 0, r.stderr)
        self.assertTrue(os.path.getsize(shot) > 0)
        out = json.loads(r.stdout)
        self.page_seen = out["page"]
        return out["results"]

    def settings_bytes(self):
        with open(self.settings_file, "rb") as f:
            return f.read()

    def test_changes_in_the_browser_reach_the_next_job(self):
        attrs = [("keyword", "brellian-front-ribbon", "color-k"), ("keyword", "brellian-front-resin", "preset-3"),
                 ("keyword", "brellian-front-uv", "preset-5"), ("keyword", "brellian-front-color-table", "table-2")]
        before = self.print_card(attrs)
        self.assertNotIn(h.PANEL_UV, panel_types(before))
        png = os.path.join(self.server.tmp, "uv.png")
        with open(png, "wb") as f:
            f.write(h.png_rgb(120, 80, lambda x, y: (0, 0, 0) if x < 60 else (255, 255, 255)))
        csv = os.path.join(self.server.tmp, "table.csv")
        with open(csv, "w") as f:
            f.write(h.lut_csv(lambda i: i // 2))
        results = self.browse([
            {"fill": {"resin.3.include.1": "4mm 4mm 30mm 10mm"}, "submit": "save-settings"},
            {"select": {"uv-preset": "5", "uv-fit": "fit"}, "fill": {"uv-name": self.serial + ".uv"},
             "file": {"uv-file": png}, "submit": "upload-uv"},
            {"select": {"lut-table": "2"}, "fill": {"lut-name": self.serial}, "file": {"lut-file": csv},
             "submit": "upload-lut"},
        ], os.path.join(self.server.tmp, "presets.png"))
        self.assertEqual([r["error"] for r in results], [False, False, False], results)
        self.assertEqual(results[0]["message"], "Presets saved.")
        self.assertIn("installed as UV preset 5", results[1]["message"])
        self.assertIn("installed as table 2", results[2]["message"])
        after = self.print_card(attrs)
        self.assertNotEqual(panel_data(before, h.PANEL_K), panel_data(after, h.PANEL_K), "the new resin area changes the black panel")
        self.assertIn(h.PANEL_UV, panel_types(after), "the uploaded UV picture gives a UV panel")
        self.assertNotEqual(lut_payloads(before), lut_payloads(after), "the uploaded colour table is sent")

        kept = self.settings_bytes()
        bad = os.path.join(self.server.tmp, "bad.csv")
        with open(bad, "w") as f:
            f.write("level,red,green,blue\n0,0,0\n")
        results = self.browse([{"select": {"lut-table": "1"}, "fill": {"lut-name": "bad"}, "file": {"lut-file": bad},
                                "submit": "upload-lut"}], os.path.join(self.server.tmp, "bad.png"))
        self.assertTrue(results[0]["error"], results)
        self.assertIn("Not a usable colour table", results[0]["message"])
        self.assertEqual(kept, self.settings_bytes(), "a bad upload changes nothing")

    def test_page_offers_choices_lists_files_and_previews_uv_images(self):
        png = os.path.join(self.server.tmp, "mark.png")
        with open(png, "wb") as f:
            f.write(h.png_rgb(100, 64, lambda x, y: (0, 0, 0) if (x // 10 + y // 10) % 2 else (255, 255, 255)))
        name = self.serial + "-mark.uv"
        mark = os.path.join(BUILD, "sysroot", "etc", "brellian", "uv", name)
        self.addCleanup(lambda: os.path.exists(mark) and os.unlink(mark))
        results = self.browse([{"select": {"uv-preset": "2", "uv-fit": "stretch"}, "fill": {"uv-name": name},
                                "file": {"uv-file": png}, "submit": "upload-uv"}],
                              os.path.join(self.server.tmp, "choices.png"))
        self.assertIn("installed as UV preset 2", results[0]["message"])
        page = self.page_seen
        # Every value with a fixed set of choices is a choice list, the installed files among them.
        for key in ("card-thickness", "mag-po-mode", "lut.1", "lut.3", "uv.1", "uv.5"):
            self.assertTrue(any(key in s for s in page["selects"]), (key, page["selects"]))
        self.assertIn(name, page["text"])
        preview = [p for p in page["previews"] if p["alt"] == "UV image " + name]
        self.assertTrue(preview, page["previews"])
        self.assertEqual((preview[0]["width"], preview[0]["height"]), (2072, 1328), "a picture of the whole panel")
        self.assertIn("at most 2 MiB", page["text"])
        self.assertIn("at most 64 KiB", page["text"])
        for path in (os.path.join(BUILD, "sysroot"), "/etc/brellian", ".dat"):
            self.assertNotIn(path, page["text"], "no server path on the page")


if __name__ == "__main__":
    missing = [t for t in ("/usr/bin/chromium", shutil.which("node"), shutil.which("npm")) if not t or not os.path.exists(t)]
    if missing:
        print("SKIPPED: the browser test needs Debian's chromium, node and npm (scripts/install-deps.sh --full)")
        raise SystemExit(77)
    unittest.main(verbosity=2)
