import json
import os
import re

from support import OK, TREE, TROUBLE, ProgramTest


# In this locale arguments may have any character, while the code page is 1252.
UNICODE = {"QZR_LOCALE": "C.UTF-8"}


class CommandLine(ProgramTest):
    def test_wrong_use(self):
        self.write("a.qzt", "[\\]\n")
        cases = [
            ([], "which command? qzrtool help lists them"),
            (["frobnicate"], 'there is no command "frobnicate"; qzrtool help lists them'),
            (["show"], "usage: qzrtool show TREE [SECTION]"),
            (["show", "a.qzt", "b", "c"], "usage: qzrtool show TREE [SECTION]"),
            (["set", "a.qzt", "v"], "usage: qzrtool set TREE PATH TYPE:VALUE"),
            (["show", "--what", "a.qzt"], "qzrtool show has no option --what; see qzrtool help show"),
            (["get", "--ascii", "a.qzt", "v"], "qzrtool get has no option --ascii; see qzrtool help get"),
            (["show", "--depth", "a.qzt"], "--depth needs a value: --depth=N"),
            (["show", "--depth=x", "a.qzt"], '--depth: "x" is not understood'),
            (["show", "--depth=0", "a.qzt"], '--depth: "0" is not understood'),
            (["show", "--json=1", "a.qzt"], "--json takes no value"),
            (["show", "--color=red", "a.qzt"], '--color: "red" is not understood'),
            (["help", "frobnicate"], 'there is no command "frobnicate"'),
            (["storage"], "which storage command? qzrtool help storage lists them"),
        ]
        for arguments, message in cases:
            with self.subTest(arguments=arguments):
                result = self.tool(*arguments, code=TROUBLE)
                self.assertEqual((result.out, result.err), ("", f"qzrtool: {message}\n"))

    def test_options_end_at_two_dashes(self):
        self.write("a.qzt", "[\\]\n--v=i1\n")
        self.assertEqual(self.tool("get", "a.qzt", "--", "--v").out, "1\n")

    def test_version(self):
        with open(os.path.join(TREE, "CMakeLists.txt"), encoding="utf-8") as file:
            version = re.search(r"project\(qzrcore VERSION ([0-9.]+)", file.read()).group(1)
        self.assertEqual(self.tool("--version").out, f"qzrtool {version}\n")

    def test_help_lists_everything(self):
        overview = self.tool("help").out
        self.assertEqual(self.tool("--help").out, overview)
        commands = ("show", "convert", "diff", "get", "set", "rm", "help")
        for word in (*commands, "text:FILE", "stream:FILE", "reg:HKCU\\KEY", "storage ls", "recover", "--strict"):
            self.assertIn(f"  {word}", overview)
        for command in commands:
            page = self.tool("help", command).out
            self.assertTrue(page.startswith(f"qzrtool {command} "), page)
            self.assertEqual(self.tool(command, "--help").out, page)

    def test_help_on_groups(self):
        rows = self.tool("help", "storage").out
        names = re.findall(r"^  (\S+ \S+)", rows, re.MULTILINE)
        self.assertEqual(names, ["storage " + name for name in "ls cat put rm pack extract check".split()])
        page = self.tool("help", "storage", "ls").out
        self.assertTrue(page.startswith("qzrtool storage ls FILE"), page)
        self.assertEqual(self.tool("storage", "ls", "--help").out, page)

    def test_manual_names_every_option_and_type(self):
        with open(os.path.join(TREE, "docs", "qzrtool.md"), encoding="utf-8") as file:
            manual = file.read()
        pages = "".join(self.tool("help", *name.split()).out for name in ("show", "convert", "diff", "get", "set", "rm",
                                                                 "storage pack", "recover"))
        for option in set(re.findall(r"--[a-z]+", pages)):
            self.assertIn(option, manual)
        for kind in re.findall(r"^  (?:[a-zA-Z], )?([a-z]+)  ", self.tool("help", "set").out, re.MULTILINE):
            self.assertIn(f"`{kind}`", manual)

    def test_names_beyond_the_code_page(self):
        self.write("a.qzs", b"\0\0")
        for arguments in (("set", "a.qzs", "v", "text:\u4e16"), ("get", "a.qzs", "\u4e16")):
            with self.subTest(arguments=arguments):
                result = self.tool(*arguments, code=TROUBLE, env=UNICODE)
                self.assertIn("has characters that the ANSI code page cannot hold", result.err)

    def test_names_and_texts_in_the_code_page(self):
        self.write("gr\xfc\xdfe.qzt", "[\\]\n")
        self.tool("set", "gr\xfc\xdfe.qzt", "Stra\xdfe/Gr\xf6\xdfe", "text:\u20ac 5", env=UNICODE)
        self.assertEqual(self.read("gr\xfc\xdfe.qzt").decode("cp1252"),
                         "[\\]\n\n[\\Stra\xdfe]\n\tGr\xf6\xdfe=s\u20ac 5\n")
        self.assertEqual(self.tool("get", "gr\xfc\xdfe.qzt", "Stra\xdfe/Gr\xf6\xdfe", env=UNICODE).out, "\u20ac 5\n")

    def test_names_in_other_code_pages(self):
        # Japanese: the second byte of the first character is that of a backslash, of the last one that of a bar.
        text = "\u8868\u7f6e\u30dd"
        data = text.encode("cp932")
        self.assertIn(b"\\", data)
        self.assertIn(b"|", data)
        self.write("a.qzt", b"[\\" + data + b"]\n" + data + b"=s" + data + b"\n")
        japanese = {"QZR_LOCALE": "ja_JP.UTF-8"}
        tree = json.loads(self.tool("show", "a.qzt", "--json", env=japanese).out)
        self.assertEqual(tree["sections"], [{"name": text, "sections": [],
                                             "values": [{"name": text, "type": "text", "value": text}]}])
        self.tool("convert", "--strict", "a.qzt", "a.qzs", env=japanese)
        self.tool("convert", "--strict", "a.qzs", "b.qzt", env=japanese)
        self.assertEqual(self.read("b.qzt"), b"[\\]\r\n\r\n[\\" + data + b"]\r\n\t" + data + b"=s" + data + b"\r\n")

    def test_quiet_when_all_is_well(self):
        self.write("a.qzt", "[\\]\nv=i1\n")
        for arguments in (["convert", "a.qzt", "b.qzs"], ["diff", "a.qzt", "b.qzs"], ["set", "a.qzt", "v", "int:2"],
                          ["rm", "a.qzt", "v"]):
            with self.subTest(arguments=arguments):
                result = self.tool(*arguments, code=OK)
                self.assertEqual((result.out, result.err), ("", ""))
