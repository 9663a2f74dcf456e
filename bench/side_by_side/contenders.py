"""Who is measured."""

import sys
from dataclasses import dataclass
from pathlib import Path


@dataclass(frozen=True)
class Entrant:
    name: str
    composer: tuple  # the command of the program that composes
    sender: tuple  # and of the one that sends

    def command(self, work):
        return self.sender if work == "send" else self.composer


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
        peer("limit", program("limit")),
    ]
    return [entrant for entrant in found if entrant.composer[0].exists()]
