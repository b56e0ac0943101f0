import os

from support import NO, OK, STRICT, TROUBLE, ProgramTest

END = b"\xFD\xFD"  # of a context, in code page 1251


def pair(source, translation):
    return f'"{source}"\r\n"{translation}"\r\n'


LANGUAGE = pair("QZ_WLD_LANG_ID", "1036")


class Dictionary(ProgramTest):
    def module(self):
        return os.path.join(os.environ["QZRTOOL_BIN"], "texts_module.dll")

    def test_check_finds_nothing_wrong(self):
        self.write("a.wld", LANGUAGE + pair("&Open %s\\tCtrl+O", "&Ouvrir %s\\tCtrl+O") + "; comment\n\n")
        self.assertEqual(self.tool("wld", "check", "a.wld").out, "")

    def test_check_names_line_and_reason(self):
        cases = [  # behind the two lines of the language pair
            ('"a"\n', ['a.wld:3: has no translation line; it gets the translation of the pair before it']),
            ('"a"\nb\n"c"\n', ['a.wld:4: skipped, because it does not begin with a quote: "b"; the pairs shift if it '
                               'is meant to be an entry']),
            ('"a"\n"\n"c"\n', ["a.wld:4: skipped: a quote alone"]),
            ('"a"\n"bc\n', ["a.wld:4: does not end in a quote; its last character is dropped"]),
            ('"a"\n"bc\0"\n', ["a.wld:4: nothing is read behind the zero byte",
                              "a.wld:4: does not end in a quote; its last character is dropped"]),
            (pair("a", "b") * 2, ["a.wld:5: dropped: line 3 has the same source"]),
            (pair("\\\\n", "b") + pair("\\n", "b"), ["a.wld:5: dropped: line 3 has the same source"]),
            (pair("a", ""), ["a.wld:4: empty: the source is shown"]),
            (pair("", "a"), ["a.wld:3: an empty source is never looked up"]),
            (pair("%d of %s", "%s de %d"),
             ["a.wld:4: has the format specifiers %s %d, its source %d %s"]),
            (pair("100%% of %5.2f", "%% %g"), ["a.wld:4: has the format specifiers %g, its source %f"]),
            (pair("&Open", "Ouvrir"), ["a.wld:4: has no accelerator mark (&), its source has one"]),
            (pair("A && B", "&A && B"), ["a.wld:4: has an accelerator mark (&), its source has none"]),
            (pair("&Open", "&Ouv&rir"), ["a.wld:4: has several accelerator marks (&); && is the character"]),
            (pair("a\\tF1", "b F1"),
             ["a.wld:4: only one of source and translation has a tab, which parts a menu's text from its shortcut"]),
            (pair("a", "x" * 1024), ["a.wld:4: is 1024 characters long; windows and message boxes show 1023"]),
            (pair("x" * 9000, "a"), ["a.wld:3: does not end in a quote; its last character is dropped",
                                     "a.wld:3: longer than 8192 bytes; the rest of the line is left out"]),
        ]
        for text, problems in cases:
            with self.subTest(text=text[:40]):
                self.write("a.wld", LANGUAGE + text)
                result = self.tool("wld", "check", "a.wld", code=NO if problems else OK)
                self.assertEqual(result.out.splitlines(), problems)

    def test_check_knows_languages(self):
        cases = [
            ("", "a.wld: names no language (QZ_WLD_LANG_ID); texts are read in the system's code page"),
            (pair("QZ_WLD_LANG_ID", "65000"), "a.wld:2: 65000 is no language that the system knows"),
            (LANGUAGE + pair("QZ_WLD_LANG_ID", "none"), "a.wld:4: 0 is no language that the system knows"),
        ]
        for text, problem in cases:
            with self.subTest(text=text):
                self.write("a.wld", text)
                self.assertEqual(self.tool("wld", "check", "a.wld", code=NO).out, problem + "\n")

    def test_check_knows_code_pages(self):
        japanese = pair("QZ_WLD_LANG_ID", "1041").encode()
        self.write("a.wld", japanese + b'"a"\n"\x83\x5C\x83"\n"b"\n"\x81\xFF x"\n')
        self.assertIn("a.wld:6: has bytes that are no characters of code page 932\n",
                      self.tool("wld", "check", "a.wld", code=NO).out)
        self.write("b.wld", LANGUAGE.encode() + b'"app.exe#2#7' + END + b'Open"\n"' + b"o" * 600 + b'"\n')
        self.assertEqual(self.tool("wld", "check", "--codepage=1251", "b.wld", code=NO).out,
                         "b.wld:4: is 600 characters long; menus show 511\n")
        self.assertEqual(self.tool("wld", "check", "b.wld", code=NO).out,
                         "b.wld:3: has a context in bytes of code page 1251, and is read in 1252\n")

    def test_check_finds_equal_hashes(self):
        # 'n' * 257 + 'a' is 'm' * 257 + U+0162, which code page 1250 has.
        self.write("a.wld", pair("QZ_WLD_LANG_ID", "1048").encode() + b'"na"\n"1"\n"m\xDE"\n"2"\n')
        self.assertEqual(self.tool("wld", "check", "a.wld", code=NO).out,
                         'a.wld:5: dropped: its hash equals that of "na" in line 3, whose translation it gets\n')

    def test_extract_writes_exact_keys(self):
        result = self.tool("wld", "extract", self.module(), "a.wld")
        self.assertEqual(result.out, "a.wld: 19 texts\n")
        self.assertEqual(self.keys("a.wld"), [
            b"texts_module.dll#3#7" + END + text for text in (b"Ready", b"Copied %d of %s")] + [
            b"texts_module.dll#3#8" + END + b"Tab\\tand\\nline"] + [
            b"texts_module.dll#2#POPUPMENU" + END + text for text in (b"Edit", b"Cut", b"Paste", b"Last")] + [
            b"texts_module.dll#2#7" + END + text
            for text in (b"&File", b"&Open...\\tCtrl+O", b"&Recent", b"None", b"E&xit", b"&Help")] + [
            b"texts_module.dll#1#OPTIONS" + END + text for text in (b"Options", b"&Beep", b"OK")] + [
            b"texts_module.dll#1#101" + END + text for text in (b"About", b"Version 1", b"OK")])

    def keys(self, name):
        lines = [line[1:-1] for line in self.read(name).split(b"\r\n") if line]
        for source, translation in zip(lines[::2], lines[1::2]):
            self.assertEqual(source.split(END)[-1], translation, "texts stand for themselves")
        return lines[::2]

    def test_extract_plain_texts_once(self):
        self.tool("wld", "extract", "--plain", "--language=1036", self.module(), "a.wld")
        lines = self.read("a.wld").split(b"\r\n")
        self.assertEqual(lines[:2], [b'"QZ_WLD_LANG_ID"', b'"1036"'])
        self.assertEqual(lines.count(b'"OK"'), 2)
        self.tool("wld", "extract", self.module(), "a.wld", code=TROUBLE)
        self.assertEqual(self.read("a.wld").split(b"\r\n"), lines)

    def test_what_extract_wrote_keeps_its_contexts(self):
        self.tool("wld", "extract", self.module(), "a.wld")
        for locale in ("C", "ru_RU.UTF-8", "ja_JP.UTF-8"):
            with self.subTest(locale=locale):
                here = {"QZR_LOCALE": locale}
                self.assertEqual(self.tool("wld", "check", "a.wld", env=here).out, "")
                self.assertIn("with context: 19\n", self.tool("wld", "stats", "a.wld", env=here).out)
                self.tool("wld", "export", "a.wld", "a.po", env=here)
                self.assertEqual(self.read("a.po").count(b"msgctxt "), 19)
                self.tool("wld", "import", "a.po", locale + ".wld", env=here)
                self.assertEqual(self.keys(locale + ".wld"), self.keys("a.wld"))

    def test_missing_lists_what_has_no_entry(self):
        self.tool("wld", "extract", self.module(), "a.wld")
        self.assertEqual(self.tool("wld", "missing", "a.wld", self.module()).out, "")
        self.write("b.wld", pair("OK", "Bien"))
        lines = self.tool("wld", "missing", "b.wld", self.module(), code=NO).out.splitlines()
        self.assertEqual(len(lines), 17)
        self.assertIn("texts_module.dll#1#101\u044d\u044d  About", lines)

    def test_damaged_modules_are_refused(self):
        with open(self.module(), "rb") as file:
            image = file.read()
        self.write("cut.dll", image[:3000])
        self.write("empty.dll", b"")
        for name in ("cut.dll", "empty.dll", "none.dll"):
            with self.subTest(name=name):
                self.assertIn("is no module", self.tool("wld", "extract", name, "a.wld", code=TROUBLE).err)
        self.assertNotIn("a.wld", self.files())

    def test_merge_adds_what_is_new(self):
        self.write("a.wld", "; mine\n" + LANGUAGE + pair("a", "1") + '"b"\n"2"')
        self.write("b.wld", pair("QZ_WLD_LANG_ID", "1033") + pair("b", "zwei") + pair("c\\n", "3") + '"odd"\n')
        self.assertEqual(self.tool("wld", "merge", "a.wld", "b.wld").out, "a.wld: 1 pair added\n")
        merged = ("; mine\n" + LANGUAGE + pair("a", "1") + '"b"\n"2"\r\n' + pair("c\\n", "3") + "\r\n").encode()
        self.assertEqual(self.read("a.wld"), merged)
        self.assertEqual(self.tool("wld", "merge", "a.wld", "b.wld").out, "a.wld: 0 pairs added\n")
        self.assertEqual(self.read("a.wld"), merged)
        self.tool("wld", "merge", "b.wld", "a.wld", code=TROUBLE)

    def test_stats_and_lookup(self):
        self.write("a.wld", LANGUAGE + pair("Open", "Ouvrir") + pair("Open", "Lire") + pair("a", "a") + pair("b", ""))
        self.assertEqual(self.tool("wld", "stats", "a.wld").out,
                         "lines: 10\npairs: 5\nentries: 4\nwith context: 0\nuntranslated: 2\n"
                         "longest translation: 6\nlanguage: 1036\ncode page: 1252\n")
        self.assertEqual(self.tool("wld", "lookup", "a.wld", "Open").out, "Ouvrir\n")
        self.assertEqual(self.tool("wld", "lookup", "a.wld", "b").out, "b\n")
        self.assertEqual(self.tool("wld", "lookup", "a.wld", "close", code=NO).out, "")
        self.write("b.wld", b'"app.exe#3#7' + END + b'Open"\n"Oeffnen"\n')
        self.assertEqual(self.tool("wld", "lookup", "b.wld", "Open", "app.exe#3#7",
                                   env={"QZR_LOCALE": "ru_RU.UTF-8"}).out, "Oeffnen\n")

    def test_po_round_trip(self):
        russian = pair("QZ_WLD_LANG_ID", "1049").encode() + (b'"app.exe#3#7' + END + b'Open"\r\n"\xCE\xF2\xEA"\r\n'
                                                            b'"say \\"x\\" \\n\\t%d"\r\n"a\\b"\r\n"same"\r\n"same"\r\n')
        self.write("a.wld", russian)
        self.assertEqual(self.tool("wld", "export", "a.wld", "a.po").out, "a.po: 3 texts\n")
        po = self.read("a.po").decode()
        self.assertIn('"X-Wld-Language: 1049\\n"', po)
        self.assertIn('msgctxt "app.exe#3#7\u044d\u044d"\nmsgid "Open"\nmsgstr "\u041e\u0442\u043a"\n', po)
        self.assertIn('msgid "say \\\\\\"x\\\\\\" \\n\\t%d"\nmsgstr "a\\\\b"\n', po)
        self.assertIn('msgid "same"\nmsgstr ""\n', po)
        self.tool("wld", "import", "a.po", "b.wld")
        self.assertEqual(self.read("b.wld").replace(b"\r\n\r\n", b"\r\n"), russian)

    def test_import_tells_what_it_cannot_take(self):
        self.write("a.po", '# x\n#, fuzzy\nmsgid "a"\nmsgstr "b"\n\nmsgid ""\n"c\\\\"\n"n"\nmsgstr "d"\n\n'
                           '#~ msgid "old"\n#~ msgstr "alt"\n\nmsgid "one"\nmsgid_plural "many"\nmsgstr[0] "un"\n'
                           'msgstr[1] "des"\n')
        result = self.tool("wld", "import", "a.po", "a.wld", code=NO)
        self.assertEqual(result.err, "a.po:3: warning: marked as fuzzy; its source is taken for its translation\n"
                                     "a.wld: warning: left out, as code page 1252 or the escapes cannot hold it: "
                                     "c\\n\n")
        self.assertEqual(self.read("a.wld"), b'"a"\r\n"a"\r\n\r\n"one"\r\n"un"\r\n\r\n')
        for text, message in ((b"msgid \"a\n", "b.po:1: the closing quote is missing"), (b"x\n", "b.po:1: neither"),
                              (b'"a"\n', "b.po:1: a text that belongs"), (b'msgid "\\q"\n', "b.po:1: unknown escape"),
                              (b'msgid "\xFF"\nmsgstr "a"\n', "b.po:1: is not UTF-8")):
            with self.subTest(text=text):
                self.write("b.po", text)
                self.assertIn(message, self.tool("wld", "import", "b.po", "c.wld", code=TROUBLE).err)
        self.tool("wld", "import", "--strict", "a.po", "c.wld", code=STRICT)
        self.assertNotIn("c.wld", self.files())

    def test_help_knows_commands_of_two_words(self):
        self.assertIn("wld extract MODULE... DICTIONARY", self.tool("help").out)
        self.assertIn("--plain", self.tool("help", "wld", "extract").out)
        self.assertIn("--plain", self.tool("wld", "extract", "--help").out)
        self.assertIn("which wld command?", self.tool("wld", "x", code=TROUBLE).err)
        self.assertIn("which wld command?", self.tool("wld", code=TROUBLE).err)
