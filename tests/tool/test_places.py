import os
import uuid

from support import NO, STRICT, TROUBLE, ProgramTest, int_value, node, text_value

TREE = "[\\]\nTitle=sHello\nEmpty=s\n\n[\\View]\nZoom=R1.5\nBytes=x00FF\n\n[\\View\\Grid]\n"
OBJECT = b"\x12\0NoSuchClass\0\x02\0\0\0ab"
WIDE = b"\x13\0\x03\0\0\0h\0i"  # as streams keep it: half of its bytes


class Places(ProgramTest):
    def setUp(self):
        super().setUp()
        self.key = "HKCU\\Software\\qzrtool-test-" + uuid.uuid4().hex
        self.write("a.qzt", TREE)
        self.places = ("ini:a.ini", "live:l.ini", "stor:a.qzc", "stor:b.qzc!Settings/x%2Fy", "reg:" + self.key + "\\Tree")

    def tearDown(self):
        self.run_program("reg", "delete", self.key, "/f")

    def test_trees_survive_every_place(self):
        for place in self.places:
            with self.subTest(place=place):
                self.tool("convert", "--strict", "a.qzt", place)
                self.tool("diff", "--strict", "a.qzt", place)
                # A second tree takes the whole place of the first.
                self.write("b.qzt", "[\\]\nTitle=i1\n[\\Other]\nv=u2\n")
                self.tool("convert", "--strict", "b.qzt", place)
                self.tool("diff", "--strict", "b.qzt", place)

    def test_single_values_in_every_place(self):
        for place in self.places:
            with self.subTest(place=place):
                self.tool("convert", "a.qzt", place)
                self.tool("set", place, "View/Grid/Spacing", "point:3,4")
                self.tool("rm", place, "Title")
                self.assertEqual(self.tool("get", place, "View/Grid/Spacing").out, "3,4\n")
                self.tool("get", place, "Title", code=NO)
                self.tool("rm", place, "View/")
                self.tool("show", place, "View", code=NO)

    def test_what_each_place_cannot_hold(self):
        values = {"o": OBJECT, "b": b"\x02\0\xab", "w": WIDE, "bar": text_value("a|b"), "line": text_value("a\nb"),
                  "long": text_value("x" * 33000), "": int_value(1)}
        self.write("a.qzs", node(values=[(name, value) for name, value in values.items() if name]))
        cases = [  # place, what is lost
            ("ini:a.ini", {"o", "b", "w", "bar", "line"}),
            ("live:l.ini", {"o", "b", "w", "line", "long"}),
            ("stor:a.qzc", set()),
            ("reg:" + self.key, {"o", "w"}),
        ]
        for place, lost in cases:
            with self.subTest(place=place):
                result = self.tool("convert", "a.qzs", place, code=NO if lost else 0)
                named = {line.split("not held as it is: \\")[1].split(":")[0] for line in result.err.splitlines()}
                self.assertEqual(named & set(values), lost)
                result = self.tool("convert", "--strict", "a.qzs", place, code=STRICT if lost else 0)
                kept = set(values) - lost - {"", "line" if place.startswith(("ini", "live")) else ""}
                differences = self.tool("diff", "a.qzs", place, code=NO if lost else 0).out
                for name in kept:
                    self.assertNotIn(f" \\{name} ", differences)

    def test_registry_layout(self):
        self.tool("convert", "a.qzt", "reg:" + self.key)
        query = self.run_program("reg", "query", self.key + "\\View").out
        self.assertRegex(query, r"Zoom\s+REG_BINARY\s+08000000000000000000F83F")
        self.assertRegex(query, r"Bytes\s+REG_BINARY\s+110000000200000000FF")
        self.assertRegex(self.run_program("reg", "query", self.key).out, r"Title\s+REG_SZ\s+Hello")

    def test_registry_keys_of_others_are_left_alone(self):
        self.run_program("reg", "add", self.key, "/v", "Number", "/t", "REG_DWORD", "/d", "77", "/f")
        result = self.tool("show", "reg:" + self.key)
        self.assertIn("warning: ignored: the value \\Number is none that a tree can hold", result.err)
        cases = [
            ("reg:" + self.key, "would be lost"),
            ("reg:HKCU\\Software", "is shared by many programs"),
            ("reg:HKCU", "is shared by many programs"),
            ("reg:HKXX\\Software\\a", "a key begins with HKCU\\ or HKLM\\"),
        ]
        for place, message in cases:
            with self.subTest(place=place):
                self.assertIn(message, self.tool("convert", "a.qzt", place, code=TROUBLE).err)
        self.assertRegex(self.run_program("reg", "query", self.key).out, r"Number\s+REG_DWORD\s+0x4d")
        self.assertIn("there is no such key", self.tool("show", "reg:" + self.key + "\\None", code=TROUBLE).err)

    def test_live_files_keep_what_is_not_the_tree(self):
        text = "; by hand\r\n[Other program]\r\nv=1\r\n[\\]\r\n@=e\r\nOld=i1\r\n"
        self.write("l.ini", text)
        self.assertEqual(self.tool("get", "live:l.ini", "Old").out, "1\n")
        self.assertEqual(self.read("l.ini").decode(), text)  # reading does not write
        self.write("b.qzt", "[\\]\nNew=i2\n")
        self.tool("convert", "b.qzt", "live:l.ini")
        after = self.read("l.ini").decode()
        self.assertTrue(after.startswith(text[:text.index("[\\]")]), after)
        self.assertIn("New=i2", after)
        self.assertNotIn("Old", after)

    def test_other_contents_of_documents_are_kept(self):
        self.write("page", b"\xff\xff these bytes are no value")
        self.tool("storage", "put", "doc.qzc!Page", "page")
        before = self.read("doc.qzc")
        self.assertIn("would be lost", self.tool("convert", "a.qzt", "stor:doc.qzc", code=TROUBLE).err)
        self.assertEqual(self.read("doc.qzc"), before)
        self.tool("convert", "a.qzt", "stor:doc.qzc!Settings")
        self.tool("diff", "--strict", "a.qzt", "doc.qzc!Settings")
        self.assertEqual(self.tool("storage", "cat", "doc.qzc!Page").bytes, b"\xff\xff these bytes are no value")

    def test_a_source_that_fails_costs_no_target(self):
        for place in self.places:
            self.tool("convert", "a.qzt", place)
        before = {name: self.read(name) for name in self.files()}
        self.write("bad.qzs", b"View\0")
        self.write("nothing", b"")
        sources = ("bad.qzs", "stor:nothing", "stor:a.qzt", "live:missing", "reg:HKCU\\Software\\qzrtool-none")
        for source, place in zip(sources, self.places, strict=True):
            with self.subTest(place=place, source=source):
                self.tool("convert", source, place, code=TROUBLE)
                self.tool("diff", "a.qzt", place)
        self.assertEqual({name: self.read(name) for name in before}, before)
        self.assertEqual(set(self.files()) - set(before), {"bad.qzs", "nothing"})

    def test_standard_input_and_output(self):
        stream = self.tool("convert", "text:-", "stream:-", stdin=b"[\\]\nv=i1\n").bytes
        self.assertEqual(stream, node(values=[("v", int_value(1))]))
        self.assertEqual(self.tool("convert", "stream:-", "ini:-", stdin=stream).bytes, b"[\\]\t| v=i1\r\n")
        # The library reads this from memory, by the name of a memory file.
        self.assertEqual(self.tool("get", "ini:-", "v", stdin=b"[\\]\nv=sfrom memory\n").out, "from memory\n")
        self.assertEqual(self.tool("diff", "ini:-", "a.qzt", stdin=TREE.encode()).out, "")
        self.assertIn("cannot be changed", self.tool("set", "text:-", "v", "int:1", code=TROUBLE).err)
        for place in ("stor:-", "stor:-!s", "live:-"):
            self.assertIn("needs a file", self.tool("convert", "a.qzt", place, code=TROUBLE).err)
            self.assertIn("needs a file", self.tool("show", place, code=TROUBLE).err)
        self.assertNotIn("-", self.files())

    def test_includes_of_whole_files(self):
        os.mkdir(self.path("sub"))
        self.write("sub/b.ini", "[\\b]\nv=i1\n")
        self.write("a.ini", "[\\]\n#include \".\\sub\\b.ini\"\n")
        self.assertEqual(self.tool("get", "ini:a.ini", "b/v").out, "1\n")
