"""An installed tree that was moved, in a folder outside the build and outside the sources, and programs run there."""
import os
import shutil
import subprocess
import tempfile
import unittest

TREE = os.environ["QZR_TREE"]
BUILD = os.environ["QZR_BUILD"]
BIN = os.environ["QZR_BIN"]
RUNNER = os.environ["QZR_RUNNER"]
VERSION = os.environ["QZR_VERSION"]
CMAKE = os.environ["QZR_CMAKE"]
CXX = os.environ["QZR_CXX"]
FOR_WINDOWS = ["-DCMAKE_SYSTEM_NAME=Windows", f"-DCMAKE_RC_COMPILER={os.environ['QZR_RC']}"]


class PackageTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="qzrcore-package-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def path(self, *names):
        return os.path.join(self.folder, *names)

    def install(self, *arguments):
        """Installs and moves the result: nothing in it may count on the place it was installed to."""
        self.command(CMAKE, "--install", BUILD, "--prefix", self.path("first place"), *arguments)
        os.rename(self.path("first place"), self.path("moved here"))
        return self.path("moved here")

    def copy(self, *names):
        """Copies sources of this folder, side by side."""
        here = os.path.dirname(os.path.abspath(__file__))
        for name in names:
            shutil.copytree(os.path.join(here, name), self.path(name))

    def command(self, *arguments, fails=False, env=None, cwd=None):
        """Runs a program of this system and returns what it prints; it fails only where that is wanted."""
        environment = {name: value for name, value in os.environ.items()
                       if name not in ("CMAKE_PREFIX_PATH", "PKG_CONFIG_PATH", "CMAKE_CXX_COMPILER_LAUNCHER")}
        run = subprocess.run(arguments, cwd=cwd or self.folder, env={**environment, **(env or {})}, text=True,
                             stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=250,
                             check=False)
        self.assertEqual(run.returncode != 0, fails, f"{' '.join(arguments)}\n{run.stdout}")
        return run.stdout

    def configure(self, project, *options, fails=False):
        return self.command(CMAKE, "-S", self.path(project), "-B", self.path(project, "build"), "-G", "Ninja",
                            "-DCMAKE_BUILD_TYPE=Debug", *options, fails=fails)

    def write(self, name, contents):
        os.makedirs(os.path.dirname(self.path(name)), exist_ok=True)
        with open(self.path(name), "w", encoding="utf-8") as file:
            file.write(contents)

    def run_bare(self, program, *arguments, env=None, folder=None):
        """Runs a Windows program. Nothing in its surroundings leads to the build or to a compiler."""
        bare = {"PATH": "/usr/bin:/bin", "HOME": os.environ.get("HOME", "/")}
        for name in ("QZR_WINEPREFIX", "DISPLAY"):
            if name in os.environ:
                bare[name] = os.environ[name]
        return subprocess.run([RUNNER, program, *arguments], cwd=folder or os.path.dirname(program), env={**bare, **(env or {})},
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=100, check=False)


def all_files(folder):
    """The paths of the files below a folder, relative to it, with slashes."""
    return sorted(os.path.relpath(os.path.join(at, name), folder)
                  for at, _, names in os.walk(folder) for name in names)
