import random

from support import OK, STRICT, TROUBLE, ProgramTest, int_value, node, text_value

WHOLE = node([("View", node(values=[("Zoom", int_value(3))]))], [("Title", text_value("Hello"))])


class Damage(ProgramTest):
    def test_is_told_with_its_place(self):
        cases = [  # bytes, message
            (WHOLE + b"more", f"at byte {len(WHOLE)}: 4 bytes follow the end of the tree"),
            (b"", "at byte 0: the file is empty"),
            (b"\0", "at byte 1: the data end early, with 1 section still open"),
            (b"View\0", "at byte 5: the data end early, with 2 sections still open"),
            (b"Vie", "at byte 0: the data end early, with 1 section still open"),
            (b"\0v\0\x05\0\x01", "at byte 3: the data end early, with 1 section still open"),
            (b"\0v\0\x0a\0\xff\0\0\0abc", "at byte 3: the data end early, with 1 section still open"),
            (b"\0v\0\x63\0\0\0\0\0", "at byte 3: unknown type 99 of the value v"),
            (b"\0v\0\x11\0\xff\xff\xff\x7f\0\0", "at byte 3: the size of the value v is far beyond the end of the data"),
            (b"\0v\0\x12\0Star\0\xff\0\0\0\0\0", "at byte 3: the object of the value v reaches past the end of the data"),
            (b"\0" + b"n" * 1025 + b"\0\x05\0\1\0\0\0\0", "at byte 1: a name is longer than 1024 bytes"),
            (b"\0a\nb\0\x05\0\1\0\0\0\0", "at byte 1: a name holds a line feed"),
        ]
        for contents, message in cases:
            with self.subTest(contents=contents[:40]):
                self.write("a.qzs", contents)
                result = self.tool("show", "stream:a.qzs", code=TROUBLE)
                self.assertEqual(result.err, f"qzrtool: a.qzs: {message} (--salvage uses what can be read)\n")
                self.assertEqual(result.out, "")

    def test_at_any_byte_is_noticed(self):
        # One run for all prefixes would not tell them apart: take those around every boundary.
        for length in (1, 4, 5, 6, 7, 11, 12, 13, 17, 18, 19, 24, 26, 30, len(WHOLE) - 2, len(WHOLE) - 1):
            with self.subTest(length=length):
                self.write("a.qzs", WHOLE[:length])
                result = self.tool("get", "stream:a.qzs", "View/Zoom", code=TROUBLE)
                self.assertIn("the data end early", result.err)

    def test_what_was_read_can_be_salvaged(self):
        self.write("a.qzs", WHOLE[:-3])
        result = self.tool("show", "--salvage", "--ascii", "a.qzs", code=OK)
        self.assertEqual(result.out, "a.qzs (stream)\n`- [View]\n   `- Zoom  int     3\n1 value in 1 section\n")
        self.assertIn("a.qzs: at byte 25: warning: the data end early", result.err)
        self.tool("convert", "--salvage", "--strict", "a.qzs", "b.qzt", code=STRICT)
        self.assertEqual(self.files(), ["a.qzs"])
        self.tool("convert", "--salvage", "a.qzs", "b.qzt", code=OK)
        self.assertEqual(self.read("b.qzt"), b"[\\]\r\n\r\n[\\View]\r\n\tZoom=i3\r\n")

    def test_damaged_files_are_not_changed(self):
        damaged = WHOLE[:-1]
        self.write("a.qzs", damaged)
        self.tool("set", "a.qzs", "Title", "text:New", code=TROUBLE)
        self.tool("rm", "a.qzs", "View/", code=TROUBLE)
        self.assertEqual(self.read("a.qzs"), damaged)
        self.assertEqual(self.files(), ["a.qzs"])

    def test_noise_ends_in_a_message(self):
        noise = random.Random(20240)
        for _ in range(12):
            contents = bytes(noise.choice(b"\0\0\0\x01\x05\x0a\x10\x11\x12\x13ab\xff") for _ in range(200))
            with self.subTest(contents=contents):
                self.write("a.qzs", contents)
                result = self.run_program("qzrtool", "show", "stream:a.qzs")
                self.assertIn(result.code, (OK, TROUBLE))
                self.assertEqual(result.code == TROUBLE, result.err.startswith("qzrtool: a.qzs: at byte "))
