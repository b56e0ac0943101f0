from support import NO, TROUBLE, ProgramTest, int_value, node, text_value

SETTINGS = """; the program's settings
[\\]
  Version=i3 | ; of the format
  Title=sHello | Count=w5

; everything about the view
[\\View]
\tZoom=R1.5
\t; drawn below everything
\tColor=W0xFF

[\\View\\Grid]
\tSpacing=p10,20
"""


class Edit(ProgramTest):
    def edited(self, *arguments, text=SETTINGS, code=0):
        self.write("a.qzt", text)
        result = self.tool(arguments[0], "a.qzt", *arguments[1:], code=code)
        return self.read("a.qzt").decode("cp1252") if code == 0 else result.err

    def test_get(self):
        self.write("a.qzt", SETTINGS + "[\\Odd]\na/b=i7\nLong=s" + "x" * 100 + "\n@=i9\nB=x0aFF\n")
        cases = [
            ("Version", "3"), ("\\Version", "3"), ("view/zoom", "1.5"), ("View\\Grid\\Spacing", "10,20"),
            ("Odd\\a/b", "7"), ("Odd/Long", "x" * 100), ("Odd/@", "9"), ("Odd/B", "0AFF"),
        ]
        for path, value in cases:
            with self.subTest(path=path):
                self.assertEqual(self.tool("get", "a.qzt", path).out, value + "\n")

    def test_get_what_is_not_there(self):
        self.write("a.qzt", SETTINGS)
        cases = [
            ("View/Nothing", NO, "a.qzt: there is no value \\View\\Nothing\n"),
            ("None/Such", NO, "a.qzt: there is no value \\None\\Such\n"),
            ("View/Grid", NO, "a.qzt: \\View\\Grid is a section; qzrtool show draws it\n"),
            ("View/", TROUBLE, "qzrtool: \\View is the path of a section; qzrtool show draws it\n"),
        ]
        for path, code, message in cases:
            with self.subTest(path=path):
                self.assertEqual(self.tool("get", "a.qzt", path, code=code).err, message)

    def test_set_changes_one_statement(self):
        cases = [  # path, value, what is replaced, by what
            ("Version", "int:4", "Version=i3", "Version=i4"),
            ("version", "i:4", "Version=i3", "Version=i4"),
            ("Title", "text:Bye", "Title=sHello", "Title=sBye"),
            ("View/Zoom", "double:0.25", "Zoom=R1.5", "Zoom=R0.25"),
            ("View/Zoom", "int:2", "Zoom=R1.5", "Zoom=i2"),
            ("View/Color", "ulong:0x10", "Color=W0xFF", "Color=W16"),
            ("View/Grid/Spacing", "point: 1, -2", "Spacing=p10,20", "Spacing=p1,-2"),
        ]
        for path, value, old, new in cases:
            with self.subTest(path=path, value=value):
                self.assertEqual(self.edited("set", path, value), SETTINGS.replace(old, new))

    def test_set_adds(self):
        cases = [  # path, behind which text, what
            ("View/New", "Color=W0xFF\n", "\tNew=i1\n"),
            ("View/Grid/New", "Spacing=p10,20\n", "\tNew=i1\n"),
            ("New", "Count=w5", "\t| New=i1"),
            ("Other/Deep/New", SETTINGS, "\n[\\Other\\Deep]\n\tNew=i1\n"),
        ]
        for path, behind, added in cases:
            with self.subTest(path=path):
                self.assertEqual(self.edited("set", path, "int:1"), SETTINGS.replace(behind, behind + added))

    def test_set_in_one_line_form(self):
        text = "[\\]\t| a=i1\t| b=i2\r\n[\\s]\t| c=i3\r\n"
        self.assertEqual(self.edited("set", "d", "int:4", text=text), text.replace("b=i2", "b=i2\t| d=i4"))
        self.assertEqual(self.edited("set", "a", "int:4", text=text), text.replace("a=i1", "a=i4"))
        self.assertEqual(self.edited("rm", "a", text=text), text.replace("a=i1\t| ", ""))

    def test_rm(self):
        cases = [  # path, what goes
            ("View/Zoom", "\tZoom=R1.5\n"),
            ("Title", "Title=sHello | "),
            ("View/Grid/", "[\\View\\Grid]\n\tSpacing=p10,20\n"),
            ("view/grid/spacing", "\tSpacing=p10,20\n"),
        ]
        for path, gone in cases:
            with self.subTest(path=path):
                self.assertEqual(self.edited("rm", path), SETTINGS.replace(gone, ""))

    def test_rm_of_a_section_takes_those_in_it(self):
        self.assertNotIn("View", self.edited("rm", "View/").replace("about the view", ""))
        self.tool("show", "a.qzt", "View", code=NO)

    def test_rm_of_a_section_keeps_the_one_above(self):
        self.assertEqual(self.edited("rm", "a/b/", text="[\\a\\b]\nv=i1\n[\\c]\n"), "[\\c]\n\n[\\a]\n")

    def test_rm_of_what_is_not_there(self):
        cases = [
            ("Nothing", "a.qzt: there is no value \\Nothing\n"),
            ("None/", "a.qzt: there is no value \\None\n"),
            ("View/Grid", "a.qzt: there is no value \\View\\Grid, but a section, which is removed under the name "
                          "\\View\\Grid\\\n"),
        ]
        for path, message in cases:
            with self.subTest(path=path):
                self.assertEqual(self.edited("rm", path, code=NO), message)
        self.assertIn("the root cannot be removed", self.edited("rm", "/", code=TROUBLE))
        self.assertEqual(self.read("a.qzt").decode(), SETTINGS)

    def test_set_refuses(self):
        cases = [
            ("V", "5", "has no type"), ("V", "number:5", 'there is no type "number"'), ("V", "int:", "is no value of type int"),
            ("V", "int:5x", "is no value of type int"), ("V", "int:2147483648", "is no value of type int"),
            ("V", "word:-1", "is no value of type word"), ("V", "byte:256", "is no value of type byte"),
            ("V", "bool:maybe", "is no value of type bool"), ("V", "point:1", "is no value of type point"),
            ("V", "point:1,2,3", "is no value of type point"), ("V", "rect:1,2,3,x", "is no value of type rect"),
            ("V", "double:1,5", "is no value of type double"), ("V", "blob:123", "is no value of type blob"),
            ("V", "blob:xy", "is no value of type blob"), ("V", "empty:1", "is no value of type empty"),
            ("V", "object:x", "cannot be typed"), ("View/", "int:1", "is the path of a section"),
            ("V", "text:a|b", 'a.qzt: not changed: \\V: a text ends at "|"'),
            ("V", "byte:7", "a.qzt: not changed: \\V: a byte reads back as 0"),
            ("V", "wtext:x", "a.qzt: not changed: \\V: wide text"), ("a=b", "int:1", "a.qzt: not changed: "),
            ("a|b", "int:1", "a.qzt: not changed: "),
        ]
        for path, value, message in cases:
            with self.subTest(path=path, value=value):
                self.assertIn(message, self.edited("set", path, value, code=TROUBLE))
                self.assertEqual(self.read("a.qzt").decode(), SETTINGS)

    def test_included_values(self):
        self.write("more.qzt", "[\\More]\nBelow=i1\n")
        text = "[\\]\na=i1\n#include \".\\more.qzt\"\n"
        self.assertEqual(self.edited("set", "More/Below", "int:2", text=text), text + "\n[\\More]\n\tBelow=i2\n")
        self.assertEqual(self.read("more.qzt"), b"[\\More]\nBelow=i1\n")
        message = self.edited("rm", "More/Below", text=text, code=TROUBLE)
        self.assertRegex(message, r"a\.qzt: not changed: the value comes from .*more\.qzt:2, which is included")
        self.assertEqual(self.read("a.qzt").decode(), text)

    def test_streams_stay_streams(self):
        self.write("a.qzs", node([("s", node())], [("v", int_value(1))]))
        self.tool("set", "a.qzs", "s/t", "text:x|y")
        self.assertEqual(self.read("a.qzs"), node([("s", node(values=[("t", text_value("x|y"))]))], [("v", int_value(1))]))
        self.tool("set", "a.qzs", "b", "byte:0xAB")
        self.tool("rm", "a.qzs", "s/")
        self.assertEqual(self.read("a.qzs"), node(values=[("v", int_value(1)), ("b", b"\x02\0\xab")]))

    def test_a_stream_that_would_lose_something_is_not_changed(self):
        # Wide text stored whole, as other streams than those in memory store it.
        wide = node(values=[("w", b"\x13\0\x08\0\0\0a\0b\0c\0\0\0")])
        self.write("a.qzs", wide)
        result = self.tool("set", "a.qzs", "v", "int:1", code=TROUBLE)
        self.assertIn("a.qzs: not changed: \\w: of a wide text only the first half", result.err)
        self.assertEqual(self.read("a.qzs"), wide)
