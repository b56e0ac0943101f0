#!/usr/bin/env python3
"""Runs a command beside the FTP servers that its tests need, and ends them with it.

    servers.py COMMAND...

127.0.0.1:21  proftpd: user "user" with the password "secret", anonymous users in a read-only tree of their own
127.0.0.2:21  the server of scripted.py, which misbehaves in the way that the user's name tells
127.0.0.3:21  nobody

The command finds the folder of the first server's trees in QZR_FTP_ROOT. A port in use gets a minute to become
free; then the run fails.
"""

import errno
import os
import pathlib
import socket
import subprocess
import sys
import tempfile
import threading
import time

import scripted

PORT = 21
REAL = "127.0.0.1"
SCRIPTED = "127.0.0.2"
UNREACHABLE = "127.0.0.3"
PATIENCE = 60

CONFIGURATION = """
ServerName test
ServerType inetd
DefaultAddress {address}
Port {port}
User {owner}
Group {group}
UseReverseDNS off
UseFtpUsers off
WtmpLog off
TransferLog none
SystemLog {scratch}/log
PidFile {scratch}/pid
ScoreboardFile {scratch}/scoreboard
AuthOrder mod_auth_file.c
AuthUserFile {scratch}/users
RequireValidShell off
DefaultRoot ~
AllowOverwrite on
<IfModule mod_delay.c>
  DelayEngine off
</IfModule>
<Directory {scratch}/root/user/readonly>
  <Limit WRITE>
    DenyAll
  </Limit>
</Directory>
<Directory {scratch}/root/user/limited>
  MaxStoreFileSize 100 Kb
</Directory>
<Directory {scratch}/root/user/hidden>
  MaxStoreFileSize 100 Kb
  HiddenStores on
</Directory>
<Anonymous {scratch}/root/anonymous>
  User {owner}
  Group {group}
  UserAlias anonymous {owner}
  <Limit WRITE>
    DenyAll
  </Limit>
</Anonymous>
"""

# An account that every system has, and the hash of "secret".
OWNER, GROUP, UID, GID = "nobody", "nogroup", 65534, 65534
HASH = "$1$qzr$GMbKnJQQqzr2gIADS.3lx0"


def listen(address):
    """A socket that listens, or an end to the run that says why there is none."""
    deadline = time.monotonic() + PATIENCE
    while True:
        listener = socket.socket()
        listener.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        try:
            listener.bind((address, PORT))
            listener.listen(20)
            return listener
        except OSError as error:
            listener.close()
            if error.errno == errno.EADDRINUSE and time.monotonic() < deadline:
                time.sleep(1)
                continue
            sys.exit(f"servers.py: cannot listen on {address}:{PORT}: {error.strerror}. FTP files always use this "
                     f"port, so their tests need it: stop what listens there, and run as a user who may use it.")


def make_trees(scratch):
    root = scratch / "root"
    for name in ("user/readonly", "user/sub", "user/limited", "user/hidden", "anonymous"):
        (root / name).mkdir(parents=True)
    (root / "user/readonly/fixed.txt").write_text("fixed")
    (root / "anonymous/welcome.txt").write_text("welcome")
    # The command writes there too, and the server over what the command wrote.
    (root / "user/there.txt").touch()
    (root / "user/there.txt").chmod(0o666)
    for path in [scratch, root, *root.rglob("*")]:
        os.chown(path, UID, GID)
    for name in ("user", "user/sub", "user/limited", "user/hidden"):
        (root / name).chmod(0o777)


class RealServer:
    """Serves each connection with a process of its own: as a daemon the server dozes off after each client."""

    def __init__(self, listener, scratch):
        accounts = {"user": f"{HASH}:{UID}:{GID}::{scratch}/root/user", OWNER: f"*:{UID}:{GID}::{scratch}/root/anonymous"}
        (scratch / "users").write_text("".join(f"{name}:{rest}:/bin/false\n" for name, rest in accounts.items()))
        (scratch / "users").chmod(0o600)
        configuration = scratch / "configuration"
        configuration.write_text(CONFIGURATION.format(address=REAL, port=PORT, owner=OWNER, group=GROUP, scratch=scratch))
        self.command = ["/usr/sbin/proftpd", "--quiet", "--config", configuration]
        check = subprocess.run([*self.command, "--configtest"], capture_output=True, check=False)
        if check.returncode != 0:
            sys.exit(f"servers.py: proftpd refuses its configuration: {check.stderr.decode(errors='replace')}")
        self.listener = listener
        self.processes = []
        threading.Thread(target=self.serve, daemon=True).start()

    def serve(self):
        while True:
            with self.listener.accept()[0] as connection:
                self.processes = [p for p in self.processes if p.poll() is None]
                self.processes.append(subprocess.Popen(self.command, stdin=connection, stdout=connection,
                                                       stderr=subprocess.DEVNULL))

    def end(self):
        for process in self.processes:
            process.terminate()
            try:
                process.wait(10)
            except subprocess.TimeoutExpired:
                process.kill()


def main():
    real, misbehaving = listen(REAL), listen(SCRIPTED)
    with socket.socket() as probe:
        if probe.connect_ex((UNREACHABLE, PORT)) == 0:
            sys.exit(f"servers.py: something listens on {UNREACHABLE}:{PORT}, where tests want nobody")
    with tempfile.TemporaryDirectory(prefix="qzr_ftp_") as name:
        scratch = pathlib.Path(name)
        make_trees(scratch)
        scripted.start(misbehaving, scratch / "root/user")
        server = RealServer(real, scratch)
        try:
            environment = {**os.environ, "QZR_FTP_ROOT": f"{scratch}/root"}
            return subprocess.run(sys.argv[1:], env=environment, stdin=subprocess.DEVNULL, check=False).returncode
        finally:
            server.end()


if __name__ == "__main__":
    sys.exit(main())
