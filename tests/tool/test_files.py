import json
import os
import time

from support import NO, TROUBLE, ProgramTest

MARK = b"QZR-UNFINISHED-1"
NOT_WHOLE = 2**64 - 1


def marked(data, whole_size):
    return data + MARK + (len(data) + 32).to_bytes(8, "little") + whole_size.to_bytes(8, "little")


class Files(ProgramTest):
    def test_info(self):
        self.write("a", b"x" * 1234)
        os.utime(self.path("a"), (1.6e9, 1.6e9))
        self.assertRegex(self.tool("file", "info", "a").out,
                         r"^kind +file\nsize +1234\nwritten +2020-09-13 12:26:40 UTC\nowner +\S.*\nwritable +yes\n$")
        os.chmod(self.path("a"), 0o444)
        facts = json.loads(self.tool("file", "info", "--json", "a").out)
        self.assertEqual((facts["size"], facts["writable"]), (1234, False))
        self.assertIn("kind      folder", self.tool("file", "info", ".").out)
        self.assertIn("there is no such file", self.tool("file", "info", "b", code=TROUBLE).err)

    def test_locks_and_what_others_see(self):
        self.write("a b", b"x")
        lines = self.tool("file", "lock-test", "a b").out.splitlines()[1:]
        free, locked = "reading yes, writing yes", "reading yes, writing no"
        wanted = [  # text, shared, exclusive, the library may write, another process
            ("no lock", "0", "0", "yes", free),
            ("one shared lock", "1", "0", "yes", locked),
            ("two shared locks", "2", "0", "yes", locked),
            ("one shared lock given back", "1", "0", "yes", locked),
            ("an exclusive lock besides", "1", "1", "no", locked),
            ("the exclusive lock alone", "0", "1", "no", locked),
            ("all locks given back", "0", "0", "yes", free),
        ]
        for line, (text, shared, exclusive, writes, other) in zip(lines, wanted, strict=True):
            self.assertEqual(line, f"{text:28}{shared:8}{exclusive:11}{writes:16}{other}")
        self.assertEqual(self.read("a b"), b"x")

    def test_recover_tells_whole_documents_from_others(self):
        cases = [  # name, bytes, document
            ("QZP1.tmp", b"[\\]\nv=i1\n", b"[\\]\nv=i1\n"),
            ("qzp2f.tmp", marked(b"[\\]\nv=i2\n+++", 9), b"[\\]\nv=i2\n"),
            ("QZP3.tmp", marked(b"[\\]\nv=", NOT_WHOLE), None),
            ("QZP4.tmp", b"", None),
            ("QZP5.tmp", marked(b"abc", 3)[:-1] + b"\xff", None),
            ("QZP6.tmp", MARK + bytes(16), MARK + bytes(16)),  # no mark: it does not tell its place
            ("QZP7.tmp", b"ol\0\0\0", None),  # part of a copy of the file that is there
            ("QZP8.tmp", b"old!", b"old!"),
            ("QZPx.tmp", b"of another program", None),
            ("notes.tmp", b"of another program", None),
        ]
        for name, data, document in cases:
            with self.subTest(name=name):
                self.write(name, data)
                self.write("a.qzt", b"old")
                arguments = ("recover", "--yes", ".", "a.qzt")
                if document is None:
                    self.assertIn("nothing to recover", self.tool(*arguments, code=NO).out)
                    self.assertEqual((self.read(name), self.read("a.qzt")), (data, b"old"))
                else:
                    self.tool(*arguments)
                    self.assertEqual((self.read("a.qzt"), self.read("a.qzt.before-recovery")), (document, b"old"))
                    self.assertNotIn(name, self.files())
                    os.remove(self.path("a.qzt.before-recovery"))
                if name in self.files():
                    os.remove(self.path(name))

    def test_recover_asks(self):
        for number, age in ((1, 20), (2, 10)):
            self.write(f"QZP{number}.tmp", b"[\\]\n")
            os.utime(self.path(f"QZP{number}.tmp"), (time.time() - age,) * 2)
        self.assertIn("there are several", self.tool("recover", "--yes", ".", "a.qzt", code=TROUBLE).err)
        self.assertIn("--yes needs the name", self.tool("recover", "--yes", "QZP1.tmp", code=TROUBLE).err)
        asked = self.tool("recover", ".", stdin=b"")
        self.assertEqual(asked.out.splitlines()[0], "QZP2.tmp  4 bytes, complete, looks like text")
        self.assertEqual(self.files(), ["QZP1.tmp", "QZP2.tmp"])
        self.tool("recover", ".", "a.qzt", stdin=b"n\r\nno\n")
        self.assertEqual(self.files(), ["QZP1.tmp", "QZP2.tmp"])
        self.tool("recover", ".", stdin=b"new.qzt\n\n")  # the latest comes first
        self.assertEqual(self.files(), ["QZP1.tmp", "new.qzt"])
        self.tool("recover", "QZP1.tmp", "a.qzt", stdin=b"y\n")
        self.assertEqual(self.files(), ["a.qzt", "new.qzt"])
