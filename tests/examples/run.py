"""Runs the examples as they stand and judges what arrives.

    run.py BIN [EMULATOR]

BIN is the bin folder of a build. With an emulator it is a Windows build, whose script host runs
the scripts too.
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path += [str(ROOT / "tests" / "servers"), str(ROOT / "tests" / "real")]

import certificate  # noqa: E402
import mime_check  # noqa: E402
from mail_catcher import Catcher  # noqa: E402

EXAMPLES = ROOT / "examples"
BIN, EMULATOR = Path(sys.argv[1]).resolve(), sys.argv[2:]
TIMEOUT_SECONDS = 100


def setUpModule():
    if EMULATOR:  # what every Windows knows, and a fresh prefix of Wine doesn't
        subprocess.run([*EMULATOR, "reg", "add", r"HKLM\Software\Classes\.png", "/v",
                        "Content Type", "/d", "image/png", "/f"],
                       check=True, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL)


class Examples(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="quorvane-")
        cls.addClassCleanup(folder.cleanup)
        cls.catcher = Catcher(folder.name)
        cls.addClassCleanup(cls.catcher.stop)
        cls.server = ("127.0.0.1", cls.catcher.port)

    def run_program(self, name, *arguments):
        """The exit status and what it said."""
        program = BIN / (name + (".exe" if EMULATOR else ""))
        done = subprocess.run([*EMULATOR, program, *map(str, arguments)], capture_output=True,
                              stdin=subprocess.DEVNULL, timeout=TIMEOUT_SECONDS)
        return done.returncode, (done.stdout + done.stderr).decode().strip()

    def assert_sent(self, outcome):
        """It was sent; returns the envelope and the message."""
        self.assertEqual(outcome, (0, "Sent."))
        [(envelope, raw)] = self.catcher.messages()
        self.assertEqual(mime_check.faults(raw), [])
        return envelope, mime_check.parse(raw)

    def assert_queued(self, outcome):
        """A large mail went out under a bar, and ten small ones whose status was told."""
        status, said = outcome
        lines = re.split(r"[\r\n]+", said)
        self.assertEqual((status, lines[-1]), (0, "11 of 11 messages sent."))
        bars = [line for line in lines if line.startswith("[")]
        self.assertEqual(bars, sorted(bars, key=lambda bar: bar.count("#")))
        self.assertRegex(bars[-1], r"\A\[#+\] 100 %\Z")
        for number in range(1, 12):
            told = [line for line in lines if line.startswith(f"Message {number} ")]
            self.assertEqual(told, [f"Message {number} is being sent", f"Message {number} was sent"])
        self.assertEqual(sorted(mime_check.parse(raw)["Subject"] for _, raw in
                                self.catcher.messages()),
                         sorted(["A long one", *(f"Short one {i}" for i in range(1, 11))]))

    def relay(self, user, password):
        """A catcher that wants encryption and this login, and a file with the password."""
        folder = tempfile.TemporaryDirectory(prefix="quorvane-")
        self.addCleanup(folder.cleanup)
        path = Path(folder.name)
        catcher = Catcher(path / "caught", "--certificate", *map(str, certificate.make(path)),
                          "--login", user, password)
        self.addCleanup(catcher.stop)
        secret = path / "password"
        secret.touch(0o600)
        secret.write_text(password + "\n")
        return catcher, secret

    def assert_logged_in(self, catcher, outcome):
        self.assertEqual(outcome, (0, "Sent."))
        [(envelope, _)] = catcher.messages()
        self.assertEqual(envelope["to"], ["ann@example.org"])

    def assert_newsletter(self, outcome):
        """It was sent with its pictures, all of it as it is in the folder."""
        folder = EXAMPLES / "newsletter"
        _, message = self.assert_sent(outcome)
        self.assertEqual(
            mime_check.structure(message),
            "multipart/related(multipart/alternative(text/plain,text/html)"
            ",image/png,image/png,image/png)")
        self.assertEqual(self.files(message), {
            path.name: path.read_bytes() for path in (folder / "images").iterdir()})
        text, html, *pictures = mime_check.leaves(message)
        self.assertEqual(text.content, (folder / "newsletter.txt").read_bytes())
        names = {part.content_id: f"images/{part.name}" for part in pictures}
        restored = re.sub(r"cid:(\w+)", lambda found: names[found[1]], html.content.decode())
        self.assertEqual(restored, (folder / "newsletter.html").read_bytes().decode())

    def files(self, message):
        return {part.name: part.content for part in mime_check.leaves(message) if part.disposition}


    def assert_simple(self, outcome):
        envelope, message = self.assert_sent(outcome)
        self.assertEqual(envelope["from"], "zoe@bjork.example")
        self.assertEqual(envelope["to"], ["ann@example.org", "bob@example.org"])
        self.assertEqual(mime_check.structure(message), "text/plain")
        self.assertEqual(message.get_payload(), "Dinner at eight?\r\n")


class Programs(Examples):
    def test_simple(self):
        self.assert_simple(self.run_program("simple-example", *self.server))

    def test_memory(self):
        _, message = self.assert_sent(self.run_program("memory-example", *self.server))
        rows = self.files(message)["squares.csv"].decode().split("\r\n")
        self.assertEqual((len(rows), rows[100]), (102, "100,10000"))

    def test_newsletter(self):
        self.assert_newsletter(self.run_program("newsletter-example", EXAMPLES / "newsletter",
                                                *self.server))

    def test_queue(self):
        self.assert_queued(self.run_program("queue-example", *self.server))

    def test_sample(self):
        sample = EXAMPLES / "sample"
        _, message = self.assert_sent(self.run_program("send-example", sample, *self.server))
        self.assertEqual(self.files(message), {
            name: (sample / file).read_bytes() for name, file in (
                ("logo.png", "logo.png"), ("programme.pdf", "programme.pdf"),
                ("Menü.csv", "menu.csv"))})


@unittest.skipIf(EMULATOR, "there is no shell")
class Shell(Examples):
    def run_shell(self, name, port, folder=None, *arguments):
        path = {**os.environ, "PATH": f"{BIN}:{os.environ['PATH']}"}
        done = subprocess.run([EXAMPLES / f"{name}.sh", f"127.0.0.1:{port}", *arguments], env=path,
                              cwd=folder, capture_output=True, text=True, timeout=TIMEOUT_SECONDS)
        return done.returncode, (done.stdout + done.stderr).strip()

    def test_simple(self):
        envelope, message = self.assert_sent(self.run_shell("simple", self.catcher.port))
        self.assertEqual(envelope["to"], ["ann@example.org"])
        self.assertEqual(message.get_payload(), "Dinner at eight?\r\n")

    def test_pipe(self):
        with tempfile.TemporaryDirectory(prefix="quorvane-") as folder:
            self.assertEqual(self.run_shell("pipe", self.catcher.port, folder), (0, ""))
            self.assertIn('"code":0', (Path(folder) / "mail.log").read_text())
        [(_, raw)] = self.catcher.messages()
        self.assertIn("Mounted on", mime_check.parse(raw).get_payload())

    def test_each(self):
        with tempfile.TemporaryDirectory(prefix="quorvane-") as folder:
            readers, failed = Path(folder) / "readers", Path(folder) / "readers.failed"
            readers.write_text("ann@example.org\nno address\nbob@example.org")
            status, said = self.run_shell("each", self.catcher.port, folder, readers)
            self.assertEqual((status, failed.read_text()), (1, "no address\n"))
            self.assertIn("'no address' is no address", said)
            readers.write_text("bob@example.org\n")
            self.assertEqual(self.run_shell("each", self.catcher.port, folder, readers), (0, ""))
            self.assertEqual(failed.read_text(), "")
            readers.unlink()
            self.assertNotEqual(self.run_shell("each", self.catcher.port, folder, readers)[0], 0)
        self.assertEqual([envelope["to"] for envelope, _ in self.catcher.messages()],
                         [["ann@example.org"], ["bob@example.org"], ["bob@example.org"]])

    def test_newsletter(self):
        self.assert_newsletter(self.run_shell("newsletter", self.catcher.port))

    def test_login(self):
        catcher, secret = self.relay("zoe@bjork.example", "secret pass")
        self.assert_logged_in(catcher, self.run_shell("login", catcher.port, secret.parent))


class Scripts:
    """What the scripts of each language do."""

    def run_script(self, name, *arguments):
        return self.run_program("scripthost", EXAMPLES / f"{name}.{self.language}", *arguments)

    def test_simple(self):
        self.assert_simple(self.run_script("simple", *self.server))

    def test_attachments(self):
        _, message = self.assert_sent(self.run_script("attachments", *self.server))
        self.assertEqual(self.files(message), {
            name: (EXAMPLES / "sample" / name).read_bytes()
            for name in ("programme.pdf", "menu.csv")})

    def test_newsletter(self):
        self.assert_newsletter(self.run_script("newsletter", *self.server))

    def test_queue(self):
        self.assert_queued(self.run_script("queue", *self.server))

    def test_errors(self):
        self.assert_sent(self.run_script("errors", *self.server, "ann@example.org"))
        self.assertEqual(self.run_script("errors", *self.server, " ; "),
                         (2, "Wrong use: Message must have at least one recipient"))
        self.assertEqual(self.run_script("errors", "127.0.0.1", 1, "ann@example.org"),
                         (1, "Something broke on the way: Could not connect to mail server "
                             "127.0.0.1, connection refused."))


if EMULATOR:
    class VBScript(Scripts, Examples):
        language = "vbs"

        def test_message(self):
            self.assertEqual(self.run_script("message", *self.server), (0, ""))
            [(envelope, raw)] = self.catcher.messages()
            self.assertEqual((envelope["from"], envelope["to"]),
                             ("jo@example.com", ["jo@example.com"]))
            self.assertEqual(mime_check.parse(raw)["Subject"], "Tonight")

        def test_headers(self):
            _, message = self.assert_sent(self.run_script("headers", *self.server))
            for name, value in (("Reply-To", 'Desk <desk@bjork.example>'), ("Importance", "High"),
                                ("Disposition-Notification-To", "zoe@bjork.example"),
                                ("List-Unsubscribe",
                                 "<mailto:desk@bjork.example?subject=unsubscribe>"),
                                ("X-Campaign", "Midsummer")):
                self.assertEqual(message[name], value)

        def test_hundred(self):
            status, said = self.run_script("hundred", *self.server)
            *waiting, last = said.splitlines()
            self.assertEqual((status, last), (0, "100 of 100 messages sent."))
            self.assertTrue(waiting and all(line.endswith(" left") for line in waiting), said)
            self.assertEqual({envelope["to"][0] for envelope, _ in self.catcher.messages()},
                             {f"reader{i}@example.org" for i in range(1, 101)})

        def test_login(self):
            catcher, secret = self.relay("zoe@bjork.example", "secret pass")
            self.assert_logged_in(catcher, self.run_script("login", "127.0.0.1", catcher.port,
                                                           f"Z:{secret}"))

        def test_direct(self):  # with an address for which nobody is asked
            self.assertEqual(self.run_script("direct", "ann@", "host.example.com"),
                             (1, "Not sent (-1): Invalid address: domain can't be empty"))

    class JScript(Scripts, Examples):
        language = "js"


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
