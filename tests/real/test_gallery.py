"""An imported HTML file looks in a mail as it does in a browser."""

import json
import subprocess
import tempfile
from pathlib import Path

from case import SIMPLE_ARGUMENTS, CatcherTest
from client import ROOT

GALLERY = Path(__file__).with_name("gallery.py")
NEWSLETTER = ROOT / "examples" / "newsletter"
TIMEOUT_SECONDS = 300


class GalleryTest(CatcherTest):
    def differing(self, *arguments):
        """How many points of the newsletter look different when it is sent with these arguments."""
        page = NEWSLETTER / "newsletter.html"
        self.send(*SIMPLE_ARGUMENTS, "--html-file", page, "--text-file",
                  NEWSLETTER / "newsletter.txt", *arguments)
        [(_, raw)] = self.catcher.messages()
        self.assert_well_formed(raw)
        with tempfile.TemporaryDirectory(prefix="quorvane-gallery-") as folder:
            done = subprocess.run(
                [GALLERY, page, self.file("mail.eml", raw), folder], stdin=subprocess.DEVNULL,
                capture_output=True, text=True, timeout=TIMEOUT_SECONDS)
        self.assertEqual(done.returncode, 0, done.stderr)
        return json.loads(done.stdout)["differing"]

    def test_mail_looks_like_the_file(self):
        self.assertEqual(self.differing(), 0)

    def test_pictures_that_stay_at_home_are_missed(self):
        # What the comparison is worth: without its pictures the same mail fails it.
        self.assertGreater(self.differing("--no-import"), 10_000)
