import os
import re
import zipfile

from support import BUILD, VERSION, PackageTest, all_files


class Archive(PackageTest):
    def test_runs_where_nothing_else_is(self):
        """Unpacked into an empty folder, the tool runs with what came with it and with the system, nothing else."""
        self.command("cpack", "--config", os.path.join(BUILD, "CPackConfig.cmake"), "-B", self.path("made"))
        name = f"qzrcore-{VERSION}-win64"
        with zipfile.ZipFile(self.path("made", name + ".zip")) as archive:
            archive.extractall(self.path("empty"))
        self.assertEqual(os.listdir(self.path("empty")), [name])
        self.assertIn("share/doc/qzrcore/README.md", all_files(self.path("empty", name)))

        self.write("fresh/a.qzt", "[\\]|Spacing=R12.5|\n")
        program = self.path("empty", name, "bin", "qzrtool.exe")
        run = self.run_bare(program, "convert", "a.qzt", "a.qzs", folder=self.path("fresh"))
        self.assertEqual(run.returncode, 0, run.stderr)
        run = self.run_bare(program, "get", "a.qzs", "Spacing", folder=self.path("fresh"),
                            env={"WINEDEBUG": "-all,+loaddll"})
        self.assertEqual((run.returncode, run.stdout), (0, "12.5\n"), run.stderr)

        loaded = [path.replace("\\\\", "\\") for path in re.findall(r'Loaded L"([^"]+)" at .*: native', run.stderr)]
        own = "Z:" + os.path.dirname(program).replace("/", "\\") + "\\"
        names = {path.removeprefix(own).lower() for path in loaded}
        self.assertLessEqual({"qzrtool.exe", "qzrcore.dll", "libstdc++-6.dll", "libgcc_s_seh-1.dll"}, names, run.stderr)
        self.assertEqual([name for name in names if ":" in name], [])
