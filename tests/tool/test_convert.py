import os
import stat

from support import NO, STRICT, TROUBLE, ProgramTest, int_value, node, sample, text_value

TREE_TEXT = "[\\]\r\n\tTitle=sHello\r\n\r\n[\\View]\r\n\tZoom=i3\r\n\r\n[\\View\\Empty]\r\n"
TREE_STREAM = node([("View", node([("Empty", node())], [("Zoom", int_value(3))]))], [("Title", text_value("Hello"))])


class Convert(ProgramTest):
    def test_text_to_stream(self):
        self.write("a.qzt", TREE_TEXT)
        self.tool("convert", "a.qzt", "a.qzs")
        self.assertEqual(self.read("a.qzs"), TREE_STREAM)

    def test_stream_to_text(self):
        self.write("a.qzs", TREE_STREAM)
        self.tool("convert", "a.qzs", "a.qzt")
        self.assertEqual(self.read("a.qzt").decode(), TREE_TEXT)

    def test_compact_text_is_a_line_for_each_section(self):
        self.write("a.qzs", TREE_STREAM)
        self.tool("convert", "--compact", "a.qzs", "a.qzt")
        self.assertEqual(self.read("a.qzt"), b"[\\]\t| Title=sHello\r\n[\\View]\t| Zoom=i3\r\n[\\View\\Empty]\r\n")
        self.tool("convert", "a.qzt", "b.qzs")
        self.assertEqual(self.read("b.qzs"), TREE_STREAM)

    def test_samples_round_trip(self):
        for name in ("settings.qzt", "shortcuts.qzt"):
            self.write(name, sample(name))
        self.tool("convert", "--strict", "settings.qzt", "a.qzs")
        self.tool("convert", "--strict", "a.qzs", "b.qzt")
        self.tool("diff", "--strict", "settings.qzt", "b.qzt")
        self.tool("convert", "--strict", "b.qzt", "c.qzs")
        self.assertEqual(self.read("a.qzs"), self.read("c.qzs"))
        values = int(self.tool("show", "a.qzs").out.splitlines()[-1].split()[0])
        written = sum(sample(name).count(b"\n\t") for name in ("settings.qzt", "shortcuts.qzt"))
        self.assertEqual(values, written)

    def test_what_text_cannot_hold_is_named(self):
        cases = [  # bytes of the value, reason
            (text_value("a|b"), 'a text ends at "|" and at line breaks'),
            (text_value("two\nlines"), 'a text ends at "|" and at line breaks'),
            (text_value("blank "), "blanks at the end of a text are not stored"),
            (b"\x02\0\xab", "a byte reads back as 0 from text"),
            (b"\x08\0" + bytes.fromhex("9a9999999999b93f"), None),  # 0.1
            (b"\x08\0" + bytes.fromhex("343333333333d33f"), "reals are stored with 14 digits"),  # 0.1 + 0.2
            (b"\x13\0\x06\0\0\0h\0i\0\0\0", "wide text is stored as narrow text"),
            (b"\x12\0" + b"NoSuchClass\0" + b"\x02\0\0\0ab", "objects have no text form"),
        ]
        for value, reason in cases:
            with self.subTest(value=value):
                self.write("a.qzs", node([("Sub", node(values=[("v", value)]))]))
                result = self.tool("convert", "a.qzs", "a.qzt", code=NO if reason else 0)
                wanted = f"a.qzt: warning: not held as it is: \\Sub\\v: {reason}\n" if reason else ""
                self.assertTrue(result.err.startswith(wanted), result.err)
                self.assertEqual(bool(result.err), bool(reason))

    def test_names_that_text_cannot_hold_are_named(self):
        for name in ("a=b", "a|b", " a", "a ", ";a", "[a", "#include"):
            with self.subTest(name=name):
                self.write("a.qzs", node(values=[(name, int_value(1))]))
                result = self.tool("convert", "a.qzs", "a.qzt", code=NO)
                self.assertIn("a.qzt: warning: not held as it is: ", result.err)

    def test_losses_under_strict_write_nothing(self):
        self.write("a.qzs", node(values=[("v", text_value("a|b"))]))
        result = self.tool("convert", "--strict", "a.qzs", "a.qzt", code=STRICT)
        self.assertTrue(result.err.endswith("warnings; stopped because of --strict\n"), result.err)
        self.assertEqual(self.files(), ["a.qzs"])

    def test_a_tree_in_its_own_place(self):
        self.write("a.qzt", "[\\]|a=i1|b=i2")
        self.tool("convert", "a.qzt", "a.qzt")
        self.assertEqual(self.read("a.qzt"), b"[\\]\r\n\ta=i1\r\n\tb=i2\r\n")

    def test_kinds_are_told_from_contents_and_extensions(self):
        cases = [  # source name, source bytes, target, kind of what is written
            ("a.dat", TREE_STREAM, "b.qzt", "text"),
            ("a.dat", TREE_TEXT, "b.qzs", "stream"),
            ("a.qzt", TREE_STREAM, "b.STREAM", "stream"),
            ("stream:a.dat", TREE_STREAM, "text:b.dat", "text"),
            ("text:a.dat", TREE_TEXT, "stream:b.dat", "stream"),
        ]
        for source, contents, target, kind in cases:
            with self.subTest(source=source, target=target):
                self.write(source.split(":")[-1], contents)
                self.tool("convert", source, target)
                wanted = TREE_STREAM if kind == "stream" else TREE_TEXT.encode()
                self.assertEqual(self.read(target.split(":")[-1]), wanted)

    def test_unwritable_targets_keep_what_they_have(self):
        self.write("a.qzt", TREE_TEXT)
        self.write("read-only.qzt", "[\\]\nold=i1\n")
        os.chmod(self.path("read-only.qzt"), stat.S_IREAD)
        os.mkdir(self.path("folder.qzt"))
        cases = [
            ("read-only.qzt", "read-only.qzt: is read-only"),
            ("folder.qzt", "folder.qzt: is a directory"),
            ("missing/b.qzt", "missing/b.qzt: cannot be written: No such file or directory"),
            ("b.unknown", "b.unknown: which kind of tree?"),
        ]
        before = self.files()
        for target, message in cases:
            with self.subTest(target=target):
                result = self.tool("convert", "a.qzt", target, code=TROUBLE)
                self.assertTrue(result.err.startswith("qzrtool: " + message), result.err)
        self.assertEqual(self.read("read-only.qzt"), b"[\\]\nold=i1\n")
        self.assertEqual(self.files(), before)

    def test_unreadable_sources(self):
        os.mkdir(self.path("folder"))
        self.write("empty", b"")
        cases = [
            ("missing.qzt", "missing.qzt: there is no such file"),
            ("folder", "folder: is a directory"),
            ("empty", "empty: which kind of tree?"),
            ("yaml:a", 'there is no kind of tree called "yaml"'),
            ("text:", '"text:" names no file'),
        ]
        for source, message in cases:
            with self.subTest(source=source):
                result = self.tool("convert", source, "b.qzt", code=TROUBLE)
                self.assertTrue(result.err.startswith("qzrtool: " + message), result.err)
        self.assertNotIn("b.qzt", self.files())

    def test_unix_paths(self):
        self.write("a.qzt", TREE_TEXT)
        root = {"QZRTOOL_UNIX_ROOT": "Z:"}
        source, target = self.path("a.qzt"), "stream:" + self.path("a.qzs")
        self.tool("convert", source, target, env=root)
        self.assertEqual(self.read("a.qzs"), TREE_STREAM)
        result = self.tool("show", self.path("none.qzt"), env=root, code=TROUBLE)
        self.assertIn(self.path("none.qzt") + ": there is no such file", result.err)
