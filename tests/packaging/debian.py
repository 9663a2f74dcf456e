"""Installs the Debian packages as a user does, builds programs with them, and takes them away again.

    debian.py BUILD

BUILD is a finished build tree of Linux, of which the packages are made. They go into a copy of this
machine that lasts as long as the test: its root with a layer above that takes what is written. There
neither the sources nor the build can be seen. Exit status 77 where that isn't permitted.
"""

import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
sys.path += [str(ROOT / "tests" / "real"), str(ROOT / "tests" / "servers")]

import mime_check  # noqa: E402
from mail_catcher import Catcher  # noqa: E402

BUILD = Path(sys.argv[1]).resolve()
TIMEOUT_SECONDS = 200
NAMES = ("libquorvane1", "libquorvane-dev", "quorvane-send", "quorvane-doc")
EXAMPLES = "/usr/share/doc/quorvane/examples"
# What the library is made for: nothing that a server without a desktop would not have.
NEEDED = {"libffi.so.8", "libcares.so.2", "libresolv.so.2", "libssl.so.3", "libcrypto.so.3",
          "libntlm.so.0", "libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6",
          "ld-linux-x86-64.so.2"}
# What dpkg, ldconfig and man write for themselves, and the tests.
BOOKS = ("var/lib/dpkg/", "var/log/", "var/cache/", "etc/ld.so.cache", "tmp/", "root/")

# Gets the folder of the copy, and what can't be seen there; lives until its standard input ends.
SETUP = """
set -e
mount -t tmpfs none "$1"
mkdir "$1/upper" "$1/work" "$1/root"
mount -t overlay overlay -o "lowerdir=/,upperdir=$1/upper,workdir=$1/work" "$1/root"
mount --rbind /dev "$1/root/dev"
mount --rbind /proc "$1/root/proc"
copy=$1
shift
for hidden in "$@"; do
    [ ! -d "$copy/root$hidden" ] || mount -t tmpfs none "$copy/root$hidden"
done
echo ready
exec cat
"""


def run(*command, check=True):
    """What the command said."""
    done = subprocess.run([str(word) for word in command], stdin=subprocess.DEVNULL, text=True,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=TIMEOUT_SECONDS)
    if check and done.returncode:
        raise AssertionError(f"{command}: status {done.returncode}\n{done.stdout}")
    return done.stdout


class Machine:
    """A copy of this machine."""

    def __init__(self):
        self._folder = tempfile.TemporaryDirectory(prefix="quorvane-")
        self.copy = Path(self._folder.name)
        self._holder = subprocess.Popen(
            ["unshare", "--mount", "sh", "-c", SETUP, "setup", self.copy, ROOT, BUILD],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        if self._holder.stdout.readline() != "ready\n":
            raise PermissionError(self._holder.communicate()[1].strip())
        self._enter = ["nsenter", "--target", self._holder.pid, "--mount"]
        self.command = [*self._enter, "chroot", self.copy / "root", "env", "-i", "HOME=/root",
                        "PATH=/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL=C.UTF-8", "MANPAGER=cat"]

    def install(self):
        run(*self._enter, "cp", *packages, self.copy / "root/tmp")
        # Some containers leave out texts.
        self.run("dpkg", "--path-include=/usr/share/*", "--install",
                 *(f"/tmp/{package.name}" for package in packages))

    def run(self, *command, check=True):
        return run(*self.command, *command, check=check)

    def changes(self):
        """What is not as on this machine, but for the books that are kept of it."""
        found = run(*self._enter, "find", self.copy / "upper", "-mindepth", "1", "-printf", "%y %P\n")
        changed = (line.split(" ", 1) for line in found.splitlines())
        return {path for kind, path in changed if not f"{path}/".startswith(BOOKS)
                and not (kind == "d" and Path("/", path).is_dir())}

    def close(self):
        self._holder.communicate()
        self._folder.cleanup()


def setUpModule():
    global packages
    folder = tempfile.TemporaryDirectory(prefix="quorvane-")
    unittest.addModuleCleanup(folder.cleanup)
    run(ROOT / "scripts/package", "debian", "--no-setup", "--build", BUILD, "--output", folder.name)
    packages = sorted(Path(folder.name).glob("*.deb"))


class Installed(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.machine = Machine()
        cls.addClassCleanup(cls.machine.close)
        cls.machine.install()
        folder = tempfile.TemporaryDirectory(prefix="quorvane-")
        cls.addClassCleanup(folder.cleanup)
        cls.catcher = Catcher(folder.name)
        cls.addClassCleanup(cls.catcher.stop)

    def assert_sends(self, *command):
        """The command sends one sound message."""
        self.machine.run(*command)
        [(_, raw)] = self.catcher.messages()
        self.assertEqual(mime_check.faults(raw), [])

    def test_command(self):
        self.assert_sends(
            "quorvane-send", "--server", f"127.0.0.1:{self.catcher.port}", "--from", "a@x.example",
            "--to", "b@x.example", "--text", "x", "--attach", f"{EXAMPLES}/sample/programme.pdf")
        self.assertRegex(self.machine.run("man", "quorvane-send"), r"(?s)NAME.*quorvane-send - .*--to")
        completion = "/usr/share/bash-completion/completions/quorvane-send"
        self.assertIn("quorvane-send", self.machine.run(
            "bash", "-c", f". {completion} && complete -p quorvane-send"))
        self.assertTrue(self.machine.run(
            "cat", "/usr/share/zsh/vendor-completions/_quorvane-send")
            .startswith("#compdef quorvane-send\n"))

    def test_find_package(self):
        self.machine.run("cmake", "-G", "Ninja", "-S", EXAMPLES, "-B", "/tmp/examples")
        self.machine.run("cmake", "--build", "/tmp/examples")
        self.assert_sends("/tmp/examples/send-example", f"{EXAMPLES}/sample", "127.0.0.1",
                          self.catcher.port)

    def test_pkg_config(self):
        self.machine.run("bash", "-c", f"g++ -std=c++20 {EXAMPLES}/simple.cpp -o /tmp/simple "
                                       "$(pkg-config --cflags --libs quorvane)")
        self.assert_sends("/tmp/simple", "127.0.0.1", self.catcher.port)
        self.assertIn("needs C++20", self.machine.run(
            "bash", "-c", f"g++ -std=c++17 -fsyntax-only {EXAMPLES}/simple.cpp "
                          "$(pkg-config --cflags quorvane)", check=False))

    def test_dependencies(self):
        needed = {}
        for file in ("/usr/lib/*/libquorvane.so.1", "/usr/bin/quorvane-send"):
            dynamic = self.machine.run("sh", "-c", f"objdump -p {file}")
            self.assertNotRegex(dynamic, "R(UN)?PATH")
            needed[file[-13:]] = set(re.findall(r"NEEDED +(\S+)", dynamic))
        self.assertEqual(needed.pop("quorvane.so.1"), NEEDED)
        self.assertEqual(needed.pop("quorvane-send") - NEEDED, {"libquorvane.so.1"})

    def test_nothing_tells_where_it_was_built(self):
        self.assertEqual(self.machine.run(
            "bash", "-c", f"dpkg -L {' '.join(NAMES)} | sort -u | "
                          f"xargs -d '\\n' grep -lsaF -d skip -e {ROOT} -e {BUILD}",
            check=False), "")


class Removed(unittest.TestCase):
    def test_nothing_is_left(self):
        machine = Machine()
        self.addCleanup(machine.close)
        machine.install()
        self.assertIn("usr/bin/quorvane-send", machine.changes())
        machine.run("dpkg", "--purge", *NAMES)
        self.assertEqual(machine.changes(), set())


if __name__ == "__main__":
    try:
        Machine().close()
    except (PermissionError, FileNotFoundError) as error:
        print(f"skipped: no copy of the machine can be made here: {error}")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1], verbosity=2)
