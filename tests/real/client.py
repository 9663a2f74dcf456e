"""quorvane-send of a build, run natively or under Wine."""

import contextlib
import copy
import fcntl
import os
import pathlib
import pty
import re
import select
import subprocess
import termios
import time

ROOT = pathlib.Path(__file__).resolve().parents[2]
TIMEOUT_SECONDS = 120


# Wine's console hides the cursor, ends each line twice, and jumps where others write blanks.
CONSOLE_HABITS = re.compile(r"\x1b\[\?25[hl]|\x1b\[K|\x1b\[\d+C")


class Terminal:
    """A terminal with a program on it that ends with what is awaited, and a line end."""

    def __init__(self, command, awaited, environment):
        self._own, other = pty.openpty()
        self._awaited = awaited
        self.process = subprocess.Popen(
            command, stdin=other, stdout=other, stderr=other, env=environment,
            start_new_session=True, preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        os.close(other)

    def type(self, keys):
        os.write(self._own, keys)

    def finish(self):
        """The exit status, and all that was shown."""
        shown = b""
        end = time.monotonic() + TIMEOUT_SECONDS
        with contextlib.suppress(OSError):  # how Linux tells that nobody has the other end
            while not self._is_complete(shown) and time.monotonic() < end:
                if select.select([self._own], [], [], 1)[0]:
                    shown += os.read(self._own, 4096)
        status = self.process.wait(timeout=TIMEOUT_SECONDS)
        os.close(self._own)
        return status, self._text(shown)

    def _is_complete(self, shown):
        return self._text(shown).endswith(self._awaited + "\n")

    @staticmethod
    def _text(shown):
        return re.sub(r"\r+\n", "\n", CONSOLE_HABITS.sub("", shown.decode("utf-8", "replace")))


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

    def start(self, *arguments):
        """Starts it; the caller waits for the process."""
        return subprocess.Popen([*self._command, *map(str, arguments)], stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                env=self._all_variables())

    def on_terminal(self, *arguments, awaited, **variables):
        """Starts it on a terminal of its own, with these variables. What is awaited is the end of
        the last line that it shows."""
        return Terminal([*self._command, *map(str, arguments)], awaited,
                        {**self._all_variables(), "TERM": "xterm", "NO_COLOR": "", **variables})

    def run(self, *arguments, stdin=None):
        """Runs it; the result has returncode, and stdout and stderr as text."""
        done = subprocess.run(
            [*self._command, *map(str, arguments)], input=stdin or b"", capture_output=True,
            timeout=TIMEOUT_SECONDS, env=self._all_variables())
        done.stdout = done.stdout.decode("utf-8").replace("\r\n", "\n")
        done.stderr = done.stderr.decode("utf-8").replace("\r\n", "\n")
        return done
