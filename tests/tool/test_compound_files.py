"""Compound files of the library in the eyes of software that does not know it, and the reverse.

The witnesses are libgsf's command and olefile, which belongs to the distribution's own Python.
"""
import glob
import json
import os
import random
import re
import struct
import subprocess
import tempfile
import urllib.parse
import zlib

from support import NO, OK, TROUBLE, ProgramTest

# A file that was committed in transacted mode counts its transactions, which olefile finds odd.
OLEFILE = """
import json, olefile, sys, zlib
with olefile.OleFileIO(sys.argv[1]) as file:
    issues = [text for _, text in file.parsing_issues if "transaction_signature_number" not in text]
    assert sys.argv[2] == "as it is" or not issues, issues
    found = {"/".join(path): None for path in file.listdir(streams=False, storages=True)}
    for path in file.listdir(streams=True, storages=False):
        data = file.openstream(path).read()
        found["/".join(path)] = [len(data), zlib.crc32(data)]
json.dump(found, sys.stdout)
"""
DOCUMENTS = "/usr/share/doc/libspreadsheet-parseexcel-perl/examples/sample/Excel/*.xls"


def described(data):
    return [len(data), zlib.crc32(data)]


def contents(size):
    return bytes((i * 31 + size) % 251 for i in range(size))


class CompoundFiles(ProgramTest):
    def make_folder(self, name, files):
        """Files by their paths, None for a folder; answers what a file with them is expected to hold.

        On the disk each character of a name beyond ASCII is "%" and two digits, which the packer takes back.
        """
        for path, data in files.items():
            full = self.path(os.path.join(name, urllib.parse.quote(path, safe="/ ", encoding="cp1252")))
            os.makedirs(full if data is None else os.path.dirname(full), exist_ok=True)
            if data is not None:
                with open(full, "wb") as file:
                    file.write(data)
        expected = {path: None if data is None else described(data) for path, data in files.items()}
        for path in files:
            while path := os.path.dirname(path):
                expected.setdefault(path, None)
        return expected

    # Each answers {path: None for a storage, [size, checksum] for a stream}.

    def by_library(self, name):
        spelled = {"QZR_LOCALE": "C.UTF-8"}  # in which the disk takes every name
        items = json.loads(self.tool("storage", "ls", name, "--json", env=spelled).out)
        folder = tempfile.mkdtemp(dir=self.folder)
        self.tool("storage", "extract", name, os.path.basename(folder), env=spelled)
        found = {}
        for item in items:
            path = item["path"].rstrip("/")
            data = described(self.read(os.path.join(folder, path))) if "size" in item else None
            self.assertEqual(item.get("size"), data and data[0])
            found[urllib.parse.unquote(path, encoding="cp1252")] = data
        return found

    def by_olefile(self, name, judged="strictly"):
        output = subprocess.run(["/usr/bin/python3", "-c", OLEFILE, self.path(name), judged], stdin=subprocess.DEVNULL,
                                capture_output=True, timeout=60, check=False)
        self.assertEqual(output.returncode, 0, output.stderr.decode())
        return json.loads(output.stdout)

    def gsf(self, *arguments):
        output = subprocess.run(["gsf", *arguments], cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True,
                                timeout=60, check=False, env={**os.environ, "LC_ALL": "C.UTF-8"})
        self.assertEqual(output.returncode, 0, output.stderr.decode())
        return output.stdout

    def by_gsf(self, name):
        found = {}
        for line in self.gsf("list", name).decode().splitlines()[1:]:
            kind, size, path = re.fullmatch(r"(.) +(?:[-0-9]+ [:0-9]+ +)?(\d+) (.*)", line).groups()
            if kind == "d":
                found[path] = None
            else:
                data = self.gsf("cat", name, path)
                self.assertEqual(len(data), int(size))
                found[path] = described(data)
        del found["*root*"]
        return found

    SIZES = [0, 1, 63, 64, 65, 511, 512, 513, 4095, 4096, 4097, 70000]

    def files(self):
        files = {f"size {size}": contents(size) for size in self.SIZES}
        files.update({f"a/b/c/{size}": contents(size + 1) for size in self.SIZES})
        files["caf\u00e9/\u00fcber"] = b"not ascii"
        files["empty"] = None
        return files

    def check_file(self, name, expected):
        self.assertEqual(self.by_olefile(name), expected)
        parents = {os.path.dirname(path) for path in expected}
        shown = {path: described(b"") if data is None and path not in parents else data
                 for path, data in expected.items()}  # gsf takes an empty storage for a stream
        self.assertEqual(self.by_gsf(name), shown)
        self.assertEqual(self.by_library(name), expected)

    def test_written_files_are_read_by_others(self):
        expected = self.make_folder("in", self.files())
        self.tool("storage", "pack", "in", "out")
        self.check_file("out", expected)

    def test_changed_files_are_read_by_others(self):
        expected = self.make_folder("in", self.files())
        self.tool("storage", "pack", "in", "out")
        for path, data in {"size 4097": b"short now", "size 63": contents(5000), "a/new": contents(300),
                           "z": contents(10000)}.items():
            self.tool("storage", "put", "out!" + path, "-", stdin=data)
            expected[path] = described(data)
        for path in ("empty", "size 70000"):
            self.tool("storage", "rm", "out!" + path + ("/" if expected.pop(path) is None else ""))
        self.check_file("out", expected)

    def test_a_file_with_sector_tables_of_its_tables(self):
        expected = self.make_folder("in", {"large": contents(9 << 20), "small": b"x"})
        self.tool("storage", "pack", "in", "out")
        self.check_file("out", expected)

    def test_files_of_others_are_read(self):
        files = {path: data for path, data in self.files().items() if path.isascii() and data is not None}
        expected = self.make_folder("in", files)
        names = sorted(os.listdir(self.path("in")))
        subprocess.run(["gsf", "createole", "../out", *names], cwd=self.path("in"), check=True, capture_output=True,
                       timeout=60, env={**os.environ, "LC_ALL": "C.UTF-8"})
        self.check_file("out", expected)
        self.tool("storage", "put", "out!size 64", "-", stdin=b"changed")
        self.check_file("out", {**expected, "size 64": described(b"changed")})

    def test_real_documents_are_read(self):
        documents = sorted(glob.glob(DOCUMENTS))
        self.assertGreaterEqual(len(documents), 10, "scripts/bootstrap test installs them")
        for number, document in enumerate(documents):
            with self.subTest(document=os.path.basename(document)):
                with open(document, "rb") as file:
                    self.write(f"{number}.xls", file.read())
                found = self.by_library(f"{number}.xls")
                self.assertTrue(found)
                self.assertEqual(found, self.by_olefile(f"{number}.xls", "as it is"))

    # What olefile reads as before, the library does; whatever was done to a file, the program ends as it should.

    def documents(self):
        self.make_folder("in", self.files())
        self.tool("storage", "pack", "in", "made")
        with open(sorted(glob.glob(DOCUMENTS))[0], "rb") as file:
            self.write("theirs", file.read())
        return {name: self.read(name) for name in ("made", "theirs")}

    def test_harmless_changes_change_nothing(self):
        for name, whole in self.documents().items():
            expected = self.by_library(name)
            count = struct.unpack_from("<I", whole, 44)[0]
            numbers = [(44, count + 1), (44, count + 1000), (76 + 4 * count, 0xFFFFFFFE), (508, 0xFFFFFFFD)]
            changed = [whole[:at] + struct.pack("<I", number) + whole[at + 4:] for at, number in numbers]
            changed += [whole[:-cut] for cut in (1, 128, 384, 511)]
            for number, contents in enumerate(changed):
                with self.subTest(name=name, number=number):
                    self.write("changed", contents)
                    try:
                        same = self.by_olefile("changed", "as it is") == expected
                    except (AssertionError, ValueError):
                        same = False  # bytes of a stream were cut off
                    if same or number < len(numbers):
                        self.assertEqual(self.by_library("changed"), expected)

    def test_damage_at_random_ends_nothing_badly(self):
        bits = random.Random(7)
        for name, whole in self.documents().items():
            directory, table = ((struct.unpack_from("<I", whole, at)[0] + 1) * 512 for at in (48, 76))
            for number in range(20):
                contents = bytearray(whole)
                for _ in range(1 + bits.randrange(3)):
                    at = bits.choice((0, directory, directory, table)) + bits.randrange(128) * 4
                    value = bits.choice((0, 1, len(whole) // 512, bits.randrange(300), 0xFFFFFFFE, 0xFFFFFFFF,
                                         struct.unpack_from("<I", contents, at)[0] + 1 & 0xFFFFFFFF))
                    struct.pack_into("<I", contents, at, value)
                with self.subTest(name=name, number=number):
                    self.write("damaged", bytes(contents))
                    result = self.run_program("qzrtool", "storage", "check", "damaged")
                    self.assertIn(result.code, (OK, NO, TROUBLE), result.err)
                    result = self.run_program("qzrtool", "storage", "put", "damaged!new", "-", stdin=b"n" * 100000)
                    self.assertIn(result.code, (OK, TROUBLE), result.err)
