"""quorvane-send --async: what arrives, what is said meanwhile, and how it is interrupted."""

import contextlib
import json
import re
import socket
import threading

from case import SIMPLE_ARGUMENTS, CatcherTest

LINE = r"\d+ sent, \d+ failed, \d+ queued(, [\d.]+/s(, \d+ \w+ left)?)?(, [\d.]+ of [\d.]+ MB)?"


@contextlib.contextmanager
def silent_server():
    """A server that says nothing: its port, and an event that is set when somebody has called."""
    called = threading.Event()
    connections = []

    def accept():
        with contextlib.suppress(OSError):
            while True:
                connections.append(listener.accept()[0])
                called.set()

    with socket.create_server(("127.0.0.1", 0)) as listener:
        thread = threading.Thread(target=accept)
        thread.start()
        try:
            yield listener.getsockname()[1], called
        finally:
            listener.shutdown(socket.SHUT_RDWR)
            thread.join()
            for connection in connections:
                connection.close()


class QueueTest(CatcherTest):
    def test_all_arrive_once(self):
        done = self.send(*SIMPLE_ARGUMENTS, "--async", "--count", 40, "--threads", 4)
        *progress, summary = done.stdout.splitlines()
        self.assertEqual(summary, "40 of 40 messages sent.")
        self.assertLess(len(progress), 12)
        self.assertGreater(len(progress), 0)
        for line in progress:
            self.assertRegex(line, rf"\A{LINE}\Z")
        envelopes = self.catcher.messages()
        self.assertEqual(len(envelopes), 40)
        self.assertEqual(len({raw for _, raw in envelopes}), 40, "each has a Message-ID of its own")

    def test_outcomes_as_json(self):
        done = self.send(*SIMPLE_ARGUMENTS, "--async", "--count", 5, "--json")
        outcomes = sorted((json.loads(line) for line in done.stdout.splitlines()),
                          key=lambda outcome: outcome["number"])
        self.assertEqual(outcomes, [{"number": number, "status": "sent", "code": 0, "text": ""}
                                    for number in range(1, 6)])
        self.assertEqual(self.send(*SIMPLE_ARGUMENTS, "--async", "--quiet").stdout, "")
        self.catcher.messages()

    def test_failures_are_told(self):
        with socket.socket() as unused:
            unused.bind(("127.0.0.1", 0))  # bound and not listening: refuses
            done = self.send(*SIMPLE_ARGUMENTS, "--async", "--count", 3, "--attempts", 1, status=1,
                             port=unused.getsockname()[1])
        self.assertEqual(done.stdout.splitlines()[-1], "0 of 3 messages sent.")
        self.assertEqual(sorted(re.findall(r"message (\d) not sent: -1: Could not connect", done.stderr)),
                         ["1", "2", "3"])

    def test_interruption_cancels_what_is_queued(self):
        with silent_server() as (port, called):
            terminal = self.client.on_terminal(
                "--server", f"127.0.0.1:{port}", *SIMPLE_ARGUMENTS, "--async", "--count", 2000,
                "--timeout", 3600, awaited="2000 cancelled.")
            self.assertTrue(called.wait(60))
            terminal.type(b"\x03")
            status, shown = terminal.finish()
        self.assertEqual(status, 1, shown)
        self.assertTrue(shown.endswith("\x1b[1;31mquorvane-send:\x1b[0m interrupted. 0 of 2000 "
                                       "sent, 0 failed, 2000 cancelled.\n"), shown)

    def test_terminal_shows_one_line_that_changes(self):
        summary = "\x1b[32m20 of 20 messages sent.\x1b[0m"
        status, shown = self.client.on_terminal(
            "--server", f"127.0.0.1:{self.port}", *SIMPLE_ARGUMENTS, "--async", "--count", 20,
            "--threads", 2, awaited=summary).finish()
        self.assertEqual(status, 0, shown)
        *lines, last = shown.split("\r")
        self.assertEqual(last.strip(), summary)
        self.assertNotIn("\n", "".join(lines))
        progress = [line.strip() for line in lines if line.strip()]
        self.assertGreater(len(progress), 3)
        for line in progress:
            self.assertRegex(line, rf"\A{LINE}\Z")
        self.assertEqual(len(self.catcher.messages()), 20)
