import os
import re

from support import BUILD, TREE, VERSION, PackageTest, all_files

RUNTIME_DLLS = ["libgcc_s_seh-1.dll", "libssp-0.dll", "libstdc++-6.dll", "libwinpthread-1.dll"]
LICENCES = ["share/licenses/qzrcore/" + name
            for name in ("gcc-runtime.txt", "gpl-3.txt", "mingw-w64.txt", "runtime-dlls.md")]
HEADERS = sorted(name for name in os.listdir(os.path.join(TREE, "include")) if name.endswith(".h"))
COMPONENTS = {
    "runtime": ["bin/" + name for name in [*RUNTIME_DLLS, "qzrcore.dll"]] + LICENCES,
    "tool": ["bin/qzrtool.exe"],
    "development": ["bin/qzrcore.dll-gdb.py"] + ["include/qzrcore/" + name for name in HEADERS]
    + ["lib/cmake/qzrcore/qzrcore" + name for name in ("Abi.cmake", "Abi.cpp", "Config.cmake", "ConfigVersion.cmake",
                                                      "RuntimeDlls.cmake", "Targets-debug.cmake", "Targets.cmake")]
    + ["lib/libqzrcore.dll.a", "lib/pkgconfig/qzrcore.pc", "share/qzrcore/gdb/qzrcore_printers.py"],
}


class Install(PackageTest):
    def test_components(self):
        whole = []
        for component, expected in COMPONENTS.items():
            with self.subTest(component=component):
                self.command("cmake", "--install", BUILD, "--prefix", self.path(component), "--component", component)
                found = [re.sub(r"Targets-[a-z]+\.", "Targets-debug.", name)
                         for name in all_files(self.path(component))]
                self.assertEqual(found, sorted(expected))
                whole += expected
        rest = set(re.sub(r"Targets-[a-z]+\.", "Targets-debug.", name) for name in all_files(self.install()))
        rest -= set(whole)
        self.assertEqual([name for name in rest if not name.startswith("share/doc/qzrcore/")], [])

    def test_no_paths_of_this_machine(self):
        installed = self.install()
        places = [TREE, BUILD, self.path("first place")]
        forms = [form for place in places for text in (place, place.replace("/", "\\"))
                 for form in (text.encode(), text.encode("utf-16-le"))]
        for name in all_files(installed):
            with open(os.path.join(installed, name), "rb") as file:
                data = file.read()
            for form in forms:
                self.assertFalse(form in data, f"{name} contains {form!r}")

    def test_one_version(self):
        installed = self.install()
        self.assertRegex(VERSION, r"^\d+\.\d+\.\d+$")
        pkg_config = {"PKG_CONFIG_LIBDIR": os.path.join(installed, "lib", "pkgconfig")}
        self.assertEqual(self.command("pkg-config", "--modversion", "qzrcore", env=pkg_config).strip(), VERSION)
        told = self.run_bare(os.path.join(installed, "bin", "qzrtool.exe"), "--version").stdout
        self.assertEqual(told.strip(), "qzrtool " + VERSION)
        with open(os.path.join(installed, "bin", "qzrcore.dll"), "rb") as file:
            self.assertIn(f"ProductVersion\0{VERSION}\0".encode("utf-16-le"), file.read().replace(b"\0\0\0\0", b"\0\0"))

    def test_texts(self):
        """Licence texts are there and say what the note says; links between the documents hold."""
        installed = self.install()

        def read(*names):
            with open(os.path.join(installed, *names), encoding="utf-8", errors="replace") as file:
                return file.read()

        for name, expected in (("gcc-runtime.txt", "GCC RUNTIME LIBRARY EXCEPTION"),
                               ("gpl-3.txt", "GNU GENERAL PUBLIC LICENSE"), ("mingw-w64.txt", "winpthreads")):
            self.assertIn(expected, read("share", "licenses", "qzrcore", name), name)
        note = read("share", "licenses", "qzrcore", "runtime-dlls.md")
        for dll in RUNTIME_DLLS:
            self.assertIn(f"`{dll}`", note)

        folder = os.path.join("share", "doc", "qzrcore")
        documents = [name for name in all_files(os.path.join(installed, folder)) if name.endswith(".md")]
        self.assertIn("README.md", documents)
        for name in documents:
            for link in re.findall(r"\]\(([^)#:]+)[)#]", read(folder, name)):
                target = os.path.join(installed, folder, os.path.dirname(name), link)
                self.assertTrue(os.path.exists(target), f"{name} links to {link}")
