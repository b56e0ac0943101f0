import re

from support import NO, ProgramTest, int_value, node, text_value

SETTINGS = """[\\]
Title=sA \xe9tude
Version=i3
[\\View]
Zoom=R1.5
[\\View\\Grid]
Spacing=p10,20
[\\Empty]
"""


class Show(ProgramTest):
    def show(self, *arguments, text=SETTINGS, **options):
        self.write("a.qzt", text)
        return self.tool("show", "a.qzt", *arguments, **options).out

    def test_draws_values_before_sections(self):
        self.assertEqual(self.show(), (
            "a.qzt (text)\n"
            "├─ Title    text    \"A étude\"\n"
            "├─ Version  int     3\n"
            "├─ [View]\n"
            "│  ├─ Zoom  double  1.5\n"
            "│  └─ [Grid]\n"
            "│     └─ Spacing  point   10,20\n"
            "└─ [Empty]\n"
            "4 values in 3 sections\n"))

    def test_draws_with_ascii(self):
        self.assertEqual(self.show("--ascii", "View"), (
            "a.qzt (text) \\View\n"
            "|- Zoom  double  1.5\n"
            "`- [Grid]\n"
            "   `- Spacing  point   10,20\n"
            "2 values in 1 section\n"))

    def test_shows_every_type(self):
        cases = [
            ("e", "empty"), ("f1", "bool    yes"), ("f0", "bool    no"), ("b00", "byte    0"), ("w65535", "word    65535"),
            ("W4294967295", "ulong   4294967295"), ("i-2147483648", "int     -2147483648"),
            ("u4294967295", "uint    4294967295"), ("l-7", "long    -7"), ("R0.1", "double  0.1"), ("r0.1", "float   0.1"),
            ("s", 'text    ""'), ("sa\tb", 'text    "a\\tb"'), ("z1,-2", "size    1,-2"), ("Z0.5,1e300", "rsize   0.5,1e+300"),
            ("P0.25,-3", "rpoint  0.25,-3"), ("t1,2,3,4", "rect    1,2,3,4"), ("T.5,2,3,4", "rrect   0.5,2,3,4"),
            ("x00FF", "blob    00FF"), ("x", "blob    0 bytes"),
        ]
        text = "[\\]\n" + "".join(f"{chr(97 + i)}={value}\n" for i, (value, _) in enumerate(cases))
        lines = self.show(text=text).splitlines()
        for i, (value, shown) in enumerate(cases):
            with self.subTest(value=value):
                self.assertEqual(lines[1 + i][3:], f"{chr(97 + i)}  {shown}")

    def test_shortens_long_values_unless_full(self):
        text = "[\\]\nt=s" + "\xe9" * 70 + "\nx=x" + "0A" * 20 + "\n"
        short = self.show(text=text)
        self.assertIn('"' + "é" * 60 + '..." (70 characters)', short)
        self.assertIn("0A" * 16 + "... (20 bytes)", short)
        full = self.show("--full", text=text)
        self.assertIn('"' + "é" * 70 + '"\n', full)
        self.assertIn("0A" * 20 + "\n", full)

    def test_stops_at_the_depth(self):
        text = "[\\a\\b\\c]\nv=i1\n"
        self.assertEqual(self.show("--depth=2", "--ascii", text=text), (
            "a.qzt (text)\n"
            "`- [a]\n"
            "   `- [b] ... deeper sections are not shown (--depth)\n"
            "0 values in 2 sections\n"))

    def test_colors(self):
        cases = [  # options, environment, colored
            ([], {}, False),
            (["--color=auto"], {}, False),
            (["--color=never"], {}, False),
            (["--color=always"], {}, True),
            (["--color=always"], {"NO_COLOR": "1"}, True),
            ([], {"CLICOLOR_FORCE": "1"}, True),
            ([], {"CLICOLOR_FORCE": "1", "NO_COLOR": "1"}, False),
            (["--color=never"], {"CLICOLOR_FORCE": "1"}, False),
        ]
        plain = self.show()
        for options, env, colored in cases:
            with self.subTest(options=options, env=env):
                shown = self.show(*options, env=env)
                self.assertEqual("\x1b[" in shown, colored)
                self.assertEqual(re.sub(r"\x1b\[[0-9;]*m", "", shown), plain)

    def test_controls_in_names_and_texts_do_not_reach_the_terminal(self):
        self.write("a.qzs", node(values=[("a\x1b[2Jb", int_value(1)), ("t", text_value("\x1b]0;x\x07\n"))]))
        shown = self.tool("show", "a.qzs").out
        self.assertNotIn("\x1b", shown)
        self.assertIn("a\\x1B[2Jb", shown)
        self.assertIn('"\\x1B]0;x\\x07\\n"', shown)

    def test_missing_section(self):
        self.write("a.qzt", SETTINGS)
        result = self.tool("show", "a.qzt", "View/Rulers", code=NO)
        self.assertEqual(result.err, "a.qzt: there is no section \\View\\Rulers\n")

    def test_nesting_without_end(self):
        # One level takes two bytes of names and two zeroes.
        depth = 100000
        self.write("deep.qzs", b"a\0" * depth + b"\0\0" * (depth + 1))
        shown = self.tool("show", "deep.qzs").out
        self.assertIn("64 sections", shown)
