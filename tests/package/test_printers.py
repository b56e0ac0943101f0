import os
import re
import shutil
import subprocess

from support import BIN, RUNNER, PackageTest

GDB = "x86_64-w64-mingw32-gdb"
GDB_SERVER = "/usr/share/win64/gdbserver.exe"

TREE = ("tree node, 2 values, 2 children = {Spacing = QZVT_DOUBLE 12.5, Title of it = QZVT_TEXT \"narrow\", "
        "View\\ = tree node, 0 values, 1 child = {Grid\\ = tree node, 1 value, 0 children = {Visible = QZVT_BOOL 1}}, "
        "Print\\ = tree node, 0 values, 0 children}")

# What gdb is asked, and what it prints. 0xX stands for any address.
SHOWN = [
    ("v.text", r'"a \"quoted\" text"'),
    ("v.shared", r'"a \"quoted\" text"'),
    ("v.empty", '""'),
    ("v.wide", 'L"wide Ж€"'),
    ("v.nothing", "(CXString *) 0x0"),

    ("v.none", "QZVT_EMPTY"),
    ("v.yes", "QZVT_BOOL 1"),
    ("v.uchar", "QZVT_UCHAR 200"),
    ("v.ushort", "QZVT_USHORT 65535"),
    ("v.ulong", "QZVT_ULONG 4000000000"),
    ("v.integer", "QZVT_INT -5"),
    ("v.uint", "QZVT_UINT 4000000001"),
    ("v.long_integer", "QZVT_LONG -6"),
    ("v.real", "QZVT_DOUBLE 12.5"),
    ("v.single", "QZVT_FLOAT 0.25"),
    ("v.narrow", 'QZVT_TEXT "narrow"'),
    ("v.null_text", "QZVT_TEXT null"),
    ("v.size", "QZVT_SIZE {cx = 3, cy = 4}"),
    ("v.rsize", "QZVT_RSIZE {cx = 3.5, cy = 4.5}"),
    ("v.point", "QZVT_POINT {x = -1, y = 2}"),
    ("v.rpoint", "QZVT_RPOINT {x = -1.5, y = 2.5}"),
    ("v.rect", "QZVT_RECT {left = 1, top = 2, right = 3, bottom = 4}"),
    ("v.rrect", "QZVT_RRECT {left = 1.5, top = 2.5, right = 3.5, bottom = 4.5}"),
    ("v.blob", "QZVT_BLOB 20 bytes: 00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f ..."),
    ("v.object", "QZVT_OBJECT qzr::CMemStream at 0xX, 3 references"),
    ("v.wide_text", 'QZVT_WTEXT L"wide Ж"'),
    ("v.invalid", "invalid type code 77"),
    ("*static_cast<tagQZVARIANT const*>(&v.real)", "QZVT_DOUBLE 12.5"),

    ("v.short_blob", "3 bytes: 00 00 00"),
    ("v.absent", "7 bytes that are not there"),
    ("v.unreadable", "7 bytes at 0x8, which cannot be read"),

    ("v.stream", "qzr::CMemStream at 0xX, 3 references"),
    ("v.no_stream", "null"),
    ("*v.node", TREE),
    ("v.tree", f"qzr::CMemParam at 0xX, 1 reference = {{* = {TREE}}}"),
    ("v.empty_tree", "qzr::CMemParam at 0xX, 1 reference = {* = tree node, 0 values, 0 children}"),
    ("v.odd_tree", "qzr::CMemParam at 0xX, 1 reference = {* = tree node, 6 values, 0 children = {"
     'boskui = listed, but not found, rrect = QZVT_RRECT {left = 1.5, top = 2.5, right = 3.5, bottom = 4.5}, '
     'long = QZVT_TEXT "a text of more than sixteen bytes", blob = QZVT_BLOB 20 bytes: 00 01 02 03 04 05 06 07 08 09 '
     '0a 0b 0c 0d 0e 0f ..., object = QZVT_OBJECT qzr::CMemStream at 0xX, 3 references, wide = QZVT_WTEXT L"wide Ж"}}'),
    ("v.large_tree", "qzr::CMemParam at 0xX, 1 reference = {* = tree node, 515 values, 0 children = {"
     + ", ".join(f"n{i} = QZVT_INT {i}" for i in range(515)) + "}}"),
    ("v.file", 'qzr::CIniFileParam at 0xX, 1 reference = {* = qzr::CIniFileParam = '
     r'{parent_ = null, file_ = ".\\printed.ini", section_ = "\\"}}'),
]


class Printers(PackageTest):
    def start(self, program):
        """Starts a program below a debugger's server, on a port that the system chooses. Returns the port."""
        server = subprocess.Popen([RUNNER, GDB_SERVER, "localhost:0", program], cwd=self.folder, text=True,
                                  stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.addCleanup(server.stdout.close)
        self.addCleanup(server.wait, 30)
        self.addCleanup(server.kill)
        for line in server.stdout:
            if found := re.match(r"Listening on port (\d+)", line):
                return found[1]
        return self.fail("the debugger's server does not listen")

    def test_values(self):
        for needed in (shutil.which(GDB), os.path.exists(GDB_SERVER)):
            self.assertTrue(needed, f"{GDB} or {GDB_SERVER} is missing: run scripts/bootstrap test")
        bin_folder = os.path.join(self.install(), "bin")
        shutil.copy(os.path.join(BIN, "printed_values.exe"), bin_folder)
        port = self.start(os.path.join(bin_folder, "printed_values.exe"))
        commands = ["set confirm off", "set width 0", "set print elements 0", "set host-charset UTF-8", f"set sysroot {self.path('none')}",
                    f"set solib-search-path {bin_folder}", f"target remote localhost:{port}",
                    "break looked_at", "continue"]
        for number, (expression, _) in enumerate(SHOWN):
            commands += [f"echo \\n<{number}>", f"output {expression}"]
        commands += ["echo \\n<end>\\n", "kill"]
        self.write("commands.gdb", "\n".join(commands) + "\n")
        said = self.command(GDB, "-nx", "-batch", "-iex", f"add-auto-load-safe-path {bin_folder}", "-x",
                            self.path("commands.gdb"), os.path.join(bin_folder, "printed_values.exe"),
                            env={"LC_ALL": "C.UTF-8"})
        answers = re.findall(r"^<\d+>(.*)$", said, re.MULTILINE)
        self.assertEqual(len(answers), len(SHOWN), said)
        for (expression, expected), answer in zip(SHOWN, answers):
            with self.subTest(expression=expression):
                self.assertEqual(re.sub(r"\b0x[0-9a-f]{2,}\b", "0xX", answer), expected)
