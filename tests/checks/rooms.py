#!/usr/bin/env python3
"""Compares the tree, the targets and the includes of src/ with the arrows between its rooms.

Prints one line for each place that breaks a rule and exits 1 when there is one. The rules are the
tables below; docs/architecture.md draws them. An exception that no file needs any more is an error
too.
"""
import pathlib
import re
import sys

# Room (a folder of src/) -> rooms that it may include and link.
ARROWS = {
    "intents": {"extraction", "queue", "feedback", "store", "platform"},
    "extraction": {"platform"},
    "queue": {"extraction", "feedback", "store", "platform"},
    "feedback": {"store", "platform"},
    "store": {"platform"},
    "platform": set(),
    "platform/linux": {"platform"},
    "ledger/recognition": set(),
    "phone": {"ledger/recognition", "store", "queue", "extraction", "feedback", "platform", "platform/linux"},
    "ledger": {"ledger/recognition", "store", "extraction", "feedback", "platform", "platform/linux"},
}
FRAMEWORKS = {"app_intents", "foundation", "user_notifications", "widget_kit", "concurrency"}

# Rooms that may include the headers of libraries. Everybody may include the standard library's and
# the system's.
VENDOR_ROOMS = {"platform/linux"}

# (file or folder, what it may include besides) for single places, each with its reason.
EXCEPTIONS = {
    # Coroutine signatures carry the awaitable's type.
    ("src/platform/concurrency/", "<boost/asio/awaitable.hpp>"),
    # One JSON decoder and encoder serve the records and the queue.
    ("src/platform/foundation/json_decoder.cpp", "<nlohmann/json.hpp>"),
    ("src/platform/foundation/json_encoder.cpp", "<nlohmann/json.hpp>"),
}

INCLUDE = re.compile(r'^\s*#\s*include\s+(<[^>]+>|"[^"]+")', re.MULTILINE)
SYSTEM_HEADER = re.compile(r"<(?:[a-z0-9_]+|(?:sys|netinet|arpa|net)/[a-z0-9_]+\.h|"
                           r"(?:fcntl|poll|pthread|signal|spawn|unistd|netdb|locale|time)\.h)>")
FILE_NAME = re.compile(r"[a-z0-9_]+\.(?:h|cpp)")


def room_of(path):
    """The room of a path relative to src/, such as "queue" or "platform/linux"; none if no room."""
    matching = [room for room in ARROWS if path.startswith(room + "/")]
    return max(matching, key=len, default=None)


def check_file(root, file, used_exceptions):
    name = file.relative_to(root).as_posix()
    room = room_of(file.relative_to(root / "src").as_posix())
    if room is None:
        yield f"{name}: is in no room"
        return
    if not FILE_NAME.fullmatch(file.name):
        yield f"{name}: a file's name is snake_case"
    if room == "platform" and file.relative_to(root / "src/platform").parts[0] not in FRAMEWORKS:
        yield f"{name}: belongs to no framework of the platform"
    for include in INCLUDE.findall(file.read_text(encoding="utf-8")):
        if include.startswith("<"):
            what, allowed = include, bool(SYSTEM_HEADER.fullmatch(include)) or room in VENDOR_ROOMS
        else:
            what = room_of(include.strip('"'))
            if what is None:
                yield f"{name}: includes {include}, which is in no room"
                continue
            allowed = what == room or what in ARROWS[room]
        if allowed:
            continue
        exception = next((rule for rule in EXCEPTIONS
                          if name.startswith(rule[0]) and rule[1] == what), None)
        if exception is None:
            yield f"{name}: {room} may not include {include}"
        else:
            used_exceptions.add(exception)


def check_targets(root):
    """Each room is one library, made of all of its sources, linked along the arrows."""
    for room, arrows in ARROWS.items():
        folder = root / "src" / room
        lists = folder / "CMakeLists.txt"
        if not lists.is_file():
            yield f"src/{room}: has no CMakeLists.txt"
            continue
        text = re.sub(r"#.*", "", lists.read_text(encoding="utf-8"))
        target = "kivo_" + room.replace("/", "_")
        if not re.search(rf"kivo_room\(\s*{target}\b", text):
            yield f"src/{room}/CMakeLists.txt: does not make the room's library {target}"
        for linked in re.findall(rf"target_link_libraries\(\s*{target}\b([^)]*)\)", text):
            for library in re.findall(r"\bkivo_\w+", linked):
                other = next((r for r in ARROWS if "kivo_" + r.replace("/", "_") == library), None)
                if other not in arrows:
                    yield f"src/{room}/CMakeLists.txt: {target} may not link {library}"
        listed = set(re.findall(r"[\w/]+\.cpp", text))
        for source in sorted(folder.rglob("*.cpp")):
            name = source.relative_to(folder).as_posix()
            if room_of(f"{room}/{name}") == room and name not in listed:
                yield f"src/{room}/{name}: is in no target"


def check(root):
    """All broken rules of the tree below `root`, as lines."""
    used_exceptions = set()
    for file in sorted((root / "src").rglob("*")):
        if file.suffix in {".h", ".cpp"}:
            yield from check_file(root, file, used_exceptions)
    yield from check_targets(root)
    for place, what in sorted(EXCEPTIONS - used_exceptions):
        yield f"{place}: no longer needs its exception for {what}"


if __name__ == "__main__":
    broken = list(check(pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()))
    print("\n".join(broken) if broken else "every include and every link follows the arrows")
    sys.exit(1 if broken else 0)
