"""Mail that an Exim on the same machine keeps and brings to one of two relays behind one name."""

import os
import signal
import tempfile
import time
from pathlib import Path

import certificate
import exim
import name_server
from case import SAMPLE_ARGUMENTS, SIMPLE_ARGUMENTS, SendTest
from client import ROOT
from namespace import RESOLVER, Namespace, Unavailable

SPOOL = ROOT / "examples" / "exim" / "spool.conf"
NAME = "relay.example.com"
LOGIN = ("zoe@bjork.example", "secret")
RELAYS = ("127.0.1.1", "127.0.1.2")
ZONE = "".join(f"relay A {address}\n" for address in RELAYS)
DEADLINE_SECONDS = 60


class BeyondTest(SendTest):
    unavailable = None  # why the test can't run here

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="quorvane-beyond-")
        cls.addClassCleanup(folder.cleanup)
        scratch = Path(folder.name)
        scratch.chmod(0o711)
        try:
            if not name_server.NameServer.is_installed():
                raise Unavailable("NSD is not installed: scripts/setup real")
            network = Namespace(scratch)
            cls.addClassCleanup(network.stop)
            if "--user" in network.command or os.geteuid() != 0:
                raise Unavailable("Exim wants root and users of its own in the network")
        except Unavailable as reason:
            cls.unavailable = str(reason)
            return
        cls.addClassCleanup(name_server.NameServer(
            scratch / "names", network.command, [RESOLVER], {"example.com": ZONE}).stop)
        cls.relays = []
        files = certificate.make(scratch, NAME)
        for address in RELAYS:
            relay = exim.Exim(scratch / address, address, (587, 465), LOGIN, files, network.command)
            cls.addClassCleanup(relay.stop)
            relay.start()
            cls.relays.append(relay)
        cls.spool = exim.Daemon(scratch / "machine", network.command)
        cls.addClassCleanup(cls.spool.stop)
        cls.spool.configuration.write_text(
            f"spool_directory = {cls.spool.folder}/spool\nlog_file_path = {cls.spool.folder}/log/%s\n"
            f"pid_file_path = {cls.spool.folder}/exim.pid\n" +
            SPOOL.read_text().replace("/etc/ssl/certs/ca-certificates.crt", str(files[0])))
        if not cls.spool.start():
            raise RuntimeError("Exim did not start:\n" + cls.spool.log())
        cls.inside = cls.client.inside_network(network, cls.addClassCleanup)

    def setUp(self):
        if self.unavailable:
            self.skipTest(self.unavailable)
        super().setUp()

    def hand_over(self, *arguments):
        """The machine's own Exim takes it, whatever becomes of it."""
        done = self.inside.run("--server", "127.0.0.1", *arguments)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def arrived(self, count):
        """How many each relay got of so many messages, once all are there."""
        deadline = time.monotonic() + DEADLINE_SECONDS
        while True:
            numbers = [len(relay.messages()) for relay in self.relays]
            if sum(numbers) >= count:
                return numbers
            if time.monotonic() > deadline:
                self.fail(f"{numbers} of {count} messages arrived:\n{self.spool.log()}")
            time.sleep(0.1)

    def empty(self):
        for relay in self.relays:
            relay.empty()

    def test_spool_and_two_relays(self):
        first, second = self.relays
        with self.subTest("spread over both"):
            self.hand_over(*SIMPLE_ARGUMENTS, "--count", 24, "--async", "--threads", 10)
            numbers = self.arrived(24)
            self.assertEqual(sum(numbers), 24)
            self.assertTrue(all(numbers), numbers)
        with self.subTest("one is gone"):
            self.empty()
            first.stop()
            self.hand_over(*SIMPLE_ARGUMENTS, "--count", 6)
            self.assertEqual(self.arrived(6), [0, 6])
        with self.subTest("both are gone, and the machine's power with them"):
            self.empty()
            second.stop()
            self.hand_over(*SAMPLE_ARGUMENTS)
            self.spool.stop(signal.SIGKILL)
            self.assertTrue(self.spool.start())
            for relay in self.relays:
                relay.start()
            self.spool.run_queue()
            self.assertEqual(sum(self.arrived(1)), 1)
            [message] = first.messages() + second.messages()
            self.assert_is_sample(message.raw)
            self.assertIn("TLS1", message.received)
            self.assertIn("esmtpsa", message.received)
