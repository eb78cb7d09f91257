"""A disk to which recorded events were written: the states that a power cut may leave on it.

Three models of a file system:
  "writes"  any subset of the writes and entries that were not synced, writes torn at 512 bytes
  "pages"   each page of 4 KiB of any version since the last sync; any subset of the entries
  "ordered" a journal: entries and sizes in their order, file data before the size that covers it,
            overwritten pages at any time; a sync of anything commits the journal
A truncation is one step: a page that it removed is not mixed into what came after it.
"""
import os

SECTOR = 512
PAGE = 4096


def put(content, offset, data):
    """Writes into the bytearray `content`; a gap before it becomes zeros."""
    if len(content) < offset:
        content.extend(bytes(offset - len(content)))
    content[offset:offset + len(data)] = data


def apply_to(content, op):
    """Does `op`, which is (event, offset or None, bytes or size), to the bytearray `content`."""
    _, offset, value = op
    if offset is None:
        del content[value:]
        content.extend(bytes(value - len(content)))
    else:
        put(content, offset, value)


class _File:
    def __init__(self, content=b""):
        self.durable = bytearray(content)
        self.now = bytearray(content)
        self.ops = []  # not synced
        self.versions = [bytes(content)]  # what is durable, and what each of `ops` made of it

    def add(self, op):
        self.ops.append(op)
        apply_to(self.now, op)
        self.versions.append(bytes(self.now))

    def sync(self, before):
        for op in self.ops:
            if op[0] < before:
                apply_to(self.durable, op)
        self.ops = [op for op in self.ops if op[0] >= before]
        self.versions = self._versions(self.ops)

    def _versions(self, ops):
        content = bytearray(self.durable)
        versions = [bytes(content)]
        for op in ops:
            apply_to(content, op)
            versions.append(bytes(content))
        return versions

    def cut(self, model, random, density, committed):
        if not self.ops:
            return bytes(self.durable)
        return getattr(self, "_" + model)(random, density, committed)

    def _writes(self, random, density, _):
        content = bytearray(self.durable)
        for op in self.ops:
            if random.random() < density:
                apply_to(content, op)
            elif op[1] is not None and random.random() < density:
                self._tear(content, op, random)
        return bytes(content)

    @staticmethod
    def _tear(content, op, random):
        _, offset, data = op
        for start in range(offset - offset % SECTOR, offset + len(data), SECTOR):
            if random.random() < 0.5:
                put(content, max(start, offset), data[max(0, start - offset):start + SECTOR - offset])

    def _pages(self, random, density, _):
        versions = self.versions
        newest = random.random() < density

        def choice(candidates):
            if random.random() < density:
                return candidates[-1]
            return random.choice(candidates)
        size = len(versions[-1] if newest else choice(versions))
        content = bytearray(size)
        for start in range(0, size, PAGE):
            candidates = [version for version in versions if len(version) > start]
            if len(versions[0]) <= start:
                candidates.insert(0, bytes(size))  # a size without its data
            page = choice(candidates)[start:start + PAGE]
            content[start:start + len(page)] = page
        return bytes(content[:size])

    def _ordered(self, random, density, committed):
        """Up to `committed` sizes are on the disk; pages that existed before may be older."""
        known = sum(op[0] < committed for op in self.ops)
        content = self.versions[known]
        cuts = [index for index, op in enumerate(self.ops) if op[1] is None]
        # The pages of the file since its last truncation, up to one that is not committed.
        first = max((index + 1 for index in cuts if index < known), default=0)
        last = min((index for index in cuts if index >= known), default=len(self.ops))
        overwritten = self.versions[first:last + 1]
        mixed = bytearray(content)
        for start in range(0, len(content), PAGE):
            end = min(start + PAGE, len(content))
            candidates = [version for version in overwritten if len(version) >= end]
            if candidates and random.random() >= density:
                mixed[start:end] = random.choice(candidates)[start:end]
        return bytes(mixed)


class _Folder:
    def __init__(self):
        self.durable = {}
        self.now = {}
        self.ops = []  # (event, {name: file, folder or None})

    def add(self, event, change):
        self.ops.append((event, change))
        _apply(self.now, change)

    def sync(self, before):
        for op in self.ops:
            if op[0] < before:
                _apply(self.durable, op[1])
        self.ops = [op for op in self.ops if op[0] >= before]

    def cut(self, model, random, density, committed):
        entries = dict(self.durable)
        for event, change in self.ops:
            there = event < committed if model == "ordered" else random.random() < density
            if there:
                _apply(entries, change)
        return entries


def _apply(entries, change):
    for name, node in change.items():
        if node is None:
            entries.pop(name, None)
        else:
            entries[name] = node


class Disk:
    def __init__(self, recording, ignores_sync=lambda path: False):
        self.root = _Folder()
        self.ignores_sync = ignores_sync
        self.committed = 0
        for path in sorted(recording.folders_before):
            self._add(-1, path, _Folder())
        for path, content in recording.before.items():
            self._add(-1, path, _File(content))
        for folder in self._folders(self.root):
            folder.sync(0)

    def _folders(self, folder):
        yield folder
        for node in folder.now.values():
            if isinstance(node, _Folder):
                yield from self._folders(node)

    def _find(self, path):
        node = self.root
        for name in path.split("/"):
            if name not in (".", ""):
                node = node.now.get(name)
                if node is None:
                    return None
        return node

    def _add(self, index, path, node):
        self._find(os.path.dirname(path)).add(index, {os.path.basename(path): node})

    def apply(self, index, event):
        kind, path = event[0], event[1]
        if kind == "mkdir":
            self._add(index, path, _Folder())
        elif kind == "create":
            self._add(index, path, _File())
        elif kind == "unlink":
            self._add(index, path, None)
        elif kind == "rename":
            folder, new = os.path.split(event[2])
            assert folder == os.path.dirname(path), "a rename to another folder has no model"
            self._find(folder).add(index, {new: self._find(path), os.path.basename(path): None})
        elif kind == "truncate":
            self._find(path).add((index, None, event[2]))
        elif kind == "write":
            file = self._find(path)
            file.add((index, len(file.now) if event[2] is None else event[2], event[3]))
        elif kind == "sync" and not self.ignores_sync(path):
            node = self._find(path)
            if node is not None:
                node.sync(event[2])
                self.committed = max(self.committed, event[2])

    def now(self):
        """Everything that was written, by path."""
        return self._collect(self.root, lambda folder: folder.now,
                             lambda file: bytes(file.now))

    def after_cut(self, model, random, density, index):
        """A state that a cut before the event `index` may leave, by path. With `density` 1 all
        that was written is there, with 0 nothing but what was synced."""
        committed = self.committed + round((index - self.committed) * density)
        if 0 < density < 1:
            committed = random.randint(self.committed, max(index, self.committed))
        return self._collect(
            self.root, lambda folder: folder.cut(model, random, density, committed),
            lambda file: file.cut(model, random, density, committed))

    def _collect(self, folder, entries, content, path=""):
        files = {}
        for name, node in entries(folder).items():
            if isinstance(node, _Folder):
                files.update(self._collect(node, entries, content, f"{path}{name}/"))
            else:
                files[path + name] = content(node)
        return files
