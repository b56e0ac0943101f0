import itertools
import string

from support import OK, STRICT, ProgramTest


def two_names_of_one_hash():
    """Names are matched by h * 257 + byte, modulo 2**32: six digits behind a word suffice for a pair."""
    seen = {}
    for digits in itertools.product(string.digits, repeat=6):
        name = "value" + "".join(digits)
        value = 0
        for byte in name.encode():
            value = (value * 257 + byte) % 2**32
        if value in seen:
            return seen[value], name
        seen[value] = name
    raise AssertionError("no pair")


class Warnings(ProgramTest):
    def test_of_text_files(self):
        cases = [  # text, messages
            ("[\\]\na=i1\n; b=q1\n", []),
            ("a=i1\n[\\]\n", ["1: warning: ignored, because it stands before the first section: a=i1"]),
            ("a\n", ["1: warning: ignored, because it stands before the first section: a"]),
            ("[\\]\n\n|a=q1|\n", ['3: warning: ignored: a has the unknown type letter "q"']),
            ("[\\]\na=\n", ["2: warning: ignored: a has no value; it begins with a type letter"]),
            ("[\\]\na=ix\n", ['2: warning: ignored: a: "x" is no value of type int']),
            ("[\\]\na=w65536|b=w65535\n", ['2: warning: ignored: a: "65536" is no value of type word']),
            ("[\\]\na=f2\na=fYes\n", ['2: warning: ignored: a: "2" is no value of type bool']),
            ("[\\]\na=p1\n", ['2: warning: ignored: a: "1" is no value of type point']),
            ("[\\]\na=R\n", ['2: warning: ignored: a: "" is no value of type double']),
            ("[\\]\na=b5F\nb=b00\n", ["2: warning: a byte (letter b) always reads as 0"]),
            ("[\\]\na=x1G2\nb=x1 2\n", ['2: warning: characters that are no hexadecimal digits are skipped in "1G2"']),
            ("[\\]\na=i12px\nb=i0xfF\nc=R1e5\nd=p 1, 2\n",
             ['2: warning: only the beginning of "12px" is read as a number']),
            ("[\\]\na=i1\nA=i2\n", ["3: warning: replaces the value of the same name of line 2"]),
            ("[\\]\na=i1\n[\\s]\na=i2\n[\\]\na=i3\n",
             ["6: warning: replaces the value of the same name of line 2"]),
            ("[\\]\n#define x\n", ["2: warning: ignored: the only directive is #include"]),
            ("[\\]\n#include\n", ["2: warning: ignored: #include names no file"]),
            ("[\\]\na=i1\0\nb=i2\n", [" warning: nothing is read from the zero byte in line 2 on; is it a text file?"]),
        ]
        for text, messages in cases:
            with self.subTest(text=text):
                self.write("a.txt", text)
                result = self.tool("show", "text:a.txt", code=OK)
                self.assertEqual(result.err, "".join(f"a.txt:{message}\n" for message in messages))

    def test_in_great_number_are_counted(self):
        self.write("a.qzt", "[\\]\n" + "a=q\n" * 250)
        lines = self.tool("show", "a.qzt").err.splitlines()
        self.assertEqual(len(lines), 101)
        self.assertEqual(lines[-1], "150 more warnings")

    def test_end_the_command_under_strict(self):
        self.write("a.qzt", "[\\]\na=i1\nb=q1\n")
        for command, *rest in (["show"], ["get", "a"], ["convert", "b.qzt"], ["diff", "a.qzt"], ["set", "a", "int:2"],
                               ["rm", "a"]):
            with self.subTest(command=command):
                result = self.tool(command, "--strict", "a.qzt", *rest, code=STRICT)
                self.assertEqual(result.out, "")
                self.assertTrue(result.err.endswith("qzrtool: 1 warning; stopped because of --strict\n"), result.err)
        self.assertEqual(self.files(), ["a.qzt"])
        self.assertEqual(self.read("a.qzt"), b"[\\]\na=i1\nb=q1\n")

    def test_of_names_with_one_hash(self):
        first, second = two_names_of_one_hash()
        self.write("a.qzt", f"[\\]\n{first}=i1\n{second}=i2\n")
        result = self.tool("show", "a.qzt")
        self.assertEqual(result.err, f"a.qzt:3: warning: replaces {first} of line 2: the hashes of the two names are "
                                     "equal, so they are one entry\n")

    def test_of_includes(self):
        self.write("a.qzt", "[\\]\n#include \".\\b.qzt\"\n#include \".\\none.qzt\"\n")
        self.write("b.qzt", "[\\b]\nv=i1\nw=q\n#include .\\a.qzt\n")
        result = self.tool("show", "a.qzt")
        self.assertIn("v  int     1\n", result.out)
        lines = result.err.splitlines()
        self.assertRegex(lines[0], r'b\.qzt:3: warning: ignored: w has the unknown type letter "q"')
        self.assertRegex(lines[1], r"b\.qzt:4: warning: ignored: .*a\.qzt is being read already")
        self.assertRegex(lines[2], r"a\.qzt:3: warning: ignored: .*none\.qzt cannot be opened")
        self.assertEqual(len(lines), 3)

    def test_of_includes_without_end(self):
        for i in range(20):
            self.write(f"f{i}.qzt", f"[\\]\nv{i}=i{i}\n#include \".\\f{i + 1}.qzt\"\n")
        result = self.tool("show", "f0.qzt")
        self.assertIn("f16.qzt:3: warning: ignored: files include each other more than 16 deep", result.err)
        self.assertIn("v16  int     16\n", result.out)
        self.assertNotIn("v17", result.out)
