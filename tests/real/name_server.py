"""NSD with zones of the test's own, in the foreground and on loopback addresses."""

import pathlib
import shutil
import subprocess
import time

START_SECONDS = 10

_CONFIGURATION = """
server:
  port: 53
  username: ""
  zonesdir: "{folder}"
  zonelistfile: "{folder}/zone.list"
  xfrdir: "{folder}"
  xfrdfile: ""
  pidfile: ""
  database: ""
  rrl-ratelimit: 0
remote-control:
  control-enable: no
"""


class NameServer:
    def __init__(self, folder, command, addresses, zones):
        """Serves the zones, texts by name, at the addresses. A zone without a text fails."""
        self.folder = pathlib.Path(folder)
        self.folder.mkdir()
        lines = [_CONFIGURATION.format(folder=self.folder), "server:"]
        lines += [f"  ip-address: {address}" for address in addresses]
        for name, text in zones.items():
            lines.append(f'zone:\n  name: "{name}"\n  zonefile: "{name}.zone"')
            if text is not None:
                (self.folder / f"{name}.zone").write_text(
                    f"$ORIGIN {name}.\n$TTL 60\n@ SOA ns host 1 3600 600 86400 60\n@ NS ns\n"
                    f"ns A {addresses[0]}\n{text}")
        configuration = self.folder / "nsd.conf"
        configuration.write_text("\n".join(lines) + "\n")
        self._log = self.folder / "log"
        with open(self._log, "w") as log:
            self._process = subprocess.Popen([*command, "nsd", "-d", "-c", configuration],
                                             stdin=subprocess.DEVNULL, stdout=log, stderr=log)
        self._wait()

    @staticmethod
    def is_installed():
        return shutil.which("nsd", path="/usr/sbin:/usr/local/sbin:/usr/bin") is not None

    def _wait(self):
        deadline = time.monotonic() + START_SECONDS
        while "nsd started" not in self._log.read_text():
            if self._process.poll() is not None or time.monotonic() > deadline:
                self.stop()
                raise RuntimeError("NSD did not start:\n" + self._log.read_text())
            time.sleep(0.05)

    def stop(self):
        self._process.terminate()
        self._process.wait(10)
