"""Real mail through Exim: what it stored is what was meant, and what it refused is told."""

import base64
import json
import re
import tempfile

import exim
import mime_check
from case import SAMPLE_ARGUMENTS, SIMPLE_ARGUMENTS, SendTest
from mail_catcher import Catcher


def comparable(raw):
    """The message without what differs from one composition to the next."""
    raw = re.sub(rb"MessagePart_(\d)[0-9A-F]{8}_[0-9A-F]{8}", rb"MessagePart_\1", raw)
    return re.sub(rb"\r\nDate: [^\r]*", b"\r\nDate:", raw)


class RelayTest(SendTest):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="quorvane-exim-")
        cls.addClassCleanup(folder.cleanup)
        cls.server = exim.Exim(folder.name)
        cls.addClassCleanup(cls.server.stop)
        cls.server.start()
        cls.port = cls.server.port

    def setUp(self):
        super().setUp()
        self.server.empty()

    def deliver(self, *arguments, stdin=None):
        self.server.empty()
        self.send(*arguments, stdin=stdin)
        return self.server.wait_for_message()

    def assert_nothing_delivered(self):
        # A later message has arrived, so an earlier one would have.
        self.send(*SIMPLE_ARGUMENTS, "--subject", "sentinel")
        self.assertIn(b"sentinel", self.server.wait_for_message().raw)

    def test_sample(self):
        message = self.deliver(*SAMPLE_ARGUMENTS)
        self.assert_is_sample(message.raw)
        self.assertEqual(message.sender, "zoe@bjork.example")

    def test_bcc_reaches_its_recipient_and_shows_nowhere(self):
        message = self.deliver(*SAMPLE_ARGUMENTS)
        self.assertEqual(sorted(message.recipients),
                         ["ann@example.org", "archive@bjork.example", "music@example.org"])
        self.assertNotIn(b"archive@", message.raw)
        self.assertNotIn(b"bcc", message.raw.lower())

    def test_exim_and_the_catcher_get_the_same_bytes(self):
        arguments = [*SAMPLE_ARGUMENTS, "--message-id", "same@bjork.example"]
        stored = self.deliver(*arguments)
        catcher = Catcher(self.folder / "caught")
        self.addCleanup(catcher.stop)
        done = self.client.run("--server", f"127.0.0.1:{catcher.port}", *arguments)
        self.assertEqual(done.returncode, 0, done.stderr)
        [(_, caught)] = catcher.messages()
        self.assertEqual(comparable(stored.raw), comparable(caught))

    def test_refused_recipient(self):
        done = self.send(*SIMPLE_ARGUMENTS, "--cc", f"{exim.REFUSED}@example.org", "--json",
                         status=1)
        outcome = json.loads(done.stdout)
        self.assertEqual(outcome, {"number": None, "status": "failed", "code": 550,
                                   "text": f"550 {exim.REFUSAL}"})
        self.assertIn("550", done.stderr)
        self.assertIn(exim.REFUSAL, done.stderr)
        self.assert_nothing_delivered()

    def test_message_above_the_size_limit(self):
        big = self.file("big.bin", b"\xA5" * exim.SIZE_LIMIT)
        done = self.send(*SIMPLE_ARGUMENTS, "--attach", big, "--json", status=1)
        outcome = json.loads(done.stdout)
        self.assertEqual((outcome["status"], outcome["code"]), ("failed", 552))
        self.assertIn("size", outcome["text"])
        self.assert_nothing_delivered()

    def test_attachments_of_awkward_sizes_and_bytes(self):
        every_byte = bytes(range(256))
        for size in self.some((1, 2, 3, 56, 57, 58, 4095, 4096, 65537), 4):
            with self.subTest(size=size):
                content = (every_byte * (size // 256 + 1))[:size]
                path = self.file("data.bin", content)
                message = self.deliver(*SIMPLE_ARGUMENTS, "--attach", path)
                self.assert_well_formed(message.raw)
                parts = mime_check.leaves(mime_check.parse(message.raw))
                self.assertEqual(parts[-1].content, content)

    def test_texts_survive_every_encoding(self):
        ascii_texts = {
            "plain": "Hello\n",
            "nothing": "",
            "no line end": "Hello",
            "dots": ".\n..\n.a\n...\nb.\n.",
            "blank at line ends": "a \nb\t\n\n\nc ",
            "envelope-like": "From here\n>From there\nRCPT TO: <x@example.org>\n",
            "equals": "a=b =3D =\n=\n",
        }
        long_texts = {"long line": "x" * 5000 + "\n" + "words and more words " * 300 + "\n"}
        other_texts = {"latin": "Grüße aus Köln\n.ü\n", "wide": "Ελλάδα €5 – 😀\n"}
        either = ["default", "qp", "base64"]
        cases = [(name, text, encoding) for texts, encodings in (
            (ascii_texts, [*either, "7bit", "8bit"]), (long_texts, either),
            (other_texts, [*either, "8bit"])) for name, text in texts.items()
            for encoding in encodings]
        for name, text, encoding in self.some(cases, 5):
            with self.subTest(text=name, encoding=encoding):
                message = self.deliver(*SIMPLE_ARGUMENTS, "--text", "-", "--encoding", encoding,
                                       stdin=text.encode())
                self.assert_text(message.raw, text.replace("\n", "\r\n"))

    def login_as(self, user, password):
        path = self.file("password", password + "\n")
        path.chmod(0o600)
        return ["--user", user, "--password-file", path]

    def test_login(self):
        for mechanism, arguments in (("login", self.login_as(exim.USER, exim.PASSWORD)),
                                     ("ntlm", [*self.login_as(exim.NTLM_USER, exim.PASSWORD),
                                               "--spa"])):
            with self.subTest(mechanism=mechanism):
                message = self.deliver(*SIMPLE_ARGUMENTS, *arguments)
                self.assertIn("esmtpa", message.received)  # Exim's word for an authenticated session
                self.assertIn(f"A={mechanism}:", self.server.log())

    def test_encrypted(self):
        login = self.login_as(exim.USER, exim.PASSWORD)
        for way, port in (("starttls", self.server.port), ("start", self.server.tls_port)):
            with self.subTest(way=way):
                self.server.empty()
                self.send(*SAMPLE_ARGUMENTS, *login, "--ssl", port=port)
                message = self.server.wait_for_message()
                self.assert_is_sample(message.raw)
                self.assertIn("esmtpsa", message.received)  # encrypted and authenticated
                self.assertIn("TLS1.2", message.received)

    def test_login_refused(self):
        wrong = "wrong-password"
        for user, spa, text in (
                (exim.USER, [], "Authentication failed, invalid username or password"),
                (exim.NTLM_USER, ["--spa"], "535 Incorrect authentication data")):
            with self.subTest(user=user):
                done = self.send(*SIMPLE_ARGUMENTS, *self.login_as(user, wrong), *spa, "--json",
                                 status=1)
                outcome = json.loads(done.stdout)
                self.assertEqual((outcome["code"], outcome["text"]), (535, text))
                for secret in (wrong, base64.b64encode(wrong.encode()).decode()):
                    self.assertNotIn(secret, done.stdout + done.stderr)
