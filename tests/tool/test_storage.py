import json
import os
import random
import signal
import subprocess
import tempfile
import time

from support import CANCELLED, NO, OK, TROUBLE, ProgramTest

CONTENTS = {  # path as typed: bytes
    "Page": b"first page",
    "Empty": b"",
    "Settings/View/Zoom": bytes(range(256)) * 300,
    "Settings/small": b"x" * 4095,
    "Settings/large": b"y" * 4097,
}
# Names that must not reach a file system as they are.
HOSTILE = ["sub/%2E%2E", "..%2F..%2Fup", "C%3A%5Cx", "%43ON", "%6Eul.txt", "%05Summary", "end%2E", "end%20", "100%25",
           ".%2E/inner", "a%2Fb"]


class Storage(ProgramTest):
    def build(self, contents=None):
        contents = CONTENTS if contents is None else contents
        with tempfile.TemporaryDirectory(dir=os.environ["QZRTOOL_SCRATCH"]) as folder:
            for path, data in contents.items():
                place = os.path.join(folder, path)
                os.makedirs(os.path.dirname(place), exist_ok=True)
                with open(place, "wb") as file:
                    file.write(data)
            self.tool("storage", "pack", folder, "a.qzc", env={"QZRTOOL_UNIX_ROOT": "Z:"})

    def listed(self, file):
        return {(item["path"], item.get("size")) for item in json.loads(self.tool("storage", "ls", file, "--json").out)}

    def test_streams_are_put_listed_read_and_removed(self):
        for path, data in CONTENTS.items():
            self.tool("storage", "put", "a.qzc!" + path, "-", stdin=data)
        self.assertEqual(self.tool("storage", "ls", "a.qzc").out.split(),
                         "0 Empty 10 Page Settings/ 4097 Settings/large 4095 Settings/small Settings/View/ "
                         "76800 Settings/View/Zoom".split())
        for path, data in CONTENTS.items():
            self.assertEqual(self.tool("storage", "cat", "a.qzc!" + path).bytes, data)
        self.tool("storage", "put", "a.qzc!Page", "-", stdin=b"new")
        self.assertEqual(self.tool("storage", "cat", "a.qzc!Page").bytes, b"new")
        self.tool("storage", "rm", "a.qzc!Settings/View/")
        self.tool("storage", "rm", "a.qzc!Page")
        self.assertEqual(self.tool("storage", "check", "a.qzc").out, "1 storage, 3 streams, 8192 bytes: no damage\n")
        self.assertEqual(self.files(), ["a.qzc"])

    def test_folders_are_packed_and_extracted(self):
        for path, data in CONTENTS.items():
            os.makedirs(os.path.dirname(self.path("in/" + path)), exist_ok=True)
            self.write("in/" + path, data)
        os.mkdir(self.path("in/nothing here"))
        self.tool("storage", "pack", "in", "a.qzc")
        self.tool("storage", "extract", "a.qzc", "out")
        subprocess.run(["diff", "-r", self.path("in"), self.path("out")], check=True)
        self.tool("storage", "extract", "a.qzc!Settings", "part")
        self.assertEqual(self.read("part/View/Zoom"), CONTENTS["Settings/View/Zoom"])
        self.assertIn("is there already", self.tool("storage", "extract", "a.qzc", "out", code=TROUBLE).err)

    def test_hostile_names_stay_inside_and_come_back(self):
        names = {name.replace("%2E%2E", ".%2E"): b"x" for name in HOSTILE}
        self.build(names)
        before = self.listed("a.qzc")
        self.assertEqual({path for path, size in before if size is not None}, set(names))
        self.tool("storage", "extract", "a.qzc", "deep")
        self.assertEqual(self.files(), ["a.qzc", "deep"])
        found = {os.path.relpath(os.path.join(folder, name), self.path("deep"))
                 for folder, _, names in os.walk(self.path("deep")) for name in names}
        self.assertEqual(found, {path for path, size in before if size is not None})
        self.tool("storage", "pack", "deep", "b.qzc")
        self.assertEqual(self.listed("b.qzc"), before)

    def test_refusals(self):
        self.build({"Page": b"x", "Sub/Page": b"y"})
        self.write("plain", b"no compound file")
        os.makedirs(self.path("long/" + "n" * 32))
        before = self.read("a.qzc")
        cases = [
            (["cat", "a.qzc!None"], NO, "a.qzc!None: there is no stream None"),
            (["cat", "a.qzc!None/Page"], NO, "there is no stream None/Page"),
            (["cat", "a.qzc"], TROUBLE, "which stream?"),
            (["cat", "a.qzc!%zz"], TROUBLE, "two hexadecimal digits are needed"),
            (["ls", "a.qzc!Page/x"], NO, "there is no storage"),
            (["ls", "plain"], TROUBLE, "plain: is no compound file"),
            (["ls", "missing"], TROUBLE, "missing: cannot be opened: not found"),
            (["put", "plain!a", "a.qzc"], TROUBLE, "plain!a: is no compound file"),
            (["put", "a.qzc!Sub", "plain"], TROUBLE, "is a storage, not a stream"),
            (["put", "a.qzc!Page/x", "plain"], TROUBLE, "Page is a stream, not a storage"),
            (["put", "a.qzc!" + "n" * 32, "plain"], TROUBLE, "no stream of this name can be made"),
            (["put", "a.qzc!New", "missing"], TROUBLE, "missing: cannot be opened"),
            (["rm", "a.qzc!Sub"], NO, "but a storage, which is removed with"),
            (["rm", "a.qzc!Page/"], NO, "there is no storage Page"),
            (["pack", "missing", "b.qzc"], TROUBLE, "there is no such folder"),
            (["pack", "long", "b.qzc"], TROUBLE, "names of 31 characters at most"),
            (["frob", "a.qzc"], TROUBLE, "which storage command?"),
        ]
        for arguments, code, message in cases:
            with self.subTest(arguments=arguments):
                self.assertIn(message, self.tool("storage", *arguments, code=code).err)
        self.assertEqual(self.read("a.qzc"), before)
        self.assertEqual(self.files(), ["a.qzc", "long", "plain"])

    def test_damage_is_found_and_ends_nothing_badly(self):
        self.build()
        whole = self.read("a.qzc")
        bits = random.Random(5)
        damaged = [whole[:512], whole[:len(whole) // 2], whole[:-1000], whole[:100]]
        for _ in range(8):
            place = bits.randrange(512, len(whole) - 4)
            damaged.append(whole[:place] + b"\xfd\xff\xff\xff" + whole[place + 4:])
        for number, contents in enumerate(damaged):
            with self.subTest(number=number):
                self.write("b.qzc", contents)
                result = self.run_program("qzrtool", "storage", "check", "b.qzc")
                self.assertIn(result.code, (OK, NO, TROUBLE), result.err)
                if number < 2:
                    self.assertNotEqual(result.code, OK, result.out)
                self.assertEqual(self.read("b.qzc"), contents)

    def test_directories_that_lead_in_circles(self):
        self.build({"Loop/Page": b"x"})
        data = bytearray(self.read("a.qzc"))
        child = 0x4C  # of a directory entry: the number of the entry that its elements begin with
        root, loop = (data.index(name.encode("utf-16le") + b"\0\0") for name in ("Root Entry", "Loop"))
        data[loop + child:loop + child + 4] = data[root + child:root + child + 4]
        self.write("a.qzc", bytes(data))
        for arguments in (["storage", "check", "a.qzc"], ["storage", "extract", "a.qzc", "out"], ["show", "a.qzc"]):
            with self.subTest(arguments=arguments):
                self.assertIn("a damaged one", self.tool(*arguments, code=TROUBLE).err)
        self.assertEqual(self.files(), ["a.qzc"])

    def test_a_bar_shows_the_progress(self):
        self.write("in", b"x" * 300000)
        bar = self.tool("storage", "put", "--progress=always", "a.qzc!s", "in").err
        self.assertIn("\rwriting [..............................] 0 % of 292 KiB", bar)
        self.assertTrue(bar.endswith("\r"), bar)
        self.assertEqual(self.tool("storage", "put", "a.qzc!s", "in").err, "")

    def test_ctrl_c_leaves_the_file_as_it_was(self):
        self.build({"Page": b"old"})
        before = self.read("a.qzc")
        process = subprocess.Popen(self.command("qzrtool", "storage", "put", "--progress=always", "a.qzc!Page", "-"),
                                   cwd=self.folder, stdin=subprocess.PIPE, stderr=subprocess.PIPE)
        process.stdin.write(b"new" * 50000)
        process.stdin.flush()
        shown = b""
        while b"writing 1" not in shown:  # the bytes so far
            piece = os.read(process.stderr.fileno(), 1000)
            self.assertTrue(piece, shown)
            shown += piece
            if b"writing" in shown:
                break
        process.send_signal(signal.SIGINT)
        time.sleep(1)  # the handler runs on a thread of its own, and the tool must not be done before
        _, err = process.communicate(b"new" * 50000, timeout=60)
        self.assertEqual(process.returncode, CANCELLED, err)
        self.assertTrue(err.endswith(b"qzrtool: cancelled\n"), err)
        self.assertEqual(self.read("a.qzc"), before)
        self.assertEqual(self.files(), ["a.qzc"])
