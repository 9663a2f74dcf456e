"""Direct delivery in a network of the test's own: its DNS servers, and mail servers on port 25."""

import concurrent.futures
import json
import os
import subprocess
import tempfile
from pathlib import Path

import name_server
from case import SendTest
from client import ROOT
from mail_catcher import Catcher
from namespace import PUBLIC_RESOLVERS, RESOLVER, Namespace, Unavailable

BAD_RESOLVER = "127.0.0.54"
# Where mail servers listen; at DEAD nobody does.
MX1, MX2, MX3, DEAD = "127.0.1.1", "127.0.1.2", "127.0.1.3", "127.0.1.99"

ZONE = f"""
mx1 A {MX1}
mx2 A {MX2}
mx3 A {MX3}
dead A {DEAD}
one MX 10 mx1
two MX 10 mx2
order MX 20 mx3
order MX 10 mx1
order MX 10 mx2
last MX 20 gone3
last MX 10 gone1
last MX 10 gone2
first-dead MX 20 mx3
first-dead MX 10 dead
first-dead MX 10 mx2
all-dead MX 10 dead
address-only A {MX1}
alias CNAME one
alias-of-address CNAME address-only
null MX 0 .
null-among-others MX 0 .
null-among-others MX 10 mx1
""" + "".join(
    # The hundredth is alive, in one domain; the one behind it, in the other.
    f"{domain} MX {10 * i} {'mx1' if i == alive else f'gone{i}-with-a-long-name'}\n"
    for domain, alive in (("hundred", 100), ("too-many-dead", 101)) for i in range(1, alive + 1))

EXAMPLE_ZONE = f"@ MX 10 mx1\nmx1 A {MX1}\n"

# What only the public resolvers know.
PUBLIC_ZONE = f"""
mx1 A {MX1}
public MX 10 mx1
*.bad MX 10 mx1
"""

FAULTS = ("loop", "long-loop", "outside", "cut", "no-name", "missing-records", "garbage",
          "two-bytes", "wrong-identifier", "wrong-question", "silent", "closes", "stalls")


class DirectTest(SendTest):
    unavailable = None  # why the tests can't run here

    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="quorvane-direct-")
        cls.addClassCleanup(folder.cleanup)
        scratch = Path(folder.name)
        try:
            if not name_server.NameServer.is_installed():
                raise Unavailable("NSD is not installed: scripts/setup real")
            cls.network = Namespace(scratch)
        except Unavailable as reason:
            cls.unavailable = str(reason)
            return
        cls.addClassCleanup(cls.network.stop)
        command = cls.network.command
        broken = {"broken.test": None}
        for name, addresses, zones in (("resolver", [RESOLVER],
                                        {"test": ZONE, "example.org": EXAMPLE_ZONE, **broken}),
                                       ("public", PUBLIC_RESOLVERS,
                                        {"test": PUBLIC_ZONE, **broken})):
            server = name_server.NameServer(scratch / name, command, addresses, zones)
            cls.addClassCleanup(server.stop)
        cls.catcher = Catcher(scratch / "caught", "--port=25", f"--host={MX1}", f"--host={MX2}",
                              f"--host={MX3}", command=command)
        cls.addClassCleanup(cls.catcher.stop)
        cls.inside = cls.client.inside_network(cls.network, cls.addClassCleanup)

    def setUp(self):
        if self.unavailable:
            self.skipTest(self.unavailable)
        super().setUp()

    def direct(self, *recipients, status=0, options=()):
        """Sends to the recipients and returns the outcome."""
        to = [word for address in recipients for word in ("--to", address)]
        done = self.inside.run("--direct", "--from", "sender@example.test", *to, "--json", *options)
        self.assertEqual(done.returncode, status, done.stdout + done.stderr)
        return json.loads(done.stdout)

    def delivered(self):
        """Who took a message since the last call, and for whom."""
        return [(envelope["server"], envelope["to"]) for envelope, _ in self.catcher.messages()]

    def assert_delivered(self, domain, server):
        self.assertEqual(self.direct(f"you@{domain}")["code"], 0)
        self.assertEqual(self.delivered(), [(server, [f"you@{domain}"])])

    def assert_not_delivered(self, domain, text):
        outcome = self.direct(f"you@{domain}", status=1)
        self.assertEqual((outcome["code"], outcome["text"]), (-1, text))
        self.assertEqual(self.delivered(), [])

    def failed_lookup(self, domain, words, wine_number):
        # Wine's DNS client knows fewer kinds of failure, and has no texts for them.
        words = f"DNS error {wine_number}" if self.client.windows else words + "\r\n"
        return f"Couldn't find mail server for domain '{domain}' - {words}"

    def test_example(self):
        if self.client.windows:
            return  # there is no shell
        path = {**os.environ, "PATH": f"{self.client.program.parent}:{os.environ['PATH']}"}
        done = subprocess.run([*self.network.command, ROOT / "examples" / "direct.sh"], env=path,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stdout), (0, "Sent.\n"), done.stderr)
        self.assertEqual(self.delivered(), [(MX1, ["ann@example.org"])])

    def test_exchangers_are_tried_in_the_order_of_their_preference(self):
        self.assert_delivered("order.test", MX1)
        self.assert_delivered("first-dead.test", MX2)
        self.assert_not_delivered("last.test", "Unable to resolve hostname gone3.test.")
        self.assert_not_delivered(
            "all-dead.test", "Could not connect to mail server dead.test, connection refused.")

    def test_domains_without_an_exchanger(self):
        no_records = self.failed_lookup("address-only.test", "DNS name does not exist.", 9003)
        self.assert_not_delivered("address-only.test", no_records)
        self.assert_not_delivered(
            "unknown.test", self.failed_lookup("unknown.test", "DNS name does not exist.", 9003))
        self.assert_not_delivered(
            "you.broken.test", self.failed_lookup("you.broken.test", "DNS server failure.", 9002))

    def test_alias(self):
        self.assert_delivered("alias.test", MX1)
        self.assert_not_delivered(
            "alias-of-address.test",
            "Domain 'alias-of-address.test' doesn't have mail server configured in DNS")

    def test_null_exchanger(self):
        self.assert_not_delivered("null.test", "Domain 'null.test' doesn't accept mail")
        self.assert_delivered("null-among-others.test", MX1)

    # Each answer is too long for a datagram.
    def test_hundred_exchangers(self):
        self.assert_delivered("hundred.test", MX1)
        self.assert_not_delivered("too-many-dead.test",
                                  "Unable to resolve hostname gone100-with-a-long-name.test.")

    def test_public_resolvers_are_asked_when_the_own_one_fails(self):
        self.assert_delivered("public.test", MX1)
        # What they are asked leaves the others' look-ups alone: the name of this domain's
        # exchanger is known to the own resolver only.
        self.assertEqual(self.direct("a@public.test", "b@two.test")["code"], 0)
        self.assertEqual(self.delivered(), [(MX1, ["a@public.test"]), (MX2, ["b@two.test"])])

    def test_one_session_for_each_domain(self):
        outcome = self.direct("a@TWO.test", "b@one.test", "c@two.test", "d@one.TEST", options=[
            "--cc", "e@one.test", "--bcc", "f@two.test", "--helo", "me.test", "--subject", "Hi",
            "--message-id", "one@example.test"])
        self.assertEqual(outcome["code"], 0)
        caught = self.catcher.messages()
        self.assertEqual(
            [(envelope["server"], envelope["helo"], envelope["to"]) for envelope, _ in caught],
            [(MX2, "me.test", ["a@TWO.test", "c@two.test", "f@two.test"]),
             (MX1, "me.test", ["b@one.test", "d@one.TEST", "e@one.test"])])
        (_, first), (_, second) = caught
        self.assert_well_formed(first)
        self.assert_well_formed(second)
        self.assertEqual(sorted(first.splitlines()), sorted(second.splitlines()))
        self.assertNotIn(b"f@two.test", first)

    def test_domains_before_the_one_that_fails_have_the_message(self):
        outcome = self.direct("a@one.test", "refused@two.test", "b@order.test", status=1)
        self.assertEqual((outcome["code"], outcome["text"]), (550, "550 no such user here"))
        self.assertEqual(self.delivered(), [(MX1, ["a@one.test"])])

    # The worker's session goes from the messages of one domain to those of another.
    def test_queue_delivers_directly(self):
        for recipient, status in (("a@one.test", 0), ("b@null.test", 1)):
            done = self.inside.run("--direct", "--async", "--count", "2", "--threads", "1",
                                   "--from", "sender@example.test", "--to", recipient,
                                   "--helo", "me.test", "--json")
            self.assertEqual(done.returncode, status, done.stdout + done.stderr)
            outcomes = [json.loads(line) for line in done.stdout.splitlines()]
            self.assertEqual([(outcome["code"], outcome["text"]) for outcome in outcomes],
                             2 * [(-1, "Domain 'null.test' doesn't accept mail") if status
                                  else (0, "")])
        self.assertEqual([(envelope["server"], envelope["helo"], envelope["to"])
                          for envelope, _ in self.catcher.messages()],
                         2 * [(MX1, "me.test", ["a@one.test"])])

    # Whatever comes from the own resolver: the public ones know better, after a bounded time.
    def test_bad_answers(self):
        # Wine's client waits for ever for an answer over TCP.
        faults = self.some(FAULTS[:-1] if self.client.windows else FAULTS, 3)
        server = subprocess.Popen(
            [*self.network.command, ROOT / "tests/servers/bad_dns.py", BAD_RESOLVER],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.wait, 10)
        self.addCleanup(server.terminate)
        self.assertEqual(server.stdout.readline(), "ready\n")
        self.addCleanup(self.network.use_resolver, RESOLVER)
        self.network.use_resolver(BAD_RESOLVER)
        with concurrent.futures.ThreadPoolExecutor(len(faults)) as pool:
            outcomes = list(pool.map(
                lambda fault: self.inside.run(
                    "--direct", "--from", "sender@example.test", "--to", f"you@{fault}.bad.test"),
                faults))
        # Their exchanger's name can't be resolved by such a resolver, but it was found.
        for fault, done in zip(faults, outcomes):
            with self.subTest(fault=fault):
                self.assertIn("Unable to resolve hostname mx1.test.", done.stderr)
        self.assertEqual(self.delivered(), [])
