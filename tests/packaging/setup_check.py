#!/usr/bin/env python3
"""Shows in a clean Debian 12 that scripts/setup lists what ./run and ./test need.

An ordinary user with sudo has this tree there, runs it and tests it; no package comes but by its scripts.
The tree has the same path inside as outside, and what is compiled inside is kept for ccache in
build/clean-root/compiled, so that it need not be compiled again. Exit status 77 where no clean system can
be made.
"""
import contextlib
import subprocess
import sys
import time

from clean_root import ALICE, ALICE_ID, KEPT, TREE, CannotBeMade, CleanRoot, check, output

COMPILED = "/var/cache/compiled"  # inside
COMPILED_LIMIT = "2G"
BOOTING = {"procps", "systemd"}  # packages of every Debian that boots, and what they start with it
DESKTOP = {"dbus"}  # of every Debian with a desktop; GTK's settings need a session bus, which needs it
FOLDERS = {"x11-common"}  # makes two folders for X at each boot; no daemon
# Links by which a service manager starts daemons by itself.
ENABLED = "find /etc/systemd /etc/rc?.d -type l '(' -path '*.wants/*' -o -path '*.requires/*' -o -name 'S*' ')'"


def give_tree(root):
    """The files that git knows or would add, at the same path, where alice may read and write them."""
    files = output("git", "-C", TREE, "ls-files", "-z", "--cached", "--others", "--exclude-standard")
    there = [name for name in files.split("\0") if name and (TREE / name).exists()]
    inside = root.folder / TREE.relative_to("/")
    inside.mkdir(parents=True)
    subprocess.run(["xargs", "-0", "cp", "--parents", "--no-dereference", "--preserve=mode", "--target-directory", inside],
                   input="\0".join(there), text=True, check=True, cwd=TREE)
    for folder in inside.parents:
        if folder == root.folder:
            break
        folder.chmod(folder.stat().st_mode | 0o055)
    subprocess.run(["chown", "--recursive", f"{ALICE_ID}:{ALICE_ID}", inside], check=True)


class Person:
    """Alice at a terminal, in her copy of the tree."""

    def __init__(self, root):
        self._root = root
        self._environment = ALICE | {"CCACHE_REMOTE_STORAGE": f"file:{COMPILED}"}
        root.root("apt-get install -qq --no-install-recommends sudo git ca-certificates")
        root.root("echo 'alice ALL=(ALL) NOPASSWD: ALL' >/etc/sudoers.d/alice")

    def types(self, line):
        """Runs a line, shows its output, and tells the packages that it installed."""
        before, begin = self.packages(), time.monotonic()
        command = self._root.command("bash", "-c", f"cd {TREE} && {line}", user="alice")
        status = subprocess.run(command, env=self._environment, stdin=subprocess.DEVNULL, timeout=3600,
                                check=False).returncode
        check(status == 0, f"{line} succeeds for an ordinary user with sudo")
        after = self.packages()
        new = set(after) - set(before)
        megabytes = round(sum(after[name] for name in new) / 1024)
        print(f"clean Debian 12: {line} took {round(time.monotonic() - begin)} s and installed {len(new)} packages"
              f" of {megabytes} MB", flush=True)

    def packages(self):
        """The installed packages and their sizes in KiB."""
        lines = self._root.root("dpkg-query --show --showformat '${Package} ${Installed-Size}\\n'").splitlines()
        return {name: int(size or 0) for name, _, size in (line.partition(" ") for line in lines)}

    def prints(self, line):
        return self._root.alice(f"cd {TREE} && {line} 2>&1")


def try_out(root):
    give_tree(root)
    alice = Person(root)
    enabled = set(root.root(ENABLED).splitlines())
    alice.types("./run")
    check(alice.prints("scripts/setup run") == "", "there is nothing more to install for it")
    alice.types(f"SOURCE_DATE_EPOCH={int(time.time())} ./run package")
    alice.types("scripts/setup test")
    alice.types("./test")
    alice.types("./test faults")
    new = sorted(set(root.root(ENABLED).splitlines()) - enabled)
    ours = [link for link in new if not owners(root, link) & (BOOTING | DESKTOP | FOLDERS)]
    check(not ours, f"none of this has enabled a daemon {' '.join(ours)}".rstrip())


def owners(root, link):
    """The packages that have a file of the name that a link leads to."""
    found = root.root(f"dpkg --search */$(basename $(readlink {link})) || true")
    return {line.partition(":")[0] for line in found.splitlines()}


def main():
    compiled = KEPT / "compiled"
    with contextlib.ExitStack() as stack:
        try:
            root = stack.enter_context(contextlib.closing(CleanRoot([(compiled, COMPILED)])))
        except CannotBeMade as reason:
            print(f"setup: not tried in a clean Debian 12: {reason}")
            sys.exit(77)
        root.root(f"chown --recursive alice: {COMPILED}")
        try_out(root)
    subprocess.run(["ccache", "--trim-dir", compiled, "--trim-max-size", COMPILED_LIMIT], check=True)


if __name__ == "__main__":
    main()
