"""Alice's session in a Debian system in a folder: commands as root and as her, and her own service
manager and bus. Processes and mounts end with it; the network is this machine's."""
import pathlib
import subprocess
import time

RUNTIME = "/run/user/1000"
ROOT = {
    "PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8", "DEBIAN_FRONTEND": "noninteractive", "HOME": "/root",
}
ALICE = ROOT | {
    "HOME": "/home/alice", "XDG_RUNTIME_DIR": RUNTIME, "DBUS_SESSION_BUS_ADDRESS": f"unix:path={RUNTIME}/bus",
}
AS_ALICE = ["setpriv", "--reuid", "1000", "--regid", "1000", "--clear-groups"]
# The first process of the system. What follows runs in its namespaces, and ends with it.
FIRST = """
set -e
cd "$1"
mkdir -p dev
for one in null zero full random urandom tty; do : >dev/$one; mount --bind /dev/$one dev/$one; done
ln -sf /proc/self/fd dev/fd
mount -t proc proc proc
mount -t tmpfs tmpfs run
mkdir -p run/systemd/system run/user/1000
chown 1000:1000 run/user/1000
chmod 700 run/user/1000
mkdir -p sys/fs/cgroup
mount -t cgroup2 cgroup2 sys/fs/cgroup 2>/dev/null || true
echo ready
exec sleep infinity
"""
# The service manager needs control groups of its own, below one that is hers.
MANAGER = """
echo $$ >"$1/cgroup.procs"
exec setpriv --reuid 1000 --regid 1000 --clear-groups /lib/systemd/systemd --user
"""
SECONDS = 300


class Session:
    def __init__(self, root):
        self.folder = pathlib.Path(root)
        self._first = subprocess.Popen(
            ["unshare", "--mount", "--pid", "--fork", "--kill-child", "sh", "-c", FIRST, "first", root],
            stdout=subprocess.PIPE, text=True)
        if self._first.stdout.readline() != "ready\n":
            raise RuntimeError("the system's mounts cannot be made")
        children = pathlib.Path(f"/proc/{self._first.pid}/task/{self._first.pid}/children").read_text().split()
        self._enter = ["nsenter", "--target", children[0], "--mount", "--pid", "--root", f"--wd={root}",
                       "chroot", str(root)]
        self._manager = None

    def root(self, command):
        """The output of a shell command that has to succeed."""
        return self._run([], ROOT, command, None)

    def alice(self, command, text=""):
        return self._run(AS_ALICE, ALICE, command, text)

    def _run(self, identity, environment, command, text):
        result = subprocess.run([*self._enter, *identity, "sh", "-ec", command], env=environment, input=text,
                                stdin=None if text is not None else subprocess.DEVNULL,
                                capture_output=True, text=True, timeout=SECONDS)
        if result.returncode != 0:
            raise RuntimeError(f"{command}: exit status {result.returncode}\n{result.stdout}{result.stderr}")
        return result.stdout

    def begin(self):
        """Starts her service manager with her bus. False where no control groups can be had."""
        group = "/sys/fs/cgroup/kivo-session"
        try:
            self.root(f"mkdir {group} && chown --recursive 1000:1000 {group}")
        except RuntimeError:
            return False
        self._manager = subprocess.Popen([*self._enter, "sh", "-c", MANAGER, "manager", group], env=ALICE,
                                         stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.alice("for try in $(seq 300); do systemctl --user is-system-running 2>/dev/null"
                   " | grep -qE 'running|degraded' && break; sleep 0.1; done; systemctl --user start dbus.socket")
        return True

    def status_of(self, unit):
        """What the kernel says of a unit's process, by its name."""
        process = self.alice(f"systemctl --user show --property=MainPID --value {unit}").strip()
        lines = self.alice(f"cat /proc/{process}/status").splitlines()
        return {name: value.strip() for name, _, value in (line.partition(":") for line in lines)}

    def close(self):
        """Ends every process of the session, and waits until its groups can be taken away."""
        if self._manager:
            self.alice("systemctl --user exit")
            self._manager.wait(60)
            self.root("find /sys/fs/cgroup/kivo-session -depth -type d -exec rmdir {} +")
        self._first.kill()
        self._first.wait(60)
