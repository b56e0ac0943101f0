import os
import shlex
import shutil

from support import CXX, FOR_WINDOWS, PackageTest

PRINTS = "[\\]|Spacing=R12.5|\nread back: 42\ncaught: 15\n"


class Consumer(PackageTest):
    def setUp(self):
        super().setUp()
        self.installed = self.install()
        self.copy("consumer", "plugin")

    def check(self, program):
        run = self.run_bare(program)
        self.assertEqual((run.returncode, run.stdout), (0, PRINTS), run.stderr)

    def test_find_package(self):
        for project in ("plugin", "consumer"):
            self.configure(project, *FOR_WINDOWS, f"-DCMAKE_CXX_COMPILER={CXX}",
                           f"-DCMAKE_PREFIX_PATH={self.installed}")
            self.command("cmake", "--build", self.path(project, "build"))
        shutil.copy(self.path("plugin", "build", "tally.dll"), self.path("consumer", "build"))
        self.check(self.path("consumer", "build", "consumer.exe"))

    def test_pkg_config(self):
        where = {"PKG_CONFIG_LIBDIR": os.path.join(self.installed, "lib", "pkgconfig")}
        flags = shlex.split(self.command("pkg-config", "--cflags", "--libs", "qzrcore", env=where))
        shutil.copytree(os.path.join(self.installed, "bin"), self.path("program"))
        for output, source, *more in (("consumer.exe", "consumer/consumer.cpp", "-Iplugin"),
                                      ("tally.dll", "plugin/tally.cpp", "-shared")):
            self.command(CXX, "-std=c++17", source, *more, *flags, "-o", self.path("program", output))
        self.check(self.path("program", "consumer.exe"))
