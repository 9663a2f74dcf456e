"""Encryption with a second implementation as the server: what goes through, and what each failure
is called."""

import json
import subprocess
import tempfile
from pathlib import Path

import certificate
from case import SIMPLE_ARGUMENTS, SendTest

# Debian's Python runs it, whose ssl still knows the old versions.
PROGRAM = Path(__file__).resolve().parents[1] / "servers" / "tls_peer.py"

SILENT = "Cannot negotiate secure connection, no response from the server"
CLOSED = "Mail server 127.0.0.1 closed connection unexpectedly"
CLOSED_IN_HANDSHAKE = "Remote host closed connection unexpectedly"
RESET = "Connection to mail server 127.0.0.1 was forcibly closed by the remote server."
NEGOTIATION = ("Cannot negotiate secure connection with mail server 127.0.0.1, "
               "InitializeSecurityContext error 0x")


class Peer:
    def __init__(self, mood, files, step):
        self._process = subprocess.Popen(
            ["/usr/bin/python3", "-W", "ignore", str(PROGRAM), mood, *map(str, files),
             "--step", str(step)],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        self.port = int(self._process.stdout.readline())

    def stop(self):
        """The lines about the messages that it took."""
        self._process.terminate()
        lines = self._process.stdout.read().split()
        self._process.stdout.close()
        self._process.wait(10)
        return lines


class TlsTest(SendTest):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="quorvane-tls-")
        cls.addClassCleanup(folder.cleanup)
        cls.files = certificate.make(Path(folder.name))

    def send_to(self, mood, *arguments, step=1):
        """The outcomes of a send, and what the peer says of its messages."""
        peer = Peer(mood, self.files, step)
        try:
            done = self.client.run("--server", f"127.0.0.1:{peer.port}", *SIMPLE_ARGUMENTS, "--ssl",
                                   "--attempts", 1, "--json", *arguments)
        finally:
            took = peer.stop()
        return [json.loads(line) for line in done.stdout.splitlines()], took

    def test_versions(self):
        for version, name in (("1.0", "TLSv1"), ("1.1", "TLSv1.1"), ("1.2", "TLSv1.2")):
            with self.subTest(version=version):
                [outcome], took = self.send_to(version)
                self.assertEqual((outcome["code"], took), (0, [name]))

    def test_a_long_message(self):
        text = self.file("long.txt", "all work and no play\n" * 50_000)
        for version in ("1.0", "1.1", "1.2"):
            with self.subTest(version=version):
                [outcome], took = self.send_to(version, "--text-file", text)
                self.assertEqual((outcome["code"], len(took)), (0, 1), outcome)

    def test_clear_text_instead(self):
        [outcome], took = self.send_to("clear")
        self.assertEqual((outcome["code"], took), (0, ["clear"]))

    def test_failures(self):
        cases = {
            # Windows, and Linux with it; Wine.
            "1.3": (NEGOTIATION + "80090302", NEGOTIATION + "80090304"),
            "closes": (CLOSED_IN_HANDSHAKE,),
            "silent": (SILENT,),
            # A reset can look like a close.
            "resets": (RESET, CLOSED_IN_HANDSHAKE),
            # Wine takes it for an empty record: the close of the connection comes after it.
            "farewell": (CLOSED, "Mail server 127.0.0.1 did not reply within specified timeout to "
                                 "the following command: EHLO"),
        }
        for mood, texts in cases.items():
            with self.subTest(mood=mood):
                [outcome], took = self.send_to(mood, "--timeout", 1, "--helo", "client")
                self.assertEqual((outcome["code"], took), (-1, []))
                self.assertTrue(outcome["text"].startswith(texts), outcome["text"])

    def spoil(self, fault):
        """Texts of sends whose handshake goes wrong at many of its bytes, one after the other."""
        step = 13 if self.client.windows else 3  # the tests of the session try each byte
        count = 1400 // step
        outcomes, took = self.send_to(fault, "--count", count, "--timeout", 1, step=step)
        self.assertEqual(len(outcomes), count)
        texts = [outcome["text"] for outcome in outcomes if outcome["code"] != 0]
        self.assertGreater(len(texts), 1000 // step)
        self.assertEqual(took, ["TLSv1.2"] * (count - len(texts)))
        return texts

    def test_handshake_cut(self):
        self.assertEqual(set(self.spoil("cut")), {CLOSED_IN_HANDSHAKE})

    def test_handshake_changed(self):
        expected = (SILENT, CLOSED_IN_HANDSHAKE, NEGOTIATION + "8009")
        for text in self.spoil("change"):
            self.assertTrue(text.startswith(expected), text)
