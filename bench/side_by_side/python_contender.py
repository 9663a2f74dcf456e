"""Python's email package and smtplib; the same commands as contend.cpp."""

import argparse
import json
import smtplib
import sys
import threading
import time
from email.headerregistry import Address
from email.message import EmailMessage, MIMEPart
from email.policy import SMTP
from email.utils import format_datetime
from datetime import datetime, timezone
from pathlib import Path

FIELDS = {"Importance": "Normal", "X-MSMail-Priority": "Normal", "X-Priority": "3 (Normal)",
          "X-Mailer": "Quorvane ActiveX 4.1 (Lindbrek Quorvane)",
          "X-MimeOLE": "Produced By Lindbrek Mime V4.1", "MIME-Version": "1.0"}


class Contender:
    def __init__(self, workload, port):
        self.workload = workload
        self.port = port
        self.count = 0
        self.attachments = workload["attachments"]
        for attachment in self.attachments:
            attachment["bytes"] = bytes.fromhex(attachment["data"])

    def compose(self):
        return self.message().as_bytes(policy=SMTP)

    def send(self):
        with smtplib.SMTP("127.0.0.1", self.port, local_hostname="localhost") as client:
            client.send_message(self.message())

    def message(self):
        message = EmailMessage(policy=SMTP)
        self.fill_header(message)
        if any(not attachment["id"] for attachment in self.attachments):
            message.make_mixed()
            related = MIMEPart(policy=SMTP)
            self.fill_related(related)
            message.attach(related)
            self.attach(message.add_attachment, lambda attachment: not attachment["id"])
        else:
            self.fill_related(message)
        return message

    def fill_header(self, message):
        self.count += 1
        name, address = self.workload["sender"]
        message["From"] = Address(name, addr_spec=address)
        message["To"] = [Address(name, addr_spec=address)
                         for name, address in self.workload["recipients"]]
        message["Subject"] = self.workload["subject"]
        message["Date"] = format_datetime(datetime.now(timezone.utc).astimezone())
        message["Message-ID"] = f"<{self.count}.bench.{address}>"
        for field, value in FIELDS.items():
            message[field] = value

    def fill_related(self, part):
        if any(attachment["id"] for attachment in self.attachments):
            part.make_related()
            bodies = MIMEPart(policy=SMTP)
            self.fill_bodies(bodies)
            part.attach(bodies)
            self.attach(part.add_related, lambda attachment: attachment["id"])
        else:
            self.fill_bodies(part)

    def fill_bodies(self, part):
        for number, body in enumerate(self.workload["bodies"]):
            add = part.set_content if number == 0 else part.add_alternative
            add(body["text"], subtype=body["type"].split("/")[1], charset="utf-8",
                cte=body["encoding"])

    def attach(self, add, chosen):
        for attachment in filter(chosen, self.attachments):
            kind, subtype = attachment["type"].split("/")
            path = attachment["path"]
            more = {"cid": f"<{attachment['id']}>"} if attachment["id"] else {}
            add(Path(path).read_bytes() if path else attachment["bytes"], kind, subtype,
                disposition="inline" if attachment["id"] else "attachment",
                filename=attachment["name"], **more)


def repeat(work, count):
    for _ in range(count):
        work()


def in_threads(make_work, count, senders):
    works = [make_work() for _ in range(senders)]
    threads = [threading.Thread(target=repeat,
                                args=(work, count // senders + (number < count % senders)))
               for number, work in enumerate(works)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def peak_bytes():
    for line in Path("/proc/self/status").read_text().splitlines():
        if line.startswith("VmHWM:"):
            return int(line.split()[1]) * 1024
    raise RuntimeError("no VmHWM")


def obey(line, contender, make, senders):
    verb, argument = line.split()
    if verb == "write":
        Path(argument).write_bytes(contender.compose())
        return "written"
    if verb == "peak":
        before = peak_bytes()
        getattr(contender, argument)()
        return peak_bytes() - before
    elapsed, processor = time.perf_counter(), time.process_time()
    if senders == 1:
        repeat(getattr(contender, verb), int(argument))
    else:
        in_threads(lambda: getattr(make(), verb), int(argument), senders)
    return f"{time.perf_counter() - elapsed} {time.process_time() - processor}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--workload", help="what contend.cpp describes is in WORKLOAD.json")
    parser.add_argument("--folder", type=Path)
    parser.add_argument("--port", type=int)
    parser.add_argument("--senders", type=int)
    options = parser.parse_args()
    description = options.folder / f"{options.workload}.json"

    def make():
        return Contender(json.loads(description.read_text()), options.port)

    contender = make()
    for line in sys.stdin:
        print(obey(line, contender, make, options.senders), flush=True)


if __name__ == "__main__":
    main()
