"""A network of the tests' own: nothing in it reaches the machine's, nor the world."""

import os
import pathlib
import subprocess

# The machine's resolver in the namespace, and the public ones, which the namespace has itself.
RESOLVER = "127.0.0.53"
PUBLIC_RESOLVERS = ("8.8.8.8", "1.1.1.1", "9.9.9.9", "8.8.4.4", "1.0.0.1", "149.112.112.112")

# Gets the two files for /etc and the addresses; lives until its standard input ends.
_SETUP = """
set -e
ip link set lo up
mount --bind "$1" /etc/resolv.conf
mount --bind "$2" /etc/nsswitch.conf
shift 2
for address in "$@"; do ip address add "$address/32" dev lo; done
echo ready
exec cat
"""


class Unavailable(Exception):
    """The machine doesn't permit namespaces, or lacks a program that they need."""


class Namespace:
    """A network that is a loopback interface with the addresses of the public resolvers."""

    def __init__(self, folder):
        self._resolv_conf = pathlib.Path(folder) / "resolv.conf"
        self.use_resolver(RESOLVER)
        names = pathlib.Path(folder) / "nsswitch.conf"
        names.write_text("hosts: files dns\nservices: files\n")
        self._holder, complaint = None, ""
        # Root may do without a user namespace; others may have one, and so may root in a container.
        for user in ([], ["--user"]) if os.geteuid() == 0 else (["--user"],):
            mapping = ["--map-root-user"] if user else []
            try:
                holder = subprocess.Popen(
                    ["unshare", "--net", "--mount", *user, *mapping, "sh", "-c", _SETUP, "setup",
                     self._resolv_conf, names, *PUBLIC_RESOLVERS],
                    stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                    text=True)
            except FileNotFoundError as error:
                raise Unavailable(f"no {error.filename}") from error
            if holder.stdout.readline() == "ready\n":
                self._holder = holder
                # A process that this starts ends with the tests, whatever ends them.
                self.command = ["nsenter", "--target", str(holder.pid), "--net", "--mount",
                                *user, *(["--preserve-credentials"] if user else []),
                                "setpriv", "--pdeathsig", "TERM"]
                return
            complaint = (holder.communicate()[1].strip().splitlines() or ["no reason given"])[-1]
        raise Unavailable(f"network namespaces are not permitted here: {complaint}")

    def use_resolver(self, address):
        """What programs that start from now on take for the machine's resolver."""
        self._resolv_conf.write_text(f"nameserver {address}\n")  # the same file, as it is mounted

    def stop(self):
        self._holder.communicate()
