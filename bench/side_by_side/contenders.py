"""Who is measured."""

import sys
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Entrant:
    name: str
    composer: tuple  # the command of the program that composes
    sender: tuple  # and of the one that sends

    def can(self, workload):
        return (self.name, workload) not in WITHOUT

    def command(self, work):
        return self.sender if work == "send" else self.composer


# Poco nests no parts.
WITHOUT = {("Poco", "rich")}


def entrants(programs):
    """Quorvane first, then its peers, as far as they have been built."""
    def program(name):
        return (programs / f"bench_contend_{name}",)

    def peer(name, command):
        return Entrant(name, command, command)

    found = [
        # The component's interfaces don't show the composed message.
        Entrant("Quorvane", program("composer"), program("quorvane")),
        peer("libcurl", program("curl")),
        peer("GMime", program("gmime")),
        peer("Poco", program("poco")),
        peer("vmime", program("vmime")),
        peer("Python", (sys.executable, Path(__file__).parent / "python_contender.py")),
        peer("limit", program("limit")),
    ]
    return [entrant for entrant in found if Path(entrant.composer[0]).exists()]
