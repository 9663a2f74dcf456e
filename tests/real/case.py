"""What the tests of quorvane-send share: the sample message and the base of their classes."""

import tempfile
import unittest
from pathlib import Path

import mime_check
from client import ROOT
from mail_catcher import Catcher

SAMPLE = ROOT / "examples" / "sample"
SUBJECT = "Midsummer at Café Björk – programme and menu"
SAMPLE_ARGUMENTS = [
    "--from", "Zoë Björk <zoe@bjork.example>",
    "--to", "Ann Miller <ann@example.org>",
    "--cc", "music@example.org",
    "--bcc", "archive@bjork.example",
    "--subject", SUBJECT,
    "--html-file", SAMPLE / "body.html",
    "--text-file", SAMPLE / "body.txt",
    "--inline", f"{SAMPLE}/logo.png,cid=logo@bjork.example,type=image/png",
    "--attach", f"{SAMPLE}/programme.pdf,type=application/pdf",
    "--attach", f"{SAMPLE}/menu.csv,name=Menü.csv,type=text/csv",
]
SAMPLE_STRUCTURE = ("multipart/mixed(multipart/related(multipart/alternative(text/plain,text/html),"
                    "image/png),application/pdf,text/csv)")
SIMPLE_ARGUMENTS = ["--from", "a@example.org", "--to", "b@example.org"]


class SendTest(unittest.TestCase):
    """A test that sends with `client`, which the runner sets to quorvane-send of one build."""

    client = None
    port = None  # of the server that the class starts

    def setUp(self):
        self._folder = tempfile.TemporaryDirectory(prefix="quorvane-")
        self.addCleanup(self._folder.cleanup)
        self.folder = Path(self._folder.name)

    def file(self, name, content):
        """A file with this content, bytes or text."""
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def send(self, *arguments, status=0, stdin=None, port=None):
        """Sends to the server of the class; fails when the exit status is another one."""
        done = self.client.run("--server", f"127.0.0.1:{port or self.port}", *arguments,
                               stdin=stdin)
        self.assertEqual(done.returncode, status, done.stdout + done.stderr)
        return done

    def assert_well_formed(self, raw):
        self.assertEqual(mime_check.faults(raw), [])

    def assert_is_sample(self, raw):
        """The message holds the sample, byte for byte, and nothing else."""
        self.assert_well_formed(raw)
        message = mime_check.parse(raw)
        self.assertEqual(mime_check.structure(message), SAMPLE_STRUCTURE)
        self.assertEqual(mime_check.decode_words(message["Subject"]), SUBJECT)
        comparison = mime_check.Comparison(message)
        comparison.text("text/plain", (SAMPLE / "body.txt").read_bytes().decode())
        comparison.text("text/html", (SAMPLE / "body.html").read_bytes().decode())
        comparison.inline("logo@bjork.example", (SAMPLE / "logo.png").read_bytes())
        comparison.attachment("programme.pdf", (SAMPLE / "programme.pdf").read_bytes())
        comparison.attachment("Menü.csv", (SAMPLE / "menu.csv").read_bytes())
        wrong = [sentence for good, sentence in comparison.finish() if not good]
        self.assertEqual(wrong, [])

    def assert_text(self, raw, meant):
        """The message is one plain text, this one."""
        self.assert_well_formed(raw)
        [part] = mime_check.leaves(mime_check.parse(raw))
        self.assertEqual(part.type, "text/plain")
        self.assert_content(part, meant)

    def assert_content(self, part, meant):
        """The part, the only one of its message, holds this text."""
        # The line end in front of the final dot belongs to the message; Base64 doesn't see it.
        end = "" if part.encoding == "base64" else "\r\n"
        self.assertEqual(part.content.decode(part.charset), meant + end)

    def some(self, cases, step):
        """All cases natively; each step-th under Wine, where starting a program takes seconds and
        the code that they exercise is the same."""
        return cases[::step] if self.client.windows else cases


class CatcherTest(SendTest):
    """Sends to a catcher that the tests of the class share."""

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="quorvane-catcher-")
        cls.addClassCleanup(folder.cleanup)
        cls.catcher = Catcher(folder.name)
        cls.addClassCleanup(cls.catcher.stop)
        cls.port = cls.catcher.port
