"""A copy of the tree with its own build, in which mutants are made. The checkout is never changed."""

import hashlib
import os
import shutil
import subprocess
from pathlib import Path, PurePath

CONFIGURATION = [
    "-G", "Ninja",
    "-DCMAKE_BUILD_TYPE=Debug",
    "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -g0",
    "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST",
    "-DQUORVEL_WARNINGS_AS_ERRORS=OFF",
    "-DQUORVEL_TESTS=ON",
    "-DQUORVEL_BENCHMARKS=OFF",
]  # fmt: skip


class BuildError(Exception):
    pass


class Workshop:
    def __init__(self, root, jobs):
        self.root = root
        self.place = root / "build" / "mutations"
        self.tree = self.place / "tree"
        self.build = self.place / "build"
        self.jobs = jobs

    def prepare(self):
        """Synchronises the copy with the checkout; unchanged files are not built again."""
        names = self._names()
        for name in names:
            self._copy(name)
        for path in [p for p in self.tree.rglob("*") if p.is_file() or p.is_symlink()]:
            if str(path.relative_to(self.tree)) not in names:
                path.unlink()
        if not (self.build / "build.ninja").exists():
            self._configure()

    def _names(self):
        command = ["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"]
        listed = subprocess.run(command, cwd=self.root, check=True, capture_output=True).stdout
        return {name for name in listed.decode().split("\0") if name and os.path.lexists(self.root / name)}

    def _copy(self, name):
        original, copy = self.root / name, self.tree / name
        if original.is_symlink():
            copy.unlink(missing_ok=True)
            copy.parent.mkdir(parents=True, exist_ok=True)
            copy.symlink_to(os.readlink(original))
        elif not copy.is_file() or copy.read_bytes() != original.read_bytes():
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(original, copy)

    def _configure(self):
        linker = ["-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=lld"] if shutil.which("ld.lld") else []
        command = ["cmake", "-S", self.tree, "-B", self.build, *CONFIGURATION, *linker]
        self._run(command, "Configuring failed")

    def _run(self, command, failure):
        # Mutants would only evict useful entries from the compiler cache.
        environment = {**os.environ, "CCACHE_DISABLE": "1"}
        done = subprocess.run(command, env=environment, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT, text=True, errors="replace")  # fmt: skip
        if done.returncode != 0:
            raise BuildError(f"{failure}:\n{done.stdout[-4000:]}")

    def make(self, target):
        self._run(["ninja", "-C", self.build, "-j", str(self.jobs), target], f"{target} can't be built")

    def make_object(self, path):
        self.make(f"{self.tree / path}^")

    def write(self, path, text):
        (self.tree / path).write_text(text, encoding="utf-8")

    def object_digest(self, path):
        """The objects that a source compiles to, which identify mutants that change nothing."""
        found = sorted(item for folder in PurePath(path).parents
                       for item in (self.build / folder).glob(
                           f"CMakeFiles/*.dir/{PurePath(path).relative_to(folder)}.o"))  # fmt: skip
        if not found:
            raise BuildError(f"{path} compiles to no object below {self.build}")
        return hashlib.sha256(b"".join(p.read_bytes() for p in found)).hexdigest()

    def fingerprint(self):
        """Changes with any file of the copy, so also with any test."""
        digest = hashlib.sha256()
        for path in sorted(p for p in self.tree.rglob("*") if p.is_file()):
            digest.update(str(path.relative_to(self.tree)).encode() + b"\0" + path.read_bytes())
        return digest.hexdigest()
