"""Alice's session in a clean root: her own service manager and bus."""
import subprocess

from clean_root import ALICE

RUNTIME = "/run/user/1000"
IN_SESSION = ALICE | {"XDG_RUNTIME_DIR": RUNTIME, "DBUS_SESSION_BUS_ADDRESS": f"unix:path={RUNTIME}/bus"}
SURROUNDINGS = f"""
mkdir -p /run/systemd/system /run/systemd/unit-root {RUNTIME} /sys/fs/cgroup
chown 1000:1000 {RUNTIME}
chmod 700 {RUNTIME}
"""
GROUP = "/sys/fs/cgroup/kivo-session"
# The service manager needs control groups of its own, below one that is hers.
MANAGER = """
echo $$ >"$1/cgroup.procs"
exec setpriv --reuid 1000 --regid 1000 --clear-groups /lib/systemd/systemd --user
"""


class Session:
    def __init__(self, root):
        self._root = root
        self._manager = None
        root.root(SURROUNDINGS)

    def alice(self, script, text=""):
        """The output of a shell script that has to succeed."""
        return self._root.alice(script, text, IN_SESSION)

    def begin(self):
        """Starts her service manager with her bus. False where no control groups can be had."""
        try:
            self._root.root(f"mount -t cgroup2 cgroup2 /sys/fs/cgroup && mkdir {GROUP}"
                            f" && chown --recursive 1000:1000 {GROUP}")
        except RuntimeError:
            return False
        self._manager = subprocess.Popen(self._root.command("sh", "-c", MANAGER, "manager", GROUP), env=IN_SESSION,
                                         stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.alice("for try in $(seq 300); do systemctl --user is-system-running 2>/dev/null"
                   " | grep -qE 'running|degraded' && break; sleep 0.1; done; systemctl --user start dbus.socket")
        return True

    def status_of(self, unit):
        """The kernel's status of a unit's process, by its name."""
        process = self.alice(f"systemctl --user show --property=MainPID --value {unit}").strip()
        lines = self.alice(f"cat /proc/{process}/status").splitlines()
        return {name: value.strip() for name, _, value in (line.partition(":") for line in lines)}

    def close(self):
        """Ends every process of the session, and waits until its groups can be taken away."""
        if self._manager:
            self.alice("systemctl --user exit")
            self._manager.wait(60)
            self._root.root(f"find {GROUP} -depth -type d -exec rmdir {{}} +")
