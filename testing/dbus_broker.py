# SPDX-License-Identifier: MIT
"""dbus_broker.py SOCKET CONFIGURATION: becomes a system bus of dbus-broker, without systemd.

Runs in a mount name space of its own: the launcher insists on a journal, and gets one that is only
read away, and on the identity of the machine, which a new system may not have.
"""

import os
import socket
import subprocess
import sys
import tempfile
import uuid

JOURNAL = "/run/systemd/journal/socket"
IDENTITY = "/etc/machine-id"


def main(path, configuration):
    bus = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
    bus.bind(path)
    os.chmod(path, 0o777)
    bus.listen()

    # Not every system has /run/systemd to mount on.
    subprocess.run(["mount", "-t", "tmpfs", "tmpfs", "/run"], check=True)
    os.makedirs(os.path.dirname(JOURNAL))
    journal = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
    journal.bind(JOURNAL)
    if os.fork() == 0:
        while True:
            journal.recv(1 << 20)

    with tempfile.NamedTemporaryFile("w") as identity:
        os.chmod(identity.name, 0o444)
        identity.write(uuid.uuid4().hex + "\n")
        identity.flush()
        subprocess.run(["mount", "--bind", identity.name, IDENTITY], check=True)

    # As systemd hands a socket over: from the third descriptor on.
    os.dup2(bus.fileno(), 3)
    os.set_inheritable(3, True)  # it may have been the third already
    environment = dict(os.environ, LISTEN_FDS="1", LISTEN_PID=str(os.getpid()),
                       DBUS_SYSTEM_BUS_ADDRESS=f"unix:path={path}")
    print(f"unix:path={path}", flush=True)
    os.execvpe("dbus-broker-launch", ["dbus-broker-launch", "--scope", "system",
                                      "--config-file", configuration], environment)


main(*sys.argv[1:])
