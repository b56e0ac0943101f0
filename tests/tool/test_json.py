import json
import struct

from support import ProgramTest, node


class Json(ProgramTest):
    def load(self, *arguments, **options):
        return json.loads(self.tool(*arguments, "--json", **options).out)

    def test_values_of_every_type(self):
        cases = [  # in the text form, type, value
            ("e", "empty", None), ("f1", "bool", True), ("f0", "bool", False), ("b00", "byte", 0), ("w7", "word", 7),
            ("W4294967295", "ulong", 4294967295), ("i-2147483648", "int", -2147483648), ("u5", "uint", 5),
            ("l-7", "long", -7), ("R0.1", "double", 0.1), ("R1e300", "double", 1e300), ("r0.5", "float", 0.5),
            ("sSay \"hi\" \\ \xfc", "text", 'Say "hi" \\ ü'), ("z1,-2", "size", [1, -2]), ("Z0.5,1", "rsize", [0.5, 1]),
            ("p3,4", "point", [3, 4]), ("P0.25,-3", "rpoint", [0.25, -3]), ("t1,2,3,4", "rect", [1, 2, 3, 4]),
            ("T.5,2,3,4", "rrect", [0.5, 2, 3, 4]), ("x00ff", "blob", "00FF"), ("x", "blob", ""),
        ]
        text = "[\\]\n" + "".join(f"v{chr(97 + i)}={value}\n" for i, (value, _, _) in enumerate(cases))
        self.write("a.qzt", text)
        tree = self.load("show", "a.qzt")
        self.assertEqual(tree["sections"], [])
        for i, (form, kind, value) in enumerate(cases):
            with self.subTest(form=form):
                self.assertEqual(tree["values"][i], {"name": f"v{chr(97 + i)}", "type": kind, "value": value})

    def test_reals_are_exact(self):
        number = 0.1 + 0.2  # more digits than the text form keeps
        self.write("a.qzs", node(values=[("v", b"\x08\0" + struct.pack("<d", number)),
                                         ("n", b"\x08\0" + struct.pack("<d", float("nan"))),
                                         ("i", b"\x08\0" + struct.pack("<d", float("-inf")))]))
        values = [entry["value"] for entry in self.load("show", "a.qzs")["values"]]
        self.assertEqual(values, [number, "nan", "-inf"])

    def test_nested_sections_and_odd_names(self):
        self.write("a.qzs", node([('say "a"', node([("deep\x01", node())])), ("b", node())]))
        self.assertEqual(self.load("show", "a.qzs"), {"values": [], "sections": [
            {"name": 'say "a"', "values": [], "sections": [{"name": "deep\x01", "values": [], "sections": []}]},
            {"name": "b", "values": [], "sections": []}]})

    def test_wide_text_with_half_a_pair_is_valid(self):
        # Type 19: the count, then the bytes of D83D without its other half.
        self.write("a.qzs", node(values=[("w", b"\x13\0\x04\0\0\0\x3d\xd8\0\0")]))
        self.assertEqual(self.load("get", "a.qzs", "w"), {"path": "\\w", "type": "wtext", "value": "\ufffd"})

    def test_differences(self):
        self.write("a.qzt", "[\\]\nkept=i1\ngone=i2\nother=i3\n[\\Old]\n")
        self.write("b.qzt", "[\\]\nkept=i1\nother=w3\nnew=sx\n")
        self.assertEqual(self.load("diff", "a.qzt", "b.qzt", code=1), {"changes": [
            {"change": "removed", "what": "value", "path": "\\gone", "before": {"type": "int", "value": 2}},
            {"change": "changed", "what": "value", "path": "\\other", "before": {"type": "int", "value": 3},
             "after": {"type": "word", "value": 3}},
            {"change": "added", "what": "value", "path": "\\new", "after": {"type": "text", "value": "x"}},
            {"change": "removed", "what": "section", "path": "\\Old"}], "equal": False})
        self.assertEqual(self.load("diff", "a.qzt", "a.qzt"), {"changes": [], "equal": True})
