"""Runs the built programs in a folder of each test's own."""
import os
import subprocess
import tempfile
import unittest

TREE = os.environ["QZRTOOL_TREE"]

# Exit codes.
OK, NO, TROUBLE, STRICT, CANCELLED = 0, 1, 2, 3, 4


class Result:
    def __init__(self, process):
        self.code = process.returncode
        self.bytes = process.stdout
        self.out = process.stdout.decode("utf-8", "replace")
        self.err = process.stderr.decode("utf-8").replace("\r\n", "\n")


class ProgramTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=os.environ["QZRTOOL_SCRATCH"])
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def command(self, program, *arguments):
        runner = os.environ.get("QZRTOOL_RUNNER")
        if program != "reg":  # which the system has
            program = os.path.join(os.environ["QZRTOOL_BIN"], program + ".exe")
        return ([runner] if runner else []) + [program, *arguments]

    def run_program(self, program, *arguments, env=None, stdin=b""):
        environment = {**os.environ, **(env or {})}
        return Result(subprocess.run(self.command(program, *arguments), cwd=self.folder, env=environment, input=stdin,
                                     capture_output=True, timeout=100, check=False))

    def tool(self, *arguments, code=OK, env=None, stdin=b""):
        """Runs qzrtool, which is to end with a code; without trouble expected it is to be silent about it."""
        result = self.run_program("qzrtool", *arguments, env=env, stdin=stdin)
        self.assertEqual(result.code, code, f"qzrtool {' '.join(arguments)}\n{result.out}{result.err}")
        return result

    def path(self, name):
        return os.path.join(self.folder, name)

    def windows_path(self, name):
        """The full path as the programs take it; under Wine the drive Z: is this system."""
        return as_windows_path(self.path(name))

    def tree_path(self, *parts):
        """The full path of a file of the source tree, in the same way."""
        return as_windows_path(os.path.join(TREE, *parts))

    def write(self, name, contents):
        if isinstance(contents, str):
            contents = contents.encode("cp1252")
        with open(self.path(name), "wb") as file:
            file.write(contents)
        return name

    def read(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def files(self):
        return sorted(os.listdir(self.folder))


def as_windows_path(path):
    return "Z:" + path.replace("/", "\\") if path.startswith("/") else path


def sample(name):
    with open(os.path.join(TREE, "examples", "data", name), "rb") as file:
        return file.read()


# --- the stream form, by hand -----------------------------------------------------------------------------------

def text_value(text):
    """A narrow text: type 10, the count with the terminator, the bytes."""
    data = text.encode("cp1252") + b"\0"
    return b"\x0A\0" + len(data).to_bytes(4, "little") + data


def int_value(number):
    return b"\x05\0" + number.to_bytes(4, "little", signed=True)


def name(text):
    return text.encode("cp1252") + b"\0"


def node(sections=(), values=()):
    """Pairs of a name and the bytes of a node or value."""
    form = b"".join(name(n) + b for n, b in sections) + b"\0"
    return form + b"".join(name(n) + b for n, b in values) + b"\0"
