"""brellian-printer-app refuses at submission a document it cannot print (client-error-document-format-not-supported,
for Print-Job, Validate-Job and Create-Job with Send-Document), named or found in the data; PDF and PWG raster print."""
# Copyright 2026 The rastertobrellian authors.
import os
import subprocess
import unittest

import app_harness as h

BUILD = os.environ.get("BRELLIAN_BUILD_DIR", os.path.join(os.path.dirname(__file__), "..", "..", "build-test"))
SOURCE = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..")
REFUSED = "client-error-document-format-not-supported"
OPERATION = ["GROUP operation-attributes-tag", "ATTR charset attributes-charset utf-8",
             "ATTR language attributes-natural-language en", "ATTR uri printer-uri $uri",
             "ATTR name requesting-user-name tester"]


class DocumentFormatTest(unittest.TestCase):

    @classmethod
    def setUpClass(cls):
        cls.server = h.AppServer(BUILD)
        cls.server.start()
        cls.out = cls.server.add_printer("card", "brellian_1030")  # 300 dpi: the quickest cards
        cls.docs = {}
        for name, text in (("text", b"Hello, card\n"), ("unknown", bytes(range(256)) * 4)):
            cls.docs[name] = os.path.join(cls.server.tmp, name + ".bin")
            with open(cls.docs[name], "wb") as f:
                f.write(text)
        cls.docs["ps"] = os.path.join(SOURCE, "docs", "samples", "sample-card.ps")
        cls.docs["pdf"] = os.path.join(SOURCE, "docs", "samples", "sample-card.pdf")
        cls.docs["pwg"] = os.path.join(cls.server.tmp, "card.pwg")
        subprocess.run([os.path.join(h.TOOLS, "brellian-rasterwrite"), "--pwg", "-r", "300", "-o", cls.docs["pwg"],
                        "pattern"], check=True)

    @classmethod
    def tearDownClass(cls):
        cls.server.stop()

    def ipptool(self, lines, document=None):
        """An ipptool test of the given lines against the printer; (its exit status, its verbose output)."""
        test = os.path.join(self.server.tmp, "formats.test")
        with open(test, "w") as f:
            f.write("\n".join(lines) + "\n")
        args = ["ipptool", "-tv"] + (["-f", document] if document else []) + [self.server.uri("card"), test]
        r = subprocess.run(args, capture_output=True, text=True, timeout=120)
        return r.returncode, r.stdout + r.stderr

    def submit(self, operation, fmt, document):
        """One request of a document; (exit status, output) with the refusal expected."""
        return self.ipptool(["{", "OPERATION " + operation] + OPERATION +
                            ["ATTR mimeMediaType document-format " + fmt] + (["FILE $filename"] if document else []) +
                            ["STATUS " + REFUSED, "EXPECT !job-id", "DISPLAY status-message", "}"], document)

    def jobs(self):
        """The ids of every job of the printer."""
        out = h.ipp_simple(self.server, "card", "Get-Jobs", ["ATTR keyword which-jobs all"])
        return out.get("job-id", "")

    def test_print_job_of_a_format_the_printer_does_not_print_is_refused(self):
        before = self.jobs()
        for fmt, doc in (("text/plain", "text"), ("application/postscript", "ps")):
            status, out = self.submit("Print-Job", fmt, self.docs[doc])
            self.assertEqual(status, 0, out)
            self.assertIn("Documents of the format %s cannot be printed." % fmt, out)
        self.assertEqual(self.jobs(), before, "no job was made")

    def test_validate_job_refuses_the_format(self):
        status, out = self.submit("Validate-Job", "text/plain", None)
        self.assertEqual(status, 0, out)

    def test_send_document_after_create_job_refuses_the_format(self):
        status, out = self.ipptool(["{", "OPERATION Create-Job"] + OPERATION +
                                   ["STATUS successful-ok", "EXPECT job-id", "}",
                                    "{", "OPERATION Send-Document"] + OPERATION +
                                   ["ATTR integer job-id $job-id", "ATTR boolean last-document true",
                                    "ATTR mimeMediaType document-format text/plain", "FILE $filename",
                                    "STATUS " + REFUSED, "}",
                                    "{", "OPERATION Cancel-Job"] + OPERATION +
                                   ["ATTR integer job-id $job-id", "STATUS successful-ok", "}"], self.docs["text"])
        self.assertEqual(status, 0, out)
        status, out = self.submit("Create-Job", "text/plain", None)
        self.assertEqual(status, 0, "a format named in Create-Job is checked too:\n" + out)

    def test_data_sent_as_octet_stream_is_refused_unless_its_format_prints(self):
        status, out = self.submit("Print-Job", "application/octet-stream", self.docs["ps"])
        self.assertEqual(status, 0, out)
        self.assertIn("Documents of the format application/postscript cannot be printed.", out)
        status, out = self.submit("Print-Job", "application/octet-stream", self.docs["unknown"])
        self.assertEqual(status, 0, out)
        self.assertIn("not recognised", out)
        self.assertIn("This printer prints PWG raster, Apple raster, card job streams, PDF, JPEG, PNG;", out)

    def test_pdf_and_pwg_raster_still_print(self):
        for fmt, doc in (("application/pdf", "pdf"), ("image/pwg-raster", "pwg"), ("application/octet-stream", "pwg")):
            job = h.ipp_print(self.server, "card", self.docs[doc], fmt, "formats-" + doc)
            self.assertEqual(job.get("job-state"), "completed", (fmt, job))
        self.assertEqual(len([n for n in os.listdir(self.out) if n.startswith("formats-")]), 2,
                         "the cards reached the device (a job of the same name replaces the file)")


if __name__ == "__main__":
    unittest.main(verbosity=2)
