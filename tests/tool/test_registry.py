"""Registry trees beside the system's own exporter and importer, which know nothing of the library."""
import os
import subprocess
import uuid

from support import ProgramTest

# Name, value in the text form, and what stands in an exported file.
VALUES = [
    ("empty", "e", "hex:00,00,00,00"),
    ("flag", "f1", "hex:01,00,00,00,01,00,00,00"),
    ("word", "w258", "hex:03,00,00,00,02,01"),
    ("ulong", "W4294967295", "hex:04,00,00,00,ff,ff,ff,ff"),
    ("int", "i-2", "hex:05,00,00,00,fe,ff,ff,ff"),
    ("uint", "u3", "hex:06,00,00,00,03,00,00,00"),
    ("long", "l-3", "hex:07,00,00,00,fd,ff,ff,ff"),
    ("double", "R2.5", "hex:08,00,00,00,00,00,00,00,00,00,04,40"),
    ("float", "r0.5", "hex:09,00,00,00,00,00,00,3f"),
    ("text", 's"quoted" back\\slash', '"\\"quoted\\" back\\\\slash"'),
    ("size", "z1,-1", "hex:0b,00,00,00,01,00,00,00,ff,ff,ff,ff"),
    ("rsize", "Z2.5,2.5", "hex:0c,00,00,00" + 2 * ",00,00,00,00,00,00,04,40"),
    ("point", "p2,3", "hex:0d,00,00,00,02,00,00,00,03,00,00,00"),
    ("rpoint", "P2.5,2.5", "hex:0e,00,00,00" + 2 * ",00,00,00,00,00,00,04,40"),
    ("rect", "t1,2,3,4", "hex:0f,00,00,00,01,00,00,00,02,00,00,00,03,00,00,00,04,00,00,00"),
    ("rrect", "T2.5,2.5,2.5,2.5", "hex:10,00,00,00" + 4 * ",00,00,00,00,00,00,04,40"),
    ("blob", "xAA00FF", "hex:11,00,00,00,03,00,00,00,aa,00,ff"),
]


class Registry(ProgramTest):
    def setUp(self):
        super().setUp()
        self.key = "Software\\qzrcore witness " + uuid.uuid4().hex
        self.addCleanup(self.regedit, "/D", "HKEY_CURRENT_USER\\" + self.key)

    def regedit(self, *arguments):
        runner = os.environ.get("QZRTOOL_RUNNER")
        command = ([runner] if runner else []) + ["regedit", *arguments]
        subprocess.run(command, cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True, timeout=100, check=True)

    def exported(self):
        """Keys with their values, as the exporter writes them."""
        self.regedit("/E", "out.reg", "HKEY_CURRENT_USER\\" + self.key)
        text = self.read("out.reg").decode("utf-16").replace("\\\r\n  ", "")
        keys = {}
        for line in text.splitlines():
            if line.startswith("["):
                values = keys.setdefault(line[1:-1].removeprefix("HKEY_CURRENT_USER\\" + self.key), {})
            elif "=" in line:
                name, value = line.split("=", 1)
                values[name] = value
        return keys

    def test_exporter_finds_what_was_stored(self):
        self.write("a.ini", "".join(f"[\\]|{name}={text}\n[\\s\\deep]|{name}={text}\n" for name, text, _ in VALUES))
        self.tool("convert", "ini:a.ini", "reg:HKCU\\" + self.key)
        values = {f'"{name}"': stored for name, _, stored in VALUES}
        self.assertEqual(self.exported(), {"": values, "\\s": {}, "\\s\\deep": values})

    def test_imported_values_are_read(self):
        lines = ["Windows Registry Editor Version 5.00", ""]
        for path in ("", "\\s", "\\s\\deep"):
            lines.append(f"[HKEY_CURRENT_USER\\{self.key}{path}]")
            lines += [f'"{name}"={stored}' for name, _, stored in VALUES]
            lines += ['@="default"', '"number"=dword:00000005', '"list"=hex(7):61,00,00,00,00,00', ""]
        self.write("in.reg", "\r\n".join(lines).encode("utf-16"))
        self.regedit("/S", "in.reg")
        self.tool("convert", "reg:HKCU\\" + self.key, "ini:out.ini")
        sections = self.read("out.ini").decode("ascii").split("\r\n")[1:]
        self.assertEqual([s.split("\t")[0] for s in sections], ["[\\]", "[\\s]", "[\\s\\deep]"])
        # Those that no type code leads to are left out, and so is the one without a name.
        wanted = sorted(f"{name}={text}" for name, text, _ in VALUES)
        for section in sections:
            values = sorted(part.strip("\t ") for part in section.split("\t| ")[1:])
            self.assertEqual(values, wanted)
