import os
import re
import struct

from support import NO, OK, TREE, ProgramTest, node, sample, text_value

TURN = 6.283185307179586


class Examples(ProgramTest):
    def example(self, *arguments, code=OK):
        result = self.run_program(*arguments)
        self.assertEqual(result.code, code, result.err)
        return result.out.replace("\r\n", "\n")

    def test_first_steps(self):
        with open(os.path.join(TREE, "examples", "first_steps", "first_steps.txt"), encoding="utf-8") as file:
            self.assertEqual(self.example("first_steps"), file.read())

    def test_readme_shows_first_steps(self):
        with open(os.path.join(TREE, "README.md"), encoding="utf-8") as file:
            blocks = re.findall(r"```cpp\n(.*?)```", file.read(), re.DOTALL)
        with open(os.path.join(TREE, "examples", "first_steps", "first_steps.cpp"), encoding="utf-8") as file:
            self.assertEqual(blocks, [file.read()])

    def test_object_is_stored_by_class_name(self):
        self.example("object_travel", "make", "a.qzs")
        form = self.read("a.qzs")
        start = node([("Shapes", b"\0Star\0\x12\0PathShape\0")])[:-2]  # up to the length of the object's data
        self.assertTrue(form.startswith(start), form)
        length, version, closed, color, width, count = struct.unpack_from("<IIIIdI", form, len(start))
        self.assertEqual((length, version, closed, color, width, count), (24 + 10 * 16, 1, 1, 0xD4AF37, 1.5, 10))
        self.assertEqual(struct.unpack_from("<dd", form, len(start) + 28), (0.0, -50.0))
        self.assertTrue(form.endswith(b"\0" + b"\0Title\0" + text_value("A star") + b"\0"), form)

    def test_object_reads_back_with_the_plugin(self):
        self.example("object_travel", "make", "a.qzs")
        lines = self.example("object_travel", "print", "a.qzs").splitlines()
        self.assertEqual(lines[0], "closed path, stroke D4AF37, width 1.5")
        self.assertEqual(lines[1].split(), ["0.00", "-50.00"])
        self.assertEqual(len(lines), 11)

    def test_object_is_kept_without_the_plugin(self):
        self.example("object_travel", "make", "a.qzs")
        told = self.example("object_travel", "carry", "a.qzs", "b.qzs")
        self.assertEqual(told, "carried an object of the unknown class PathShape, 184 bytes\n")
        self.assertEqual(self.read("a.qzs"), self.read("b.qzs"))
        self.assertEqual(self.example("object_travel", "print", "b.qzs"), self.example("object_travel", "print", "a.qzs"))

    def test_tool_keeps_objects(self):
        self.example("object_travel", "make", "a.qzs")
        before = self.read("a.qzs")
        self.assertIn("Star  object  PathShape, 184 bytes\n", self.tool("show", "a.qzs").out)
        self.tool("set", "a.qzs", "Title", "text:B star")
        self.assertEqual(self.read("a.qzs"), before.replace(b"A star", b"B star"))
        result = self.tool("convert", "a.qzs", "a.qzt", code=NO)
        self.assertIn("\\Shapes\\Star: objects have no text form", result.err)

    def test_translated_shows_both_languages(self):
        dictionary = os.path.join(TREE, "examples", "translated", "german.wld")
        with open(dictionary, encoding="cp1252", newline="\r\n") as file:
            texts = [line.strip()[1:-1].replace("\\t", " ") for line in file if line.startswith('"')]
        pairs = dict(zip(texts[::2], texts[1::2]))
        own, translated = self.example("translated", "--text", dictionary).split("\n--- with ")
        own, translated = own.splitlines(), translated.splitlines()[2:]
        self.assertEqual(own[1], "  Sketchbook")
        self.assertEqual(translated, [re.sub(r"\S.*", lambda text: pairs.get(text[0], text[0]), line) for line in own])
        unused = set(pairs) - {line.strip() for line in own} - {"QZ_WLD_LANG_ID"}
        self.assertEqual(unused, set())

    def test_samples_have_every_text_type(self):
        text = sample("settings.qzt").decode("ascii") + sample("shortcuts.qzt").decode("ascii")
        letters = set(re.findall(r"^\t[^=\n]+=([A-Za-z])", text, re.MULTILINE))
        self.assertEqual(letters, set("efbwWiulRrszZpPtTx"))
