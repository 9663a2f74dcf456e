"""quorvane-send as its users meet it: help, manual page, completion, hints, colours, progress."""

import json
import os
import pty
import re
import select
import shutil
import socket
import subprocess
import time

import mime_check
from case import SAMPLE_ARGUMENTS, SIMPLE_ARGUMENTS, CatcherTest
from client import ROOT

MANUAL_PAGE = ROOT / "cli" / "quorvane-send.1"
COMPLETION = ROOT / "cli" / "completion"
SHELL_SECONDS = 30
# What bash would offer for the words of a command line, the last of which is being typed.
ASK_BASH = 'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _quorvane_send; ' \
           'printf "%s\\n" "${COMPREPLY[@]}"'


def read_until(terminal, awaited):
    """What comes until this does, or until it takes too long."""
    end = time.monotonic() + SHELL_SECONDS
    read = b""
    while awaited not in read and time.monotonic() < end:
        if select.select([terminal], [], [], 1)[0]:
            read += os.read(terminal, 4096)
    return read


class TerminalTest(CatcherTest):
    def options(self):
        """The names of all options."""
        return re.findall(r"^  (--[a-z-]+)", self.client.run("--help-all").stdout, re.MULTILINE)

    def on_terminal(self, *arguments, awaited, **variables):
        """The exit status, and what a terminal showed, in the end what is awaited."""
        return self.client.on_terminal(*arguments, awaited=awaited, **variables).finish()

    # -- Help ----------------------------------------------------------------------------------

    def test_help_fits_a_screen(self):
        short, full = (self.client.run(option).stdout for option in ("--help", "--help-all"))
        for text in (short, full):
            self.assertLess(max(map(len, text.splitlines())), 80)
        self.assertLess(len(short.splitlines()), 39)
        self.assertIn("Examples:\n  quorvane-send --server ", short)
        for option in re.findall(r"^  (--[a-z-]+)", short, re.MULTILINE):
            self.assertIn(option, self.options())

    def test_manual_page_tells_of_each_option(self):
        done = subprocess.run(["man", "--warnings", "-l", str(MANUAL_PAGE)], capture_output=True,
                              timeout=SHELL_SECONDS, stdin=subprocess.DEVNULL,
                              env={**os.environ, "LC_ALL": "C.UTF-8", "MANWIDTH": "80",
                                   "MAN_KEEP_FORMATTING": ""})
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        told = re.findall(r"^ {7}(--[a-z-]+)", done.stdout.decode(), re.MULTILINE)
        self.assertEqual(told, self.options())

    def bash(self, *words):
        done = subprocess.run(["bash", "-c", ASK_BASH, "bash", COMPLETION / "quorvane-send.bash",
                               "quorvane-send", *words], capture_output=True, text=True, check=True,
                              cwd=self.folder, timeout=SHELL_SECONDS, stdin=subprocess.DEVNULL)
        self.assertEqual(done.stderr, "")
        return sorted(done.stdout.splitlines())

    def test_bash_completes(self):
        self.file("a b.txt", "x")
        self.file("ab.txt", "x")
        self.assertEqual(self.bash("--"), sorted(self.options()))
        cases = [
            (["--he"], ["--header", "--helo", "--help", "--help-all"]),
            (["--ssl", "--us"], ["--user"]),
            (["--attach", "a"], ["a b.txt", "ab.txt"]),
            (["--password-file", "=", "ab"], ["ab.txt"]),
            (["--priority", ""], ["high", "low", "normal"]),
            (["--encoding", "="], ["7bit", "8bit", "base64", "default", "qp"]),
            (["--subject", ""], [""]),
        ]
        for words, offered in cases:
            with self.subTest(words=words):
                self.assertEqual(self.bash(*words), offered)

    def test_zsh_completes(self):
        text = (COMPLETION / "_quorvane-send").read_text()
        self.assertEqual(sorted(re.findall(r"(?:^ +'(?:\([^)]*\))?\*?)(--[a-z-]+)", text,
                                           re.MULTILINE)), sorted(self.options()))
        if not shutil.which("zsh"):
            self.skipTest("there is no zsh")
        own, other = pty.openpty()
        shell = subprocess.Popen(["zsh", "-f"], stdin=other, stdout=other, stderr=other,
                                 start_new_session=True, env={**os.environ, "TERM": "dumb"})
        os.close(other)
        try:
            # The quotes keep the echo of the command from being taken for its output.
            for typed, awaited in (
                    (f"PS1=; fpath=({COMPLETION} $fpath); autoload -Uz compinit; compinit -D -u; "
                     "echo rea''dy\n", b"ready\r\n"),
                    ("quorvane-send --pass\t", b"--password-file="),
                    ("\x15quorvane-send --priority=h\t", b"--priority=high")):
                os.write(own, typed.encode())
                self.assertIn(awaited, read_until(own, awaited))
        finally:
            os.close(own)  # which hangs up
            shell.wait(SHELL_SECONDS)

    # -- Hints and colours ---------------------------------------------------------------------

    def refused(self):
        """Arguments for a port that refuses, which stays reserved for the test."""
        unused = socket.socket()
        self.addCleanup(unused.close)
        unused.bind(("127.0.0.1", 0))
        return ["--server", f"127.0.0.1:{unused.getsockname()[1]}", *SIMPLE_ARGUMENTS,
                "--attempts", 1]

    def test_hints_stand_below_the_failure(self):
        done = self.client.run(*self.refused(), "--count", 3)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(re.findall(r"message (\d) not sent: .* connection refused\.\n", done.stderr),
                         ["1", "2", "3"])
        self.assertEqual(done.stderr.count("    hint: is the port right ("), 1)
        done = self.client.run(*self.refused(), "--verbose")
        self.assertRegex(done.stderr, r"(?s)message 1 is being sent\n.*message 1 was not sent\n"
                                      r"quorvane-send: not sent: -1: .*\n    hint: ")
        done = self.client.run("--server", "127.0.0.1:1", "--from", "a@example.org")
        self.assertEqual((done.returncode, done.stderr),
                         (2, "quorvane-send: Message must have at least one recipient\n"
                             "    hint: add --to, --cc or --bcc with an address.\n"))

    def test_colours_only_where_they_are_wanted(self):
        failing = self.refused()
        status, shown = self.on_terminal(*failing, awaited="Not sent.")
        self.assertEqual(status, 1, shown)
        self.assertIn("\x1b[1;31mquorvane-send:\x1b[0m not sent", shown)
        self.assertIn("\x1b[36mhint:\x1b[0m", shown)
        self.assertNotIn("\x1b", self.client.run(*failing).stderr)
        for variables in ({"NO_COLOR": "1"}, {"TERM": "dumb"}):
            with self.subTest(variables=variables):
                self.assertNotIn("\x1b", self.on_terminal(
                    *failing, awaited="Not sent.", **variables)[1])

    # -- Progress and steps --------------------------------------------------------------------

    def test_large_mail_shows_a_bar_on_a_terminal(self):
        large = self.file("large.bin", bytes(range(256)) * 20000)
        sending = ["--server", f"127.0.0.1:{self.port}", *SIMPLE_ARGUMENTS, "--attach", large]
        status, shown = self.on_terminal(*sending, awaited="\x1b[32mSent.\x1b[0m")
        self.assertEqual(status, 0, shown)
        bars = [line.strip() for line in shown.split("\r") if "[" in line and "%" in line]
        self.assertGreater(len(bars), 0)
        for bar in bars:
            self.assertRegex(bar, r"\A\[#*\.*\] \d+ %, [\d.]+ of 7.0 MB(, \d+ s left)?\Z")
        self.assertEqual(len(self.catcher.messages()), 1)

    def test_quiet_keeps_a_terminal_quiet(self):
        if self.client.windows:
            self.skipTest("Wine's console never ends without a word")
        large = self.file("large.bin", bytes(1_000_000))
        self.assertEqual(self.on_terminal("--server", f"127.0.0.1:{self.port}", *SIMPLE_ARGUMENTS,
                                          "--quiet", "--attach", large, awaited="-"), (0, ""))
        self.assertEqual(len(self.catcher.messages()), 1)

    def test_steps_and_times(self):
        large = self.file("large.bin", bytes(3_000_000))
        done = self.send(*SIMPLE_ARGUMENTS, "--verbose", "--json", "--attach", large)
        self.assertEqual(json.loads(done.stdout)["number"], None)
        lines = re.findall(r"^\[ *(\d+\.\d{3}) s\] (.*)$", done.stderr, re.MULTILINE)
        self.assertEqual(len(lines), len(done.stderr.splitlines()))
        times = [float(time) for time, _ in lines]
        self.assertEqual(times, sorted(times))
        told = "\n".join(what for _, what in lines)
        self.assertRegex(told, r"(?s)\Aquorvane-send [\d.]+, .*\nfrom a@example.org to 1 recipient, "
                               r"with 1 file .*\nthrough 127.0.0.1, port \d+, not encrypted\n.*"
                               r"message 1 is being sent\n.*message 1: \d+ % of 4.1 MB are out\n.*"
                               r"message 1 was sent\Z")
        self.assertEqual(len(self.catcher.messages()), 1)

    # -- Dry run -------------------------------------------------------------------------------

    def test_dry_run_prints_what_would_be_sent(self):
        done = self.client.run(*SAMPLE_ARGUMENTS, "--dry-run")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        envelope, raw = done.stdout.split("\n\n", 1)
        self.assertEqual(envelope.splitlines(),
                         ["MAIL FROM:<zoe@bjork.example>", "RCPT TO:<ann@example.org>",
                          "RCPT TO:<music@example.org>", "RCPT TO:<archive@bjork.example>"])
        self.assert_is_sample(raw.replace("\n", "\r\n").encode())
        done = self.client.run("--server", f"127.0.0.1:{self.port}", *SIMPLE_ARGUMENTS,
                               "--dry-run", "--json", "--text", "ü")
        caught = json.loads(done.stdout)
        self.assertEqual((caught["status"], caught["from"], caught["to"]),
                         ("composed", "a@example.org", ["b@example.org"]))
        self.assertIn("\r\n\r\n/A==\r\n", caught["message"])
        self.assertEqual(self.client.run("--dry-run", "--from", "a@example.org").returncode, 2)
        self.assertEqual(self.catcher.messages(), [])

    # -- Pictures ------------------------------------------------------------------------------

    def test_pictures_that_would_be_left_out(self):
        self.file("empty.png", "")
        (self.folder / "sub").mkdir()
        self.file("sub/full.png", "x")
        self.file("sub/empty.gif", "")
        for reference, fragment in (("empty.png", "is empty"), ("sub", "is a folder"),
                                    ("sub/empty.gif", "is empty"), ("sub\\empty.gif", "is empty"),
                                    (str(self.folder / "empty.png"), "is empty")):
            with self.subTest(reference=reference):
                page = self.file("page.html", f'<img src="sub/full.png"><img src="{reference}">')
                done = self.send(*SIMPLE_ARGUMENTS, "--html-file", page, status=2)
                self.assertIn(fragment, done.stderr)
        self.assertEqual(self.catcher.messages(), [])
