"""How quorvane-send reads its command line, and what it says and sends then."""

import json
import os
import re
import socket

import mime_check
from case import SAMPLE_ARGUMENTS, SIMPLE_ARGUMENTS, CatcherTest


class CommandLineTest(CatcherTest):
    def tearDown(self):
        self.assertEqual(self.catcher.messages(), [], "a message that the test did not ask for")

    def caught(self, *arguments, stdin=None):
        """Sends and returns the envelope and the bytes of the one message."""
        self.send(*arguments, stdin=stdin)
        [(envelope, raw)] = self.catcher.messages()
        self.assert_well_formed(raw)
        return envelope, raw

    def header(self, raw):
        return mime_check.parse(raw)

    # -- Standard streams ----------------------------------------------------------------------

    def test_closed_streams_stay_out_of_the_mail(self):
        if self.client.windows:
            self.skipTest("Wine gives its programs streams of their own")
        large = self.file("large.bin", bytes(range(256)) * 4000)
        for streams in ("2>&-", ">&- 2>&-", "<&- >&- 2>&-"):
            with self.subTest(streams):
                shell = self.client.inside(["sh", "-c", f'exec "$0" "$@" {streams}'], {})
                arguments = [*SIMPLE_ARGUMENTS, "--verbose", "--attach", large]
                done = shell.run("--server", f"127.0.0.1:{self.port}", *arguments)
                self.assertEqual(done.returncode, 0)
                [(_, raw)] = self.catcher.messages()
                self.assert_well_formed(raw)
                [_, part] = mime_check.leaves(mime_check.parse(raw))
                self.assertEqual(part.content, large.read_bytes())
                refused = shell.run("--server", "127.0.0.1:1", *SIMPLE_ARGUMENTS, "--text", "-")
                self.assertEqual(refused.returncode, 2 if "<" in streams else 1)

    # -- Wrong use -----------------------------------------------------------------------------

    def test_wrong_use(self):
        empty = self.file("empty.txt", "")
        latin = self.file("latin.txt", b"Gr\xfc\xdfe")
        zero = self.file("zero.txt", b"a\0b")
        unquoted = self.file("unquoted.html", "<img src=a.png>")
        gone = self.file("gone.html", '<img src="gone.png">')
        foreign = self.file("foreign.html", '<img src="ü.png">')
        server = ["--server", "127.0.0.1:1"]
        simple = [*server, *SIMPLE_ARGUMENTS]
        cases = [
            ([], "--server"),
            (["--server", "", *SIMPLE_ARGUMENTS], "--server"),
            (server, "--from"),
            ([*server, "--from", "a@example.org"], "Message must have at least one recipient"),
            ([*server, "--from", "a", "--to", "b@example.org"], "'a' is no address"),
            ([*simple, "--cc", "Name <c@example.org"], "'Name <c@example.org' is no address"),
            ([*simple, "--cc", "c@exämple.org"], "beyond ASCII"),
            ([*simple, "--cc", "c@[127.0.0.1]"], "square brackets"),
            (["--server", "host:0", *SIMPLE_ARGUMENTS], "'0' is no port"),
            (["--server", "host:25x", *SIMPLE_ARGUMENTS], "'25x' is no port"),
            (["--server", ":25", *SIMPLE_ARGUMENTS], "names no mail server"),
            ([*simple, "--subject", "a", "--subject", "b"], "--subject"),
            ([*simple, "--subject"], "--subject"),
            ([*simple, "--surprise"], "--surprise"),
            ([*simple, "stray"], "stray"),
            ([*simple, "--encoding", "rot13"], "--encoding"),
            ([*simple, "--priority", "urgent"], "--priority"),
            ([*simple, "--timeout", "0"], "--timeout"),
            ([*simple, "--attempts", "x"], "--attempts"),
            ([*simple, "--count", "0"], "--count"),
            ([*simple, "--threads", "2"], "--async"),
            ([*simple, "--async", "--threads", "0"], "--threads"),
            ([*server, "--async", "--from", "a@example.org"], "at least one recipient"),
            ([*simple, "--header", "no colon"], "no header field"),
            ([*simple, "--header", ": value"], "no header field"),
            ([*simple, "--header", "X-A: ü"], "encoded words"),
            ([*simple, "--header", "X-A: 1", "--header", "X-A: 2"], "given twice"),
            ([*simple, "--text-file", ""], "--text-file has an empty value"),
            ([*simple, "--user", "u", "--password-file", ""], "--password-file has an empty value"),
            ([*simple, "--body-file", zero], "--encoding base64"),
            ([*simple, "--attach", "{}"], "Couldn't open attachment file "),
            ([*simple, "--text", "a", "--text-file", latin], "--text"),
            ([*simple, "--html", "a", "--text", "b", "--alt", "c"], "--alt"),
            ([*simple, "--text", "-", "--alt", "-"], "only once"),
            ([*simple, "--text-file", latin], "not UTF-8"),
            ([*simple, "--text-file", zero], "NUL"),
            ([*simple, "--text-file", self.folder], "is a folder"),
            ([*simple, "--text-file", self.folder / "none"], "Can't read"),
            ([*simple, "--html-file", unquoted], "malformed HTML file"),
            ([*simple, "--html-file", gone], "Couldn't open attachment file "),
            ([*simple, "--html-file", foreign], "beyond ASCII"),
            ([*simple, "--body-file", self.folder / "none"], "Can't read"),
            ([*simple, "--attach", self.folder / "none"], "Couldn't open attachment file "),
            ([*simple, "--attach", self.folder], "is a folder"),
            ([*simple, "--attach", empty], "is empty"),
            ([*simple, "--attach", ",name=x"], "names no file"),
            ([*simple, "--attach", f"{latin},name="], "name="),
            ([*simple, "--inline", latin], "cid="),
            ([*simple, "--attach", f"{latin},cid=x"], "--inline"),
            ([*simple, "--charset", "iso-8859-1", "--text", "5 €"], "iso-8859-1"),
            ([*simple, "--charset", "us-ascii", "--text", "ü"], "us-ascii"),
            ([*simple, "--charset", "koi8-r", "--subject", "Ж"], "koi8-r"),
            ([*simple, "--user", "u"], "--password-file"),
            ([*simple, "--password-file", latin], "--user"),
            ([*simple, "--direct"], "--server"),
            (["--direct", "--timeout", "5", *SIMPLE_ARGUMENTS], "--timeout"),
        ]
        if not self.client.windows:
            pipe = self.folder / "pipe"
            os.mkfifo(pipe)  # without a writer: opening it would wait for ever
            self.file("a\\b.txt", "named with a backslash")
            cases += [
                ([*simple, "--attach", pipe], "no regular file"),
                ([*simple, "--body-file", pipe], "no regular file"),
                ([*simple, "--attach", self.folder / "a\\b.txt"], "holds a backslash"),
                ([*simple, "--attach", "C:/etc"], "begins like a drive"),
                ([*simple, "--html-file", self.folder / "a\\b.txt"], "holds a backslash"),
            ]
        for arguments, fragment in self.some(cases, 6):
            with self.subTest(arguments=arguments):
                done = self.client.run(*arguments)
                self.assertEqual(done.returncode, 2, done.stdout + done.stderr)
                self.assertEqual(done.stdout, "")
                self.assertIn(fragment, done.stderr)

    def test_information(self):
        done = self.client.run("--version")
        self.assertEqual(done.returncode, 0)
        self.assertRegex(done.stdout, r"\Aquorvane-send \d+\.\d+\.\d+\n\Z")
        done = self.client.run("--help-all")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        for option in ("--server", "--direct", "--from", "--to", "--cc", "--bcc", "--reply-to",
                       "--subject", "--text", "--text-file", "--html", "--html-file",
                       "--no-import", "--alt",
                       "--charset", "--alt-charset", "--encoding", "--attach", "--inline",
                       "--header", "--priority", "--read-receipt", "--message-id", "--body-file",
                       "--user", "--password-file", "--spa", "--ssl", "--timeout", "--attempts",
                       "--helo", "--async", "--threads", "--count", "--json", "--quiet",
                       "--verbose", "--dry-run", "--version", "--help", "--help-all"):
            self.assertRegex(done.stdout, rf"(?m)^ +{option}\b")

    # -- What it says --------------------------------------------------------------------------

    def test_success(self):
        self.assertEqual(self.send(*SIMPLE_ARGUMENTS).stdout, "Sent.\n")
        self.assertEqual(self.send(*SIMPLE_ARGUMENTS, "--quiet").stdout, "")
        done = self.send(*SIMPLE_ARGUMENTS, "--json")
        self.assertEqual(done.stdout, '{"number":null,"status":"sent","code":0,"text":""}\n')
        self.assertEqual(len(self.catcher.messages()), 3)

    def test_count(self):
        done = self.send(*SIMPLE_ARGUMENTS, "--count", 3, "--json")
        self.assertEqual([json.loads(line)["status"] for line in done.stdout.splitlines()],
                         ["sent"] * 3)
        identifiers = {self.header(raw)["Message-ID"] for _, raw in self.catcher.messages()}
        self.assertEqual(len(identifiers), 3)

    def test_unreachable_server(self):
        with socket.socket() as unused:
            unused.bind(("127.0.0.1", 0))  # bound and not listening: refuses
            port = unused.getsockname()[1]
            done = self.client.run("--server", f"127.0.0.1:{port}", *SIMPLE_ARGUMENTS,
                                   "--attempts", 1, "--json")
        self.assertEqual(done.returncode, 1, done.stderr)
        outcome = json.loads(done.stdout)
        self.assertEqual((outcome["status"], outcome["code"]), ("failed", -1))
        self.assertNotEqual(outcome["text"], "")
        self.assertIn(f"-1: {outcome['text']}", done.stderr)

    def test_line_breaks_never_start_a_command(self):
        for break_ in self.some(("\r\n", "\n", "\r"), 3):
            for option in ("--from", "--to"):
                with self.subTest(option=option, break_=break_):
                    bad = f"x@example.org>{break_}RCPT TO:<victim@example.org"
                    arguments = dict(zip(SIMPLE_ARGUMENTS[::2], SIMPLE_ARGUMENTS[1::2]))
                    arguments[option] = bad
                    done = self.client.run("--server", f"127.0.0.1:{self.port}",
                                           *(text for pair in arguments.items() for text in pair))
                    self.assertIn(done.returncode, (1, 2))
        _, raw = self.caught(*SIMPLE_ARGUMENTS, "--subject", "a\r\nX-Evil: b", "--header",
                             "X-Note: c\r\nX-Evil: d")
        self.assertNotIn("X-Evil", self.header(raw))

    def test_password_file_that_others_can_read(self):
        password = self.file("password", "secret\n")
        password.chmod(0o644)
        login = ["--user", "u", "--password-file", password]
        done = self.send(*SIMPLE_ARGUMENTS, *login, status=2)
        self.assertIn("Others can read the password file", done.stderr)
        self.assertIn("icacls" if self.client.windows else f"chmod 600 '{password}'", done.stderr)
        self.assertNotIn("secret", done.stdout + done.stderr)
        password.chmod(0o600)
        self.caught(*SIMPLE_ARGUMENTS, *login)

    # -- What it sends -------------------------------------------------------------------------

    def test_sample(self):
        envelope, raw = self.caught(*SAMPLE_ARGUMENTS)
        self.assert_is_sample(raw)
        self.assertEqual(envelope["from"], "zoe@bjork.example")
        self.assertEqual(envelope["to"],
                         ["ann@example.org", "music@example.org", "archive@bjork.example"])

    def test_header(self):
        envelope, raw = self.caught(
            "--from", "Doe, John <john@example.org>", "--to", '"Miller, Ann" <ann@example.org>',
            "--to", "bob@example.org", "--cc", "Zoë <zoe@example.org>",
            "--reply-to", "desk@example.org", "--subject", "Hello = there",
            "--priority", "high", "--read-receipt", "--message-id", "<one@example.org>",
            "--header", "X-Note: a: b", "--header=X-Empty:", "--helo", "sender.example.org")
        header = self.header(raw)
        expected = {
            "From": '"Doe, John" <john@example.org>',
            "To": '"Miller, Ann" <ann@example.org>,\r\n\t<bob@example.org>',
            "Reply-To": "<desk@example.org>",
            "Subject": "Hello = there",
            "Message-ID": "<one@example.org>",
            "X-Priority": "1 (Highest)",
            "Disposition-Notification-To": "john@example.org",
            "X-Note": "a: b",
            "X-Empty": "",
        }
        self.assertEqual({name: header[name] for name in expected}, expected)
        self.assertEqual(mime_check.decode_words(header["Cc"]), "Zoë <zoe@example.org>")
        self.assertEqual(envelope["helo"], "sender.example.org")

    def test_pictures_of_an_html_file(self):
        (self.folder / "sub").mkdir()
        picture = self.file("sub/a.png", b"picture")
        html = ('<p>Zoë ÁÍÏÐÝ 5 € Ж 😀</p>\r\n<img src="{}"><img src="http://x/a.png">'
                '<script src="SUB/A.PNG"></script>')
        given = "\ufeff" + html.format("sub/a.png").replace("\r\n", "\n")
        page = self.file("page.html", given)
        _, raw = self.caught(*SIMPLE_ARGUMENTS, "--html-file", page)
        body, part = mime_check.leaves(mime_check.parse(raw))
        self.assert_content(body, html.format("cid:i0000").replace("SUB/A.PNG", "cid:i0000"))
        self.assertEqual((part.disposition, part.content_id, part.name, part.content),
                         ("inline", "i0000", "a.png", b"picture"))
        for arguments, stdin in ((["--html-file", page, "--no-import"], None),
                                 (["--html-file", "-"], given.encode()),
                                 (["--html-file", page, "--inline", f"{picture},cid=x"], None)):
            with self.subTest(arguments=arguments):
                _, raw = self.caught(*SIMPLE_ARGUMENTS, *arguments, stdin=stdin)
                self.assert_content(mime_check.leaves(mime_check.parse(raw))[0],
                                    html.format("sub/a.png"))

    def test_line_ends_become_those_of_mail(self):
        for given in ("a\nb\n\nc", "a\r\nb\r\n\r\nc", "a\rb\r\rc"):
            with self.subTest(given=given):
                _, raw = self.caught(*SIMPLE_ARGUMENTS, "--text", "-", stdin=given.encode())
                self.assert_text(raw, "a\r\nb\r\n\r\nc")

    def test_where_text_comes_from(self):
        path = self.file("text.txt", b"\xef\xbb\xbfGr\xc3\xbc\xc3\x9fe")
        sources = {
            "argument": ["--text", "Grüße"],
            "argument with equals sign": ["--text=Grüße"],
            "file with byte-order mark": ["--text-file", path],
            "standard input": ["--text", "-"],
            "standard input as file": ["--text-file", "-"],
        }
        for name, arguments in sources.items():
            with self.subTest(source=name):
                _, raw = self.caught(*SIMPLE_ARGUMENTS, *arguments, stdin="Grüße".encode())
                self.assert_text(raw, "Grüße")
        _, raw = self.caught(*SIMPLE_ARGUMENTS, "--subject=", "--text", "--x=y")
        self.assert_text(raw, "--x=y")
        self.assertNotIn("Subject", self.header(raw))

    def test_text_beside_html(self):
        for arguments in (["--html", "<p>ü", "--text", "ü"], ["--html", "<p>ü", "--alt", "ü"]):
            with self.subTest(arguments=arguments):
                _, raw = self.caught(*SIMPLE_ARGUMENTS, *arguments)
                parts = mime_check.leaves(mime_check.parse(raw))
                self.assertEqual([(part.type, part.content.decode(part.charset)) for part in parts],
                                 [("text/plain", "ü"), ("text/html", "<p>ü")])

    def test_character_sets(self):
        utf8 = self.file("page.html", "<p>Ж ü</p>\r\n")
        cases = [
            (["--text", "ü"], "iso-8859-1", "ü"),
            (["--text", "Ж"], "utf-8", "Ж"),
            (["--text", "ü", "--charset", "UTF-8"], "utf-8", "ü"),
            (["--text", "ü", "--charset", "iso-8859-1"], "iso-8859-1", "ü"),
            (["--text", "ü", "--charset", "windows-1252"], "windows-1252", "ü"),
            (["--body-file", utf8], "utf-8", "<p>Ж ü</p>\r\n"),
            (["--body-file", utf8, "--charset", "UTF-8"], "utf-8", "<p>Ж ü</p>\r\n"),
        ]
        for arguments, charset, text in cases:
            with self.subTest(arguments=arguments):
                _, raw = self.caught(*SIMPLE_ARGUMENTS, *arguments, "--subject", "Grüße")
                message = mime_check.parse(raw)
                self.assertEqual(mime_check.decode_words(message["Subject"]), "Grüße")
                [part] = mime_check.leaves(message)
                self.assertEqual(part.charset, charset)
                self.assert_content(part, text)
        _, raw = self.caught(*SIMPLE_ARGUMENTS, "--body-file", utf8, "--subject", "Ж",
                             "--attach", f"{utf8},name=Ж.html,type=text/html", "--alt", "Ж")
        message = mime_check.parse(raw)
        self.assertEqual(mime_check.decode_words(message["Subject"]), "Ж")
        self.assertEqual([(part.name, part.content.decode(part.charset))
                          for part in mime_check.leaves(message)],
                         [("", "Ж"), ("", "<p>Ж ü</p>\r\n"), ("Ж.html", "<p>Ж ü</p>\r\n")])

    def test_names_and_types_of_files(self):
        plain = self.file("plain.txt", "x")
        commas = self.file("a, b,c.txt", "x")
        other = self.file("Übersicht Ж.csv", "x")
        cases = [
            (plain, "plain.txt", None),
            (f"{plain},name=Menü, à la carte.txt", "Menü, à la carte.txt", None),
            (f"{plain},type=text/csv,name=b.csv", "b.csv", "text/csv"),
            (f"{commas},type=application/x-a", "a, b,c.txt", "application/x-a"),
            (other, "Übersicht Ж.csv", None),
        ]
        for argument, name, type_ in cases:
            with self.subTest(argument=argument):
                _, raw = self.caught(*SIMPLE_ARGUMENTS, "--attach", argument)
                part = mime_check.leaves(mime_check.parse(raw))[-1]
                self.assertEqual((part.disposition, part.name, part.content),
                                 ("attachment", name, b"x"))
                if type_:
                    self.assertEqual(part.type, type_)
                if part.type.startswith("text/"):
                    self.assertEqual(part.charset, "utf-8")
        _, raw = self.caught(*SIMPLE_ARGUMENTS, "--attach",
                             f"{plain},type=text/plain; charset=iso-8859-2")
        part = mime_check.leaves(mime_check.parse(raw))[-1]
        self.assertEqual((part.type, part.charset), ("text/plain", "iso-8859-2"))

    def test_each_option_takes_one_value(self):
        # Lists don't swallow what follows, and brackets in values are nothing special.
        note = self.file("[note]", "x")
        envelope, raw = self.caught("--to", "[team]<b@example.org>", "--from", "a@example.org",
                                    "--header", "X-List: [a,b]", "--attach", note)
        self.assertEqual(envelope["to"], ["b@example.org"])
        self.assertEqual(self.header(raw)["X-List"], "[a,b]")
        self.assertTrue(re.search(r'filename="\[note\]"', raw.decode("ascii")))
