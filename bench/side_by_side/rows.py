"""What is measured, and what shall come out."""

from dataclasses import dataclass

MIB = 1024 * 1024
FILE = 25 * MIB

# Where catcher and contenders run.
ANYWHERE, TOGETHER, APART = "anywhere", "together", "apart"


@dataclass(frozen=True)
class Unit:
    name: str
    per_message: float  # how much of the unit one message is; 0 for time per message
    scale: float = 1

    def value(self, seconds):
        return seconds * self.scale if self.per_message == 0 else self.per_message / seconds


@dataclass(frozen=True)
class Row:
    name: str  # on the command line
    title: str
    workload: str
    work: str  # what a contender is told
    unit: Unit
    reference: str = "libcurl"
    least: float = 0  # times the reference; a row with neither is told beside another one
    most: float = 0
    senders: int = 1
    # TOGETHER, on one processor: a client and the catcher take turns at a message of a few lines and
    # never work at the same time. On two processors such a row measures what waking the other one
    # costs, which is up to ten times the work where they are virtual, and hides the difference
    # between the clients.
    # APART, one processor each: the catcher, which takes less than any client, is never waited for,
    # and the rate is the clients' own, as with a server on another machine.
    place: str = ANYWHERE

    @property
    def sends(self):
        return self.action == "send"

    @property
    def action(self):
        """compose or send."""
        return self.work.split()[-1]

    @property
    def is_peak(self):
        return self.work.startswith("peak")

    @property
    def target(self):
        if not self.least and not self.most:
            return ""
        if self.least:
            return f"at least {self.least:g} x {self.reference}"
        return f"at most {self.most:g} x {self.reference}"

    def is_met(self, ratio):
        return ratio >= self.least if self.least else ratio <= self.most


ROWS = (
    Row("base64", "compose, 25 MiB file, Base64", "base64", "compose", Unit("MB/s", FILE / 1e6),
        least=4),
    Row("qp", "compose, 5 MiB, quoted-printable", "qp", "compose", Unit("MB/s", 5 * MIB / 1e6),
        reference="GMime", least=2.5),
    Row("small", "compose, small text", "small", "compose", Unit("messages/s", 1), least=4),
    Row("rich", "compose, rich message", "rich", "compose", Unit("messages/s", 1), least=6),
    Row("send", "send a small message", "small", "send", Unit("us", 0, 1e6), most=0.70,
        place=TOGETHER),
    Row("send25", "compose and send 25 MiB", "base64", "send", Unit("ms", 0, 1e3), most=0.12),
    Row("senders50", "50 senders at once", "small", "send", Unit("messages/s", 1), least=1.45,
        senders=50),
    Row("senders50-apart", "50 senders, the catcher on a processor of its own", "small", "send",
        Unit("messages/s", 1), senders=50, place=APART),
)



def peak(name, title, workload, work, most):
    return Row(name, title, workload, "peak " + work, Unit("x its size", 1),
               reference="its size", most=most)


# In sizes of the file; "block" is the file's bytes in memory, themselves included.
PEAKS = (
    peak("memory", "peak memory, compose, 25 MiB file", "base64", "compose", 1.5),
    peak("block", "peak memory, compose, 25 MiB block", "block", "compose", 2.5),
    peak("memory-send", "peak memory, send, 25 MiB file", "base64", "send", 1.5),
    peak("block-send", "peak memory, send, 25 MiB block", "block", "send", 2.5),
)


def named(names):
    """The rows of those names; "all" is the name of all."""
    return [row for row in ROWS + PEAKS if row.name in names or "all" in names]
