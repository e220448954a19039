"""Runs a program where it can do no harm: a mutant may delete "/" or signal every process.

The program has a PID namespace of its own: it can reach only its own processes, which end with it.
Every mount is read-only, except for /tmp, which is empty.
"""

import os
import shutil
import subprocess

INSIDE = """
set -e
mount --bind "$1" /tmp
while read -r _ _ _ _ place options _; do
  place=$(printf %b "$place")
  case "$place" in
    /tmp | /proc | /proc/*) ;;
    *) mount -o remount,bind,ro "$place" ;;
  esac
done </proc/self/mountinfo
mount -t proc proc /proc
cd /tmp
shift
"$@"
exit $?
"""
OUTSIDE = ["unshare", "--mount", "--pid", "--fork", "--kill-child"]


class Shield:
    def __init__(self, folder):
        self.folder = folder
        self.home = "/tmp/home"

    def _command(self, program):
        if os.geteuid() == 0:
            return [*OUTSIDE, "bash", "-c", INSIDE, "shield", self.folder, *program]
        ids = [f"--map-user={os.geteuid()}", f"--map-group={os.getegid()}"]
        return [*OUTSIDE, "--map-root-user", "bash", "-c", INSIDE, "shield", self.folder,
                "unshare", *ids, "--", *program]  # fmt: skip

    def run(self, program, seconds):
        """Returns the status and the output; no status if the time ran out."""
        shutil.rmtree(self.folder, ignore_errors=True)
        (self.folder / "home").mkdir(parents=True)
        self.folder.chmod(0o1777)
        environment = {**os.environ, "HOME": self.home, "CFFIXED_USER_HOME": self.home,
                       "TMPDIR": "/tmp", "QT_QPA_PLATFORM": "offscreen"}  # fmt: skip
        with subprocess.Popen(self._command(program), env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT) as process:  # fmt: skip
            try:
                output = process.communicate(timeout=seconds)[0]
            except subprocess.TimeoutExpired:
                process.kill()
                return None, ""
        return process.returncode, output.decode(errors="replace")
