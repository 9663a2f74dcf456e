"""quorvane-send of a build, run natively or under Wine."""

import copy
import os
import pathlib
import subprocess

ROOT = pathlib.Path(__file__).resolve().parents[2]
TIMEOUT_SECONDS = 120


class Client:
    def __init__(self, bin_folder, windows):
        self.windows = windows
        program = pathlib.Path(bin_folder).resolve() / (
            "quorvane-send.exe" if windows else "quorvane-send")
        if not program.exists():
            raise FileNotFoundError(f"{program} is not built")
        self.program = program
        self._command = [str(program)]
        if windows:
            self._command.insert(0, str(ROOT / "scripts/lib/run-wine"))
        self._environment = {}

    def inside(self, command, environment):
        """The same, run by the command that stands in front, with these environment variables."""
        other = copy.copy(self)
        other._command = [*command, *self._command]
        other._environment = environment
        return other

    def inside_network(self, network, add_cleanup):
        """The same, run in a namespace; what that takes ends with the cleanups."""
        if not self.windows:
            return self.inside(network.command, {})
        # The server of a Wine prefix makes the sockets, so it has to live in the namespace.
        prefix = ROOT / "build" / "wine-prefix-namespace"
        script = ROOT / "scripts/lib/wine-env.sh"
        for option in ("", "--stop"):
            command = [*network.command, "bash", "-c", f'unset QUORVANE_WINE_READY; '
                       f'. "{script}" {option} "{prefix}"']
            if option:
                add_cleanup(subprocess.run, command, stdin=subprocess.DEVNULL)
            else:
                subprocess.run(command, stdin=subprocess.DEVNULL, check=True)
        return self.inside(network.command, {"QUORVANE_WINE_READY": str(prefix)})

    def _all_variables(self):
        # Wine reads names and arguments by the locale, which a build server may leave unset.
        return {**os.environ, "LC_ALL": "C.UTF-8", **self._environment}

    def start(self, *arguments, stdout=subprocess.PIPE, stderr=subprocess.PIPE):
        """Starts it; the caller waits for the process."""
        return subprocess.Popen([*self._command, *map(str, arguments)], stdin=subprocess.DEVNULL,
                                stdout=stdout, stderr=stderr, text=True,
                                env=self._all_variables())

    def run(self, *arguments, stdin=None):
        """Runs it; the result has returncode, and stdout and stderr as text."""
        done = subprocess.run(
            [*self._command, *map(str, arguments)], input=stdin or b"", capture_output=True,
            timeout=TIMEOUT_SECONDS, env=self._all_variables())
        done.stdout = done.stdout.decode("utf-8").replace("\r\n", "\n")
        done.stderr = done.stderr.decode("utf-8").replace("\r\n", "\n")
        return done
