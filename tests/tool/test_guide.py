import glob
import os

from support import OK, TREE, ProgramTest

FOLDER = os.path.join(TREE, "examples", "guide")


def text_of(*path):
    with open(os.path.join(TREE, *path), encoding="utf-8") as file:
        return file.read()


class Guide(ProgramTest):
    """The examples that the manual shows."""

    def examples(self):
        names = [os.path.splitext(os.path.basename(path))[0] for path in glob.glob(os.path.join(FOLDER, "*.cpp"))]
        self.assertGreaterEqual(len(names), 11)
        return sorted(set(names) - {"main"})

    def test_examples_print_what_the_manual_shows(self):
        for name in self.examples():
            if name == "remote":  # beside a server: test_ftp
                continue
            arguments = [self.tree_path("examples", "guide", "guide.wld")] if name == "translation" else []
            with self.subTest(example=name):
                result = self.run_program("guide", name, *arguments)
                self.assertEqual(result.out.replace("\r\n", "\n"), text_of("examples", "guide", name + ".txt"))
                self.assertEqual((result.code, result.err), (OK, ""))

    def test_every_example_has_its_page(self):
        manual = text_of("docs", "manual.md")
        for name in self.examples():
            page = text_of("docs", "guide", name + ".md")
            for line in (f"@include {name}.cpp\n", f"@include {name}.txt\n"):
                self.assertIn("\n" + line, page)
            self.assertIn(f"](guide/{name}.md)\n", manual)
