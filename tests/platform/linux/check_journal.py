#!/usr/bin/env python3
"""Plays the journal in a mount namespace of its own and compares what it is sent with what the program says it logs.

    check_journal.py JOURNAL-WRITER
"""

import os
import socket
import subprocess
import sys

SOCKET = "/run/systemd/journal/socket"
DEADLINE = 60
EXPECTED = [
    {"MESSAGE": "details", "PRIORITY": "7", "SYSLOG_IDENTIFIER": "ferrowyn", "FERROWYN_CATEGORY": "windows"},
    {"MESSAGE": "Services active", "PRIORITY": "5", "SYSLOG_IDENTIFIER": "ferrowyn", "FERROWYN_CATEGORY": "permissions"},
    {"MESSAGE": "two\nlines", "PRIORITY": "3", "SYSLOG_IDENTIFIER": "ferrowyn", "FERROWYN_CATEGORY": "input"},
]


def fields_of(datagram):
    """The fields of one entry in the journal's native protocol, without those that say where the call stands."""
    fields = {}
    while datagram:
        line, _, datagram = datagram.partition(b"\n")
        name, equals, value = line.partition(b"=")
        if not equals:
            # A value with line breaks: its length as a 64-bit number, the value, a line break.
            length = int.from_bytes(datagram[:8], "little")
            value, datagram = datagram[8:8 + length], datagram[8 + length + 1:]
        fields[name.decode()] = value.decode()
    return {name: value for name, value in fields.items() if not name.startswith("CODE_")}


def main(writer):
    if "IN_NAMESPACE" not in os.environ:
        # Only there may this process put a socket in the journal's place.
        script = 'mount -t tmpfs none /run && mkdir -p "$(dirname "$1")" && exec "$2" "$3" "$4"'
        return subprocess.run(["unshare", "--map-root-user", "--mount", "sh", "-c", script, "sh", SOCKET, sys.executable,
                               __file__, writer], env=os.environ | {"IN_NAMESPACE": "1"}, check=False).returncode
    journal = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
    journal.bind(SOCKET)
    journal.settimeout(DEADLINE)
    subprocess.run([writer], timeout=DEADLINE, check=True)
    received = [fields_of(journal.recv(65536)) for _ in EXPECTED]
    if received != EXPECTED:
        print(f"expected {EXPECTED}\nreceived {received}")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
