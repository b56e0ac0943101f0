"""Live INI files beside a parser that knows nothing of the library."""
import configparser

from support import ProgramTest

TREE = {
    "\\": {"@": "e", "Title": "sa = [b]; c", "Count": "i-7", "Ratio": "R2.5"},
    "\\s": {"@": "sdefault", "Data": "xAA00FF"},
    "\\s\\t": {"@": "e", "Box": "t1,2,3,4", "Flag": "f1"},
}
WITHOUT_MARKS = {section: {k: v for k, v in values.items() if (k, v) != ("@", "e")}
                 for section, values in TREE.items()}


class LiveIni(ProgramTest):
    def test_parser_finds_what_was_stored(self):
        self.write("a.ini", "".join(f"[{section}]\n" + "".join(f"{k}={v}\n" for k, v in values.items())
                                    for section, values in WITHOUT_MARKS.items()))
        self.tool("convert", "ini:a.ini", "live:b.ini")
        parser = configparser.ConfigParser(delimiters="=", comment_prefixes=";", interpolation=None, strict=True)
        parser.optionxform = str
        parser.read(self.path("b.ini"), encoding="cp1252")
        self.assertEqual({name: dict(parser[name]) for name in parser.sections()}, TREE)

    def test_file_of_the_parser_is_read(self):
        parser = configparser.ConfigParser(interpolation=None)
        parser.optionxform = str
        parser.read_dict({**TREE, "Other": {"x": "i1"}})
        with open(self.path("a.ini"), "w", encoding="cp1252", newline="\r\n") as file:
            parser.write(file)
        self.tool("convert", "live:a.ini", "ini:b.ini")
        sections = self.read("b.ini").decode("ascii").split("\r\n")[1:]
        found = {s.split("]\t")[0][1:]: dict(v.split("=", 1) for v in s.split("\t| ")[1:]) for s in sections}
        self.assertEqual(found, WITHOUT_MARKS)
