"""An Exim of our own: private configuration, spool and log, one loopback port, mail into a folder.

It runs as the user who starts it, or as Exim's own user when that is root. Everything it writes
lies below the folder that it is given.
"""

import os
import pathlib
import pwd
import shutil
import signal
import socket
import subprocess
import time

import certificate

BINARY = shutil.which("exim4") or "/usr/sbin/exim4"
SIZE_LIMIT = 300_000
USER, PASSWORD = "zoë", "secret pass: word"
NTLM_USER = "zoe"  # Exim reads the names of NTLM as ASCII
REFUSED = "refused"  # local part of the address that nobody has
REFUSAL = "Nobody of that name lives here"
LISTENING = "listening for SMTP"  # of its log

CONFIGURATION = r"""
primary_hostname = exim.test
spool_directory = {folder}/spool
log_file_path = {folder}/log/%s
pid_file_path = {folder}/exim.pid
exim_user = {user}
exim_group = {group}
deliver_drop_privilege = {drop}
local_interfaces = {address}
daemon_smtp_ports = {port} : {tls_port}
tls_on_connect_ports = {tls_port}
tls_certificate = {certificate}
tls_privatekey = {key}
tls_advertise_hosts = *
tls_try_verify_hosts =
# Nothing is asked of the network and nothing of the host's environment is kept.
host_lookup =
rfc1413_hosts =
keep_environment =
message_size_limit = {size_limit}
smtp_enforce_sync = true
acl_smtp_rcpt = recipient
acl_smtp_data = accept

begin acl
recipient:
  deny message = {refusal}
       local_parts = {refused}
  accept

begin routers
everyone:
  driver = accept
  transport = inbox

begin transports
inbox:
  driver = appendfile
  directory = {folder}/inbox
  maildir_format
  use_crlf
  envelope_to_add
  return_path_add
  batch_max = 1000
  user = {user}
  group = {group}

begin authenticators
login:
  driver = plaintext
  public_name = LOGIN
  server_prompts = Username:: : Password::
  server_condition = ${{if and {{{{eq{{$auth1}}{{{login}}}}} {{eq{{$auth2}}{{{password}}}}}}}}}
  server_set_id = $auth1
ntlm:
  driver = spa
  public_name = NTLM
  server_password = ${{if eq{{$auth1}}{{{ntlm_user}}}{{{password}}}fail}}
  server_set_id = $auth1
"""


class Message:
    """A delivered message, and what was said about it before DATA."""

    TRACE = (b"return-path", b"envelope-to", b"received")

    def __init__(self, stored):
        fields, self.raw = self._split_trace(stored)
        self.sender = fields[b"return-path"].strip(" <>")
        self.recipients = [to.strip() for to in fields[b"envelope-to"].split(",")]
        self.received = fields[b"received"]

    @classmethod
    def _split_trace(cls, stored):
        """The fields that servers put in front, the last server's, and the message as it came."""
        fields, rest = {}, stored
        while rest.partition(b":")[0].lower() in cls.TRACE:
            name, _, value = rest.partition(b":")
            lines = value.split(b"\r\n")
            count = 1
            while lines[count][:1] in (b" ", b"\t"):
                count += 1
            fields.setdefault(name.lower(), b" ".join(lines[:count]).decode("utf-8"))
            rest = b"\r\n".join(lines[count:])
        return fields, rest


class Daemon:
    """An Exim in the foreground, with a configuration of the caller's."""

    def __init__(self, folder, command=()):
        """Run by the command that stands in front. The folder belongs to Exim then."""
        self.folder = pathlib.Path(folder)
        self.folder.mkdir(exist_ok=True)
        root = os.geteuid() == 0
        self.account = pwd.getpwnam("Debian-exim") if root else pwd.getpwuid(os.geteuid())
        for name in ("spool", "log", "inbox"):
            (self.folder / name).mkdir(exist_ok=True)
            self.give(self.folder / name)
        if root:
            self.folder.chmod(0o711)  # its user has to get to its folders
        self.configuration = self.folder / "exim.conf"
        self._command = [*command, BINARY, "-C", str(self.configuration)]
        self._process = None

    def give(self, path):
        """Makes it Exim's own."""
        if os.geteuid() == 0:
            os.chown(path, self.account.pw_uid, self.account.pw_gid)

    def start(self):
        """Starts it; True when it listens."""
        before = self.log().count(LISTENING)
        with open(self.folder / "out.log", "ab") as out:
            self._process = subprocess.Popen([*self._command, "-bdf"], stdin=subprocess.DEVNULL,
                                             stdout=out, stderr=out,
                                             env={"PATH": os.environ["PATH"]})
        for _ in range(400):
            if self.log().count(LISTENING) > before:
                return True
            if self._process.poll() is not None:
                break
            time.sleep(0.05)
        self.stop()
        return False

    def run_queue(self):
        """Tries everything that waits, now."""
        subprocess.run([*self._command, "-qff"], check=True, stdin=subprocess.DEVNULL, timeout=60)

    def stop(self, signal=signal.SIGTERM):
        if self._process:
            self._process.send_signal(signal)
            try:
                self._process.wait(10)
            except subprocess.TimeoutExpired:
                self._process.kill()
                self._process.wait()
            self._process = None

    def log(self):
        return "".join(path.read_text("utf-8", "replace")
                       for path in [self.folder / "out.log", *self.folder.glob("log/*")]
                       if path.exists())


class Exim(Daemon):
    """One that takes mail into its inbox: at a free port of its address, and encrypted from the start
    at another one; or at the given ports."""

    def __init__(self, folder, address="127.0.0.1", ports=None, login=(USER, PASSWORD),
                 certificate_files=None, command=()):
        super().__init__(folder, command)
        self.inbox = self.folder / "inbox" / "new"
        self.port, self.tls_port = ports or (None, None)
        self._address, self._login = address, login
        self._certificate = certificate_files or certificate.make(self.folder)
        for path in self._certificate:
            self.give(path)

    def _free_ports(self):
        """Two different ones."""
        with socket.socket() as one, socket.socket() as other:
            for probe in (one, other):
                probe.bind(("127.0.0.1", 0))
            return one.getsockname()[1], other.getsockname()[1]

    def _configure(self, port, tls_port):
        user, password = self._login
        # As the address of the account goes out in the thread's 8-bit character set.
        login = user.encode("cp1252").decode("latin-1")
        self.configuration.write_text(CONFIGURATION.format(
            folder=self.folder, address=self._address, port=port, tls_port=tls_port,
            certificate=self._certificate[0], key=self._certificate[1], size_limit=SIZE_LIMIT,
            refused=REFUSED, refusal=REFUSAL, user=self.account.pw_name, group=self.account.pw_gid,
            drop="false" if os.geteuid() == 0 else "true", login=login, ntlm_user=NTLM_USER,
            password=password), encoding="latin-1")

    def start(self):
        """Starts it and waits until it listens; tries other ports when another program is faster."""
        given = self.port and (self.port, self.tls_port)
        for _ in range(5):
            port, tls_port = given or self._free_ports()
            self._configure(port, tls_port)
            if super().start():
                self.port, self.tls_port = port, tls_port
                return
        raise RuntimeError("Exim did not start:\n" + self.log())

    def empty(self):
        for path in self._stored():
            path.unlink()

    def _stored(self):
        return list(self.inbox.iterdir()) if self.inbox.exists() else []

    def messages(self):
        """Those that have been delivered since empty()."""
        return [Message(path.read_bytes()) for path in self._stored()]

    def wait_for_message(self, seconds=20):
        """The one message that has been delivered since empty(), as soon as it is there."""
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline:
            stored = self.messages()
            if stored:
                if len(stored) > 1:
                    raise AssertionError(f"{len(stored)} messages were delivered, not 1")
                return stored[0]
            time.sleep(0.02)
        raise AssertionError("no message was delivered:\n" + self.log())
