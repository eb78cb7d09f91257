"""Records what real programs write below a folder, as strace shows it.

An event is a tuple: ("mkdir", path), ("create", path), ("unlink", path), ("rename", path, new path),
("write", path, offset, bytes), ("truncate", path, size), ("sync", path, index of the first event that
it need not cover) or ("said", words, index of the first event of that run), for what goes to standard
output or into a socket. Paths are relative to the folder. The WAL index (-shm) is left
out, since a power cut takes it.
"""
import os
import pathlib
import re
import subprocess
import tempfile

CALLS = ("openat,open,creat,mkdir,mkdirat,mknod,mknodat,write,pwrite64,writev,pwritev,ftruncate,"
         "truncate,fallocate,fsync,fdatasync,sync_file_range,rename,renameat,renameat2,unlink,"
         "unlinkat,rmdir,link,linkat,sendmsg")
UNHANDLED = {"writev", "pwritev", "truncate", "fallocate", "sync_file_range", "link", "linkat", "rmdir"}
LINE = re.compile(r"^(\d+) +(.*)$")
CALL = re.compile(r"^(\w+)\((.*)\) += (-?\d+|\?)")
TEXT = re.compile(r'"((?:\\x[0-9a-f]{2})*)"')
OPENED = re.compile(r"^(?:AT_FDCWD|\d+)<([^>]*)>")


def _bytes(escaped):
    return bytes.fromhex(escaped.replace("\\x", ""))


def _path(escaped):
    return _bytes(escaped).decode() if escaped.startswith("\\x") else escaped


class Recording:
    """The events of programs that ran one after the other, from the files that were there before."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder).resolve()
        self.before = {str(file.relative_to(self.folder)): file.read_bytes()
                       for file in self.folder.rglob("*")
                       if file.is_file() and not file.name.endswith("-shm")}
        self.folders_before = {str(path.relative_to(self.folder))
                               for path in self.folder.rglob("*") if path.is_dir()}
        self.events = []
        self._known = set(self.before)
        self._folders_known = set(self.folders_before)
        self._begun = {}

    def start(self, command, kill=None, **options):
        """Starts `command` under strace; `finish` takes its log. `kill` kills it at that sync."""
        log = tempfile.NamedTemporaryFile(prefix="kivo-strace-")
        arguments = ["strace", "-f", "-qq", "-y", "-xx", "-s", "4000000", "-o", log.name,
                     "-e", f"trace={CALLS}"]
        if kill is not None:
            arguments += ["-e", f"inject=fsync,fdatasync:signal=SIGKILL:when={kill}"]
        process = subprocess.Popen(arguments + [str(word) for word in command],
                                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, **options)
        return process, log

    def run(self, command, text=None, kill=None, **options):
        """Runs `command` to its end; its standard output."""
        process, log = self.start(command, kill, stdin=subprocess.PIPE, **options)
        output, _ = process.communicate(text.encode() if text is not None else b"", timeout=60)
        self.finish(log)
        return output.decode()

    def finish(self, log):
        began = len(self.events)
        with log:
            lines = pathlib.Path(log.name).read_text(encoding="latin-1").splitlines()
        for line in lines:
            thread, rest = LINE.match(line).groups()
            if rest.rstrip().endswith("<unfinished ...>"):
                self._begun[thread] = (rest.rstrip()[:-len("<unfinished ...>")], len(self.events))
                continue
            started = len(self.events)
            resumed = re.match(r"^<\.\.\. \w+ resumed>(.*)$", rest)
            if resumed:
                opening, started = self._begun.pop(thread)
                rest = opening + resumed.group(1)
            call = CALL.match(rest)
            if call and call.group(3) != "?" and not call.group(3).startswith("-"):
                self._note(call.group(1), call.group(2), started, began)

    def _inside(self, path, base=None):
        whole = os.path.normpath(os.path.join(base or "/", path))
        inside = os.path.relpath(whole, self.folder)
        return None if inside.startswith("..") or inside.endswith("-shm") else inside

    def _note(self, call, words, started, began):
        opened = OPENED.match(words)
        base = _path(opened.group(1)) if opened else None
        texts = [_bytes(text) for text in TEXT.findall(words)]
        if call == "sendmsg":
            if any(text.startswith(b"HTTP/1.1 200 ") for text in texts):
                self.events.append(("said", "an answer", began))
            return
        if call in ("write", "pwrite64", "ftruncate", "fsync", "fdatasync"):
            if call == "write" and words.startswith("1<"):
                self.events.append(("said", texts[0].decode(), began))
                return
            inside = self._inside(base) if base and base.startswith("/") else None
            if inside is not None:
                self._note_descriptor(call, inside, words, texts, started)
            return
        paths = [self._inside(text.decode(), base) for text in texts]
        if all(path is None for path in paths):
            return
        if call in UNHANDLED:
            raise AssertionError(f"no model of {call}({words[:200]})")
        self._note_name(call, paths, words)

    def _note_descriptor(self, call, inside, words, texts, started):
        if call in ("fsync", "fdatasync"):
            self.events.append(("sync", inside, started))
        elif inside not in self._known:
            pass  # removed before
        elif call == "ftruncate":
            self.events.append(("truncate", inside, int(words.rsplit(",", 1)[1])))
        elif call == "pwrite64":
            self.events.append(("write", inside, int(words.rsplit(",", 1)[1]), texts[0]))
        else:
            self.events.append(("write", inside, None, texts[0]))

    def _note_name(self, call, paths, words):
        if call in ("mkdir", "mkdirat"):
            self.events.append(("mkdir", paths[0]))
            self._folders_known.add(paths[0])
        elif call in ("unlink", "unlinkat"):
            self.events.append(("unlink", paths[0]))
            self._known.discard(paths[0])
        elif call.startswith("rename"):
            self.events.append(("rename", paths[0], paths[1]))
            self._known.discard(paths[0])
            self._known.add(paths[1])
        else:
            if call.startswith("mknod") or ("O_CREAT" in words and paths[0] not in self._known):
                self.events.append(("create", paths[0]))
                self._known.add(paths[0])
            elif "O_TRUNC" in words:
                self.events.append(("truncate", paths[0], 0))
