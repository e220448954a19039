"""A session of an ordinary user that exists only while this program runs: a home, a runtime folder and
two buses, in namespaces of its own for mounts, processes and the network. Needs root. What is started
in it ends with it, also if this program is killed."""
import os
import shutil
import subprocess
import tempfile
import time

USER = "tester"

# The folder stays where it is while a new /tmp covers the old one. Without the folder that says that
# systemd runs the machine, desktops do without its services. The build is mounted on /usr/local.
# The last line collects orphans.
FIRST_PROCESS = r"""
base=$1
mkdir -p "$base/tmp${base#/tmp}" "$base/tmp/.X11-unix" "$base/tmp/.ICE-unix"
chmod 1777 "$base/tmp" "$base/tmp/.X11-unix" "$base/tmp/.ICE-unix"
mount --bind "$base/passwd" /etc/passwd && mount --bind "$base" "$base/tmp${base#/tmp}" &&
mount --rbind "$base/tmp" /tmp && mount -t tmpfs -o mode=1777 none /dev/shm &&
mount -t tmpfs -o mode=1777 none /var/tmp || exit 1
[ ! -d /run/systemd ] || mount -t tmpfs none /run/systemd || exit 1
[ ! -d "$base/quorvel" ] || mount --bind "$base/quorvel" /usr/local || exit 1
ip link set lo up
exec /usr/bin/python3 -c '
import os, time
print("ready", flush=True)
while True:
    try:
        os.wait()
    except ChildProcessError:
        time.sleep(0.1)'
"""

BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>{kind}</type><listen>unix:path={path}</listen><auth>EXTERNAL</auth>{services}
  <policy context="default"><allow user="*"/><allow own="*"/>
    <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/></policy>
</busconfig>
"""


class Forbidden(Exception):
    """The kernel permits no namespaces."""


def wait_for(condition, seconds, pause=0.1):
    """Returns the first true result, or None after the timeout."""
    end = time.monotonic() + seconds
    while True:
        try:
            found = condition()
        except Exception:  # a desktop that is still starting answers in many ways
            found = None
        if found or time.monotonic() > end:
            return found or None
        time.sleep(pause)


class Session:
    def __init__(self):
        # Short, since the paths of sockets are limited.
        self.base = tempfile.mkdtemp(prefix="qd-", dir="/tmp")
        os.chmod(self.base, 0o755)
        self.user = 20000 + os.getpid() % 40000
        self.home = self.base + "/home"
        self.runtime = self.base + "/run"
        self.children = []
        self.first = None
        self.init = None
        for folder, mode in ((self.home, 0o755), (self.runtime, 0o700), (self.base + "/tmp", 0o1777),
                             (self.base + "/log", 0o755), (self.base + "/out", 0o777)):
            os.mkdir(folder)
            os.chmod(folder, mode)
        with open("/etc/passwd") as all_users, open(self.base + "/passwd", "w") as own:
            own.write(all_users.read())
            own.write(f"{USER}:x:{self.user}:{self.user}::{self.home}:/bin/sh\n")
        self.environment = {
            "HOME": self.home, "USER": USER, "LOGNAME": USER, "SHELL": "/bin/sh", "LANG": "C.UTF-8",
            "PATH": "/usr/local/bin:/usr/bin:/bin:/usr/local/games:/usr/games",
            "XDG_RUNTIME_DIR": self.runtime, "XDG_DATA_DIRS": "/usr/local/share:/usr/share",
            "DBUS_SESSION_BUS_ADDRESS": f"unix:path={self.runtime}/bus",
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.runtime}/system",
            "LIBGL_ALWAYS_SOFTWARE": "1", "NO_AT_BRIDGE": "1", "GTK_A11Y": "none"}

    def write(self, path, text):
        """A file of the user's, with the folders that it needs."""
        path = os.path.join(self.home, path)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w") as file:
            file.write(text)

    def open(self):
        self.give_to_user()
        self.first = subprocess.Popen(
            ["setpriv", "--pdeathsig", "KILL", "unshare", "--mount", "--net", "--pid", "--ipc", "--fork",
             "--kill-child=KILL", "--mount-proc", "--propagation", "private",
             "/bin/sh", "-c", FIRST_PROCESS, "sh", self.base],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        if self.first.stdout.readline() != "ready\n":
            reason = self.first.stderr.read().strip()
            allowed = subprocess.run(["unshare", "--mount", "--net", "--pid", "--ipc", "--fork", "true"],
                                     stderr=subprocess.DEVNULL).returncode == 0
            raise (RuntimeError if allowed else Forbidden)(reason or "the session's first process does not start")
        with open(f"/proc/{self.first.pid}/task/{self.first.pid}/children") as children:
            self.init = children.read().split()[0]
        for kind, name, services in (("session", "bus", "<standard_session_servicedirs/>"), ("system", "system", "")):
            configuration = f"{self.base}/{name}.conf"
            with open(configuration, "w") as file:
                file.write(BUS.format(kind=kind, path=f"{self.runtime}/{name}", services=services))
            self.start(["dbus-daemon", "--config-file=" + configuration, "--nofork", "--nosyslog"], log=name)
            if not wait_for(lambda: os.path.exists(f"{self.runtime}/{name}"), 30):
                raise RuntimeError(f"the {kind} bus does not come up")

    def close(self):
        if self.init:
            try:
                os.kill(int(self.init), 9)  # the kernel ends the rest, before its parent learns of it
            except ProcessLookupError:
                pass
            self.init = None
        if self.first:
            self.first.wait()
            self.first.stdout.close()
            self.first.stderr.close()
            self.first = None
        for child in self.children:
            child.wait()
        shutil.rmtree(self.base, ignore_errors=True)

    def give_to_user(self):
        subprocess.run(["chown", "-R", f"{self.user}:{self.user}", self.home, self.runtime], check=True)

    def inside(self, command, environment=None):
        variables = {**self.environment, **(environment or {})}
        return (["nsenter", "-t", self.init, "--mount", "--net", "--pid", "--ipc", "--wd=" + self.home,
                 "setpriv", "--reuid", str(self.user), "--regid", str(self.user), "--clear-groups", "env", "-i"] +
                [f"{name}={value}" for name, value in variables.items()] + list(command))

    def start(self, command, environment=None, log=None, **options):
        """Starts a program and leaves it. What it prints is in its log."""
        with open(self.log(log or os.path.basename(command[0])), "ab") as output:
            options = {"stdin": subprocess.DEVNULL, "stdout": output, "stderr": output, **options}
            child = subprocess.Popen(self.inside(command, environment), **options)
        self.children.append(child)
        return child

    def log(self, name):
        return f"{self.base}/log/{name}.log"

    def log_text(self, name):
        try:
            with open(self.log(name), errors="replace") as log:
                return log.read()
        except OSError:
            return ""

    def run(self, command, environment=None, seconds=120):
        """Runs a program to its end."""
        return subprocess.run(self.inside(command, environment), stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, timeout=seconds)

    def output_of(self, command, **options):
        done = self.run(command, **options)
        if done.returncode != 0:
            raise RuntimeError(f"{' '.join(command)}: {done.stderr.strip() or done.stdout.strip()}")
        return done.stdout

    def processes(self):
        """The numbers, as seen from outside, of what runs in the session."""
        own = os.readlink(f"/proc/{self.init}/ns/pid")
        found = []
        for number in filter(str.isdigit, os.listdir("/proc")):
            try:
                if number != self.init and os.readlink(f"/proc/{number}/ns/pid") == own:
                    found.append(int(number))
            except OSError:
                pass
        return found
