from support import CXX, FOR_WINDOWS, VERSION, PackageTest

GCC = [*FOR_WINDOWS, f"-DCMAKE_CXX_COMPILER={CXX}"]
CLANG = ["-DCMAKE_CXX_COMPILER=clang++-14"]
# A compiler for a target whose libraries are not there can compile, but not link.
COMPILES = ["-DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY"]
MSVC = [*FOR_WINDOWS, *CLANG, *COMPILES, "-DCMAKE_CXX_COMPILER_TARGET=x86_64-pc-windows-msvc",
        "-DCMAKE_AR=/usr/bin/x86_64-w64-mingw32-ar"]

# The compiler, its flags, what the project is told. Flags stand for compilers that are not installed here and show
# themselves by the same macros; "headers" for their standard library.
COMPILERS = [
    (CLANG, "", "this compiler is not for Windows"),
    (MSVC, "", "this compiler that of MSVC"),
    ([*GCC, *COMPILES], "-m32", "this compiler is for 32 bits"),
    (GCC, "-U__SEH__", "unwound by SEH"),
    (GCC, "-D_UCRT", "another C library of the platform"),
    (GCC, "-nostdinc++ -isystem headers/other", "another C++ standard library"),
    (GCC, "-nostdinc++ -isystem headers/win32", "the compiler's posix flavour"),
]


class Refusal(PackageTest):
    def setUp(self):
        super().setUp()
        self.found = f"-DCMAKE_PREFIX_PATH={self.install()}"
        self.copy("refused")
        self.projects = 0

    def refused(self, message, *options):
        """Expects find_package to fail with a message, which CMake may have broken into lines."""
        self.projects += 1
        said = self.command("cmake", "-S", self.path("refused"), "-B", self.path(str(self.projects)), "-G", "Ninja",
                            self.found, *options, fails=True)
        self.assertIn(message, " ".join(said.split()))

    def test_other_compilers(self):
        for name, contents in (("other", ""), ("win32", "#define __GLIBCXX__ 1\n#define _GLIBCXX_HAS_GTHREADS 1\n")):
            self.write(f"headers/{name}/mutex", contents)
        for compiler, flags, message in COMPILERS:
            with self.subTest(message=message):
                self.refused(message, *compiler, "-DREFUSED_LANGUAGE=CXX",
                             "-DCMAKE_CXX_FLAGS=" + flags.replace("headers", self.path("headers")))

    def test_project_without_cxx(self):
        self.refused("enable the language CXX", *FOR_WINDOWS, "-DREFUSED_LANGUAGE=NONE")

    def test_other_versions(self):
        major, minor, _ = VERSION.split(".")
        for version in (f"{major}.{int(minor) + 1}", f"{int(major) + 1}.0"):
            with self.subTest(version=version):
                self.refused(f'requested version "{version}"', *FOR_WINDOWS, "-DREFUSED_LANGUAGE=NONE",
                             f"-DREFUSED_VERSION={version}")
