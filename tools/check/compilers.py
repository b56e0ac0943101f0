"""What the rules written in Python share: the compilers, the tree's files, results kept by content."""
import concurrent.futures
import hashlib
import os
import re
import subprocess
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
FOLDERS = ["core", "string", "variant", "stream", "fio", "param", "supp"]
GXX = "x86_64-w64-mingw32-g++-posix"
INCLUDE = re.compile(rb'^[ \t]*#[ \t]*include[ \t]*"([^"]+)"', re.M)


def tracked(*patterns):
    command = ["git", "-c", "safe.directory=*", "ls-files", "--cached", "--others", "--exclude-standard", "--"]
    names = subprocess.run(command + list(patterns), cwd=ROOT, check=True, capture_output=True, text=True).stdout
    return [name for name in names.splitlines() if os.path.isfile(os.path.join(ROOT, name))]


def second_compiler_flags():
    """Makes clang build for the same target with the cross compiler's libraries, but its own intrinsics."""
    run = subprocess.run([GXX, "-E", "-x", "c++", "-", "-v"], input="", capture_output=True, text=True, check=True)
    section = run.stderr.split("#include <...> search starts here:")[1].split("End of search list")[0]
    folders = [os.path.realpath(line.strip()) for line in section.strip().splitlines()]
    flags = ["--target=x86_64-w64-mingw32", "-nostdlibinc"]
    for folder in folders:
        if os.path.basename(os.path.dirname(os.path.dirname(folder))) != "x86_64-w64-mingw32" or "c++" in folder:
            flags += ["-isystem", folder]
    return flags


def closure(path, seen=None):
    """The file and everything of the tree it includes, in a fixed order."""
    seen = {} if seen is None else seen
    if path in seen:
        return seen
    with open(os.path.join(ROOT, path), "rb") as file:
        seen[path] = file.read()
    for name in INCLUDE.findall(seen[path]):
        name = name.decode()
        for folder in (os.path.dirname(path), "include", ""):
            candidate = os.path.normpath(os.path.join(folder, name))
            if os.path.isfile(os.path.join(ROOT, candidate)):
                closure(candidate, seen)
                break
    return seen


def digest(path, *extra):
    """Names the content that a result for this file depends on."""
    hashed = hashlib.sha256()
    for name, content in sorted(closure(path).items()):
        hashed.update(name.encode() + b"\0" + content + b"\0")
    for text in extra:
        hashed.update(text.encode() + b"\0")
    return hashed.hexdigest()


def run_jobs(name, jobs):
    """Runs (digest, command, standard input) jobs on all processors; good results are remembered below build/.

    Prints what failing commands say and returns 1 if any failed.
    """
    kept = os.path.join(ROOT, "build", "check", name)
    os.makedirs(kept, exist_ok=True)

    def run(job):
        key, command, text = job
        if os.path.exists(os.path.join(kept, key)):
            return ""
        result = subprocess.run(command, input=text, cwd=ROOT, capture_output=True, text=True)
        if result.returncode == 0:
            open(os.path.join(kept, key), "w").close()
            return ""
        return result.stdout + (result.stderr if "clang-tidy" not in command[0] or not result.stdout else "")

    keys = {job[0] for job in jobs}
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        complaints = [text for text in pool.map(run, jobs) if text]
    for old in set(os.listdir(kept)) - keys:
        os.remove(os.path.join(kept, old))
    # A fault in a header shows in every file that includes it.
    sys.stdout.write("\n".join(dict.fromkeys("".join(complaints).replace(ROOT + "/", "").splitlines())) + "\n"
                     if complaints else "")
    return 1 if complaints else 0
