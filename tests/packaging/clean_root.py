"""A clean Debian 12 in a folder: made from the mirror that this machine uses, and a person in it.

Its archive and the packages that were installed in it are kept in build/clean-root/ for the next time,
the archive for a week. Needs root and mounts.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

TREE = pathlib.Path(__file__).resolve().parents[2]
KEPT = TREE / "build/clean-root"
ARCHIVE = KEPT / "debian-12.tar"
ARCHIVE_SECONDS = 7 * 24 * 3600
ALICE_ID = 1000
ROOT = {
    "PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8", "DEBIAN_FRONTEND": "noninteractive", "HOME": "/root",
}
ALICE = {"PATH": "/usr/local/bin:/usr/bin:/bin", "LC_ALL": "C.UTF-8", "HOME": "/home/alice", "USER": "alice"}
# The first process of the system: its mounts, then pairs of a folder outside and its path inside. What
# follows runs in its namespaces, and ends with it. Its root is no chroot, in which the kernel allows no user
# namespaces.
FIRST = """
set -e
mount --rbind "$1" "$1"
cd "$1"
shift
mkdir -p dev
for one in null zero full random urandom tty; do : >dev/$one; mount --bind /dev/$one dev/$one; done
ln -sf /proc/self/fd dev/fd
mkdir -p dev/pts dev/shm
mount -t devpts -o newinstance,ptmxmode=0666,gid=5,mode=0620 devpts dev/pts
ln -sf pts/ptmx dev/ptmx
mount -t tmpfs -o mode=1777 tmpfs dev/shm
mount -t proc proc proc
mount -t tmpfs -o mode=0755 tmpfs run
while [ $# -gt 0 ]; do
    mkdir -p "./$2"
    mount --bind "$1" "./$2"
    shift 2
done
pivot_root . .
umount --lazy .
echo ready
exec sleep infinity
"""
SECONDS = 300


class CannotBeMade(Exception):
    """This machine does not allow a clean system; the text says why."""


def output(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, timeout=600, **options).stdout


def sources():
    """Debian 12 as this machine's own sources have it, in the one-line form."""
    targets = output("apt-get", "indextargets", "--format", "$(ORIGIN) $(REPO_URI) $(RELEASE) $(COMPONENT)",
                     "Created-By: Packages")
    found = [line.split()[1:] for line in targets.splitlines() if line.startswith("Debian ")]
    lines = sorted({f"deb {uri} {release} {component}" for uri, release, component in found
                    if release.startswith("bookworm")})
    if not lines:
        sys.exit("clean_root: this machine's apt has no sources of Debian 12")
    return "\n".join(lines) + "\n"


def ways_out():
    """The proxies and certificates in the settings of this machine's apt."""
    settings = output("apt-config", "dump", "Acquire").splitlines()
    return [line for line in settings if any(word in line for word in ("::Proxy ", "::CaInfo ", "::Verify-"))]


def is_fresh(kept):
    return kept.exists() and time.time() - kept.stat().st_mtime < ARCHIVE_SECONDS


def archive():
    """The archive of a clean system, which is made where it is missing or old."""
    if is_fresh(ARCHIVE):
        return ARCHIVE
    fresh = ARCHIVE.with_suffix(".new.tar")
    options = [word for line in ways_out() for word in ("--aptopt", line)]
    subprocess.run(["mmdebstrap", "--quiet", "--variant=minbase", "--skip=output/dev", *options, "bookworm", fresh, "-"],
                   input=sources(), text=True, check=True, timeout=900)
    fresh.rename(ARCHIVE)
    return ARCHIVE


class CleanRoot:
    """The system in `folder`, until it is closed: commands as root and as alice, an ordinary user. The network
    is this machine's. `shared` has folders of this machine, which are made, and their paths in the system. `made_of`
    is an archive of another such system."""

    def __init__(self, shared=(), made_of=None):
        if os.geteuid() != 0:
            raise CannotBeMade("it needs root")
        shared = [(KEPT / "packages", "var/cache/apt/archives"), *shared]
        for folder, _ in shared:
            folder.mkdir(parents=True, exist_ok=True)
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="kivo-clean-root-", dir="/var/tmp"))
        self.folder.chmod(0o755)
        subprocess.run(["tar", "--extract", "--numeric-owner", "--file", made_of or archive(),
                        "--directory", self.folder], check=True, timeout=300)
        shutil.copy("/etc/resolv.conf", self.folder / "etc/resolv.conf")
        (self.folder / "etc/hosts").write_text("127.0.0.1 localhost\n::1 localhost\n")  # as the installer has it
        (self.folder / "etc/apt/apt.conf.d/90ways-out").write_text("\n".join(ways_out()) + "\n")
        (self.folder / "etc/dpkg/dpkg.cfg.d/fast").write_text("force-unsafe-io\n")  # it outlives no power cut anyway
        mounts = [word for pair in shared for word in pair]
        self._first = subprocess.Popen(
            ["unshare", "--mount", "--pid", "--fork", "--kill-child", "sh", "-c", FIRST, "first", self.folder, *mounts],
            stdout=subprocess.PIPE, text=True)
        if self._first.stdout.readline() != "ready\n":
            self.close()
            raise CannotBeMade("its mounts are refused")
        children = pathlib.Path(f"/proc/{self._first.pid}/task/{self._first.pid}/children").read_text().split()
        self._enter = ["nsenter", "--target", children[0], "--mount", "--pid", "--root", "--wd=/",
                       "/usr/sbin/chroot"]
        try:
            self.root(f"id alice >/dev/null 2>&1 || useradd --create-home --uid {ALICE_ID} --shell /bin/bash alice")
            self.root("apt-get update -qq && apt-get autoclean -qq")
        except RuntimeError:
            self.close()
            raise

    def command(self, *command, user="root"):
        """The call outside that has `command` run inside."""
        identity = [f"--userspec={ALICE_ID}:{ALICE_ID}", "--groups="] if user == "alice" else []
        return [*self._enter, *identity, "/", *command]

    def root(self, script, seconds=SECONDS):
        """The output of a shell script that has to succeed."""
        return self._output("root", ROOT, script, None, seconds)

    def alice(self, script, text="", environment=ALICE):
        return self._output("alice", environment, script, text, SECONDS)

    def _output(self, user, environment, script, text, seconds):
        result = subprocess.run(self.command("sh", "-ec", script, user=user), env=environment, input=text,
                                stdin=None if text is not None else subprocess.DEVNULL,
                                capture_output=True, text=True, timeout=seconds)
        if result.returncode != 0:
            raise RuntimeError(f"{script}: exit status {result.returncode}\n{result.stdout}{result.stderr}")
        return result.stdout

    def close(self):
        """Ends its processes. Its files, which some disks take minutes to free, go meanwhile."""
        self._first.kill()
        self._first.wait(60)
        subprocess.Popen(["rm", "--recursive", "--force", "--one-file-system", self.folder], start_new_session=True)


def check(holds, what):
    if not holds:
        sys.exit(f"clean_root: it does not hold that {what}")
    print(f"clean Debian 12: {what}", flush=True)
