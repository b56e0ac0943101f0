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
import signal
import socket
import subprocess
import sys
import tempfile
import time

import scripted

PORT = 21
REAL = "127.0.0.1"
SCRIPTED = "127.0.0.2"
UNREACHABLE = "127.0.0.3"
PATIENCE = 60

CONFIGURATION = """
ServerName test
ServerType standalone
SocketBindTight on
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
MaxInstances 100
<IfModule mod_delay.c>
  DelayEngine off
</IfModule>
<Directory {scratch}/root/user/readonly>
  <Limit WRITE>
    DenyAll
  </Limit>
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


def answers(address):
    with socket.socket() as probe:
        probe.settimeout(5)
        return probe.connect_ex((address, PORT)) == 0


def make_trees(scratch):
    root = scratch / "root"
    for name in ("user/readonly", "user/sub", "anonymous"):
        (root / name).mkdir(parents=True)
    (root / "user/readonly/fixed.txt").write_text("fixed")
    (root / "anonymous/welcome.txt").write_text("welcome")
    # The command writes there too, and the server over what the command wrote.
    (root / "user/there.txt").touch()
    (root / "user/there.txt").chmod(0o666)
    for path in [scratch, root, *root.rglob("*")]:
        os.chown(path, UID, GID)
    for name in ("user", "user/sub"):
        (root / name).chmod(0o777)


def start_real_server(scratch):
    accounts = {"user": f"{HASH}:{UID}:{GID}::{scratch}/root/user", OWNER: f"*:{UID}:{GID}::{scratch}/root/anonymous"}
    (scratch / "users").write_text("".join(f"{name}:{rest}:/bin/false\n" for name, rest in accounts.items()))
    (scratch / "users").chmod(0o600)
    configuration = scratch / "configuration"
    configuration.write_text(CONFIGURATION.format(address=REAL, port=PORT, owner=OWNER, group=GROUP, scratch=scratch))
    server = subprocess.Popen(["/usr/sbin/proftpd", "--nodaemon", "--quiet", "--config", configuration],
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    for _ in range(200):
        if answers(REAL):
            return server
        if server.poll() is not None:
            break
        time.sleep(0.05)
    server.kill()
    sys.exit(f"servers.py: proftpd does not start: {server.communicate()[1].decode(errors='replace')}")


def end(process):
    process.send_signal(signal.SIGTERM)
    try:
        process.wait(10)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()


def main():
    listen(REAL).close()
    if answers(UNREACHABLE):
        sys.exit(f"servers.py: something listens on {UNREACHABLE}:{PORT}, where tests want nobody")
    listener = listen(SCRIPTED)
    with tempfile.TemporaryDirectory(prefix="qzr_ftp_") as name:
        scratch = pathlib.Path(name)
        make_trees(scratch)
        scripted.start(listener, scratch / "root/user")
        server = start_real_server(scratch)
        try:
            environment = {**os.environ, "QZR_FTP_ROOT": f"{scratch}/root"}
            return subprocess.run(sys.argv[1:], env=environment, stdin=subprocess.DEVNULL, check=False).returncode
        finally:
            end(server)


if __name__ == "__main__":
    sys.exit(main())
