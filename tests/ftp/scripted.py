"""An FTP server that misbehaves in the way that the user's name tells.

Its files live in memory; reading falls back to the folder that the server is started with.

The name is made of words joined by "-"; the password does not matter. Without a word of the table below the
server is an honest one.
"""

import fnmatch
import posixpath
import socket
import threading

WORDS = {
    "dos": "lists as servers on DOS do",
    "garbage": "lists what is no listing",
    "endless": "lists names without end",
    "list": "does with listings what the other words say of files",
    "nosize": "does not know SIZE",
    "vague": "answers SIZE without a number",
    "short": "sends half of a file and says that all is well",
    "broken": "sends or takes half of a file, and says so",
    "wordy": "says so at length",
    "stall": "sends half of a file, then nothing; takes a file, and never says so",
    "cut": "ends the conversation in the middle of a listing or of a file that is not empty",
    "lost": "takes a file that is not empty, and ends the conversation before it says so",
    "silent": "takes a file that is not empty, and never says so",
    "full": "takes nothing of a file",
    "dumb": "begins the temporary file of an upload, and never asks for it",
    "chatty": "says twice that it has a file",
    "tight": "has room for half a megabyte",
    "hidden": "shows a new file when it is complete",
    "fussy": "takes no temporary file of an upload",
    "norename": "renames nothing",
    "noover": "renames nothing to a name that is taken",
    "bound": "renames a file of an upload to no other name",
    "mute": "says nothing once the user is known",
    "nodata": "refuses data connections",
    "deaf": "names a port for data where nobody listens",
    "hangup": "ends the conversation when a file is asked for",
    "wide": "greets with hundreds of lines",
    "keep": "deletes nothing",
    "leaves": "ends the conversation when a file is to be deleted for the first time",
    "knows": "lists twenty numbered probes",
}

SIZE = 100000
NAMES = "/names.txt"  # what is there, of all
ROOM = 1 << 19
files = {"/file.bin": bytes(i * 7 % 251 for i in range(SIZE)), "/empty.bin": b""}
directories = {"/"}
farewells = set()
lock = threading.Lock()
root = None


class Hangup(Exception):
    pass


class Conversation:
    def __init__(self, control):
        self.control = control
        self.reader = control.makefile("rb")
        self.words = set()
        self.listener = None
        self.directory = "/"
        self.renamed = None

    def run(self):
        try:
            self.say("220 ready")
            while line := self.reader.readline(4096):
                verb, _, argument = line.decode("latin-1").strip().partition(" ")
                handler = getattr(self, "do_" + verb.lower(), None)
                if handler is None:
                    self.say("502 unknown command")
                else:
                    handler(argument)
        except (Hangup, OSError):
            pass
        finally:
            self.close_listener()
            self.reader.close()
            self.control.close()

    def say(self, text):
        if "wide" in self.words and text.startswith("230"):
            self.control.sendall(b"230-welcome\r\n" + b" to all the words that we can find\r\n" * 200)
        self.control.sendall(text.encode() + b"\r\n")

    # ---- the session

    def do_user(self, name):
        self.words = set(name.split("-")) & WORDS.keys()
        self.say("331 password, please")

    def do_pass(self, _):
        if "mute" in self.words:
            self.reader.read()  # until the client goes away
            raise Hangup
        self.say("230 logged in")

    def do_type(self, _):
        self.say("200 as you like")

    def do_quit(self, _):
        self.say("221 bye")
        raise Hangup

    def do_cwd(self, path):
        known = self.absolute(path) in directories
        if known:
            self.directory = self.absolute(path)
        self.say("250 there" if known else "550 no such directory")

    def do_mkd(self, path):
        directories.add(self.absolute(path))
        self.say(f'257 "{path}" created')

    def do_size(self, path):
        data = self.content(path)
        if "nosize" in self.words:
            self.say("500 what?")
        elif data is None:
            self.say("550 no such file")
        elif "vague" in self.words:
            self.say("213 rather large")
        else:
            self.say(f"213 {len(data)}")

    def do_dele(self, path):
        if "leaves" in self.words and path not in farewells:
            farewells.add(path)
            raise Hangup
        with lock:
            gone = "keep" not in self.words and files.pop(self.absolute(path), None) is not None
        self.say("250 deleted" if gone else "550 no such file")

    def do_rnfr(self, path):
        self.renamed = self.absolute(path)
        known = "norename" not in self.words and self.renamed in files
        self.say("350 to what?" if known else "550 no")

    def do_rnto(self, path):
        name = self.absolute(path)
        with lock:
            taken = "noover" in self.words and name in files
            bound = "bound" in self.words and not name.startswith("/QZP")
            done = not taken and not bound and self.renamed in files
            if done:
                files[name] = files.pop(self.renamed)
        self.say("250 renamed" if done else "553 no")

    # ---- transfers

    def do_pasv(self, _):
        if "nodata" in self.words:
            self.say("425 no")
            return
        self.close_listener()
        self.listener = socket.socket()
        host = self.control.getsockname()[0]
        self.listener.bind((host, 0))
        port = self.listener.getsockname()[1]
        if "deaf" in self.words:
            self.close_listener()
        else:
            self.listener.listen(1)
            self.listener.settimeout(20)
        self.say(f"227 entering passive mode ({host.replace('.', ',')},{port // 256},{port % 256})")

    def do_list(self, pattern):
        pattern = posixpath.join(self.directory, pattern)
        pattern += "*" if pattern.endswith("/") else ""
        with lock:
            names = sorted(n for n in files if fnmatch.fnmatch(n, self.absolute(pattern)))
        if "knows" in self.words:
            names += [f"/{tick}.tmp" for tick in range(20)]
        if "garbage" in self.words:
            lines = [b"\xff" * 5000, b"-rw-r--r-- 1 a b " + b"9" * 400 + b" Jan 99 99:99 " + b"n" * 3000 + b".bin", b"d" * 70000]
        elif "dos" in self.words:
            lines = [f"02-29-24  11:58PM {len(files.get(n, b'')):20} {n[1:]}".encode() for n in names]
        else:
            lines = [f"-rw-r--r--   1 owner group {len(files.get(n, b'')):12} Feb 29  2024 {n[1:]}".encode() for n in names]
        listing = b"".join(line + b"\r\n" for line in lines)
        breaks = self.words & {"broken", "stall", "cut"} if "list" in self.words else set()
        with self.data() as data:
            data.sendall(listing[: len(listing) // 2] if breaks else listing)
            if "stall" in breaks:
                self.reader.read()  # until the client goes away
            if {"cut", "stall"} & breaks:
                raise Hangup
            while "endless" in self.words:
                data.sendall(b"-rw-r--r-- 1 a b 1 Jan 1 2024 another.bin\r\n" * 100)
        self.say("426 sorry" if "broken" in breaks else "226 that was all")

    def do_retr(self, path):
        content = self.content(path)
        if content is None:
            self.say("550 no such file")
            return
        if "hangup" in self.words:
            raise Hangup
        half = {"short", "broken", "stall", "cut"} & self.words
        with self.data() as data:
            data.sendall(content[: len(content) // 2] if half else content)
            if "stall" in self.words:
                self.reader.read()  # until the client goes away
            if {"cut", "stall"} & self.words:
                raise Hangup
        self.say_end()

    def do_stor(self, path):
        if "full" in self.words:
            self.say("452 no room")
            return
        name = self.absolute(path)
        if "hangup" in self.words:
            raise Hangup
        if "fussy" in self.words and name.startswith("/QZP"):
            self.say("553 no such name")
            return
        if "hidden" not in self.words:
            self.store(name, b"")
        if "dumb" in self.words and name.startswith("/QZP"):
            self.reader.read()
            raise Hangup
        content = b""
        with self.data() as data:
            while piece := data.recv(65536):
                content += piece
                if {"broken", "cut"} & self.words:
                    break
        if "cut" in self.words and content:
            raise Hangup
        if "stall" in self.words:
            self.reader.read()
            raise Hangup
        if "tight" in self.words and len(content) + sum(len(d) for n, d in files.items() if n != name) > ROOM:
            self.say("552 no room")
            return
        if "hidden" not in self.words or "broken" not in self.words:
            self.store(name, content[: len(content) // 2] if {"short", "broken"} & self.words else content)
        if "silent" in self.words and content:
            self.reader.read()
        if {"lost", "silent"} & self.words and content:
            raise Hangup
        if "chatty" in self.words:
            self.say("226 I have it")
        self.say_end()

    def store(self, name, content):
        with lock:
            files[name] = content

    def say_end(self):
        if "broken" in self.words:
            self.say("426 sorry" + (", so sorry" * 120 if "wordy" in self.words else ""))
        else:
            self.say("226 that was all")

    def data(self):
        if self.listener is None:
            self.say("425 use PASV first")
            raise Hangup
        self.say("150 here it comes")
        connection = self.listener.accept()[0]
        self.close_listener()
        return connection

    def close_listener(self):
        if self.listener is not None:
            self.listener.close()
            self.listener = None

    def content(self, path):
        name = self.absolute(path)
        if name == NAMES:
            return " ".join(sorted(files)).encode()
        on_disk = root / name[1:]
        return files[name] if name in files else on_disk.read_bytes() if on_disk.is_file() else None

    def absolute(self, path):
        return posixpath.normpath(posixpath.join(self.directory, path))


def serve(listener):
    while True:
        control = listener.accept()[0]
        threading.Thread(target=Conversation(control).run, daemon=True).start()


def start(listener, folder):
    global root
    root = folder
    threading.Thread(target=serve, args=(listener,), daemon=True).start()
