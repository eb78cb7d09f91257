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
    "names": set(),
    "platform": set(),
    "platform/linux": {"platform"},
    "notification_center": {"store", "queue", "extraction", "feedback", "names", "platform", "platform/linux"},
    "sms_watcher": {"store", "queue", "extraction", "feedback", "names", "platform", "platform/linux"},
    "phone": {"sms_watcher", "store", "queue", "extraction", "feedback", "names", "platform", "platform/linux"},
    "money": set(),
    "recognition": {"money", "names"},
    "book": {"money", "names", "platform", "platform/linux"},
    "book_postgresql": {"book", "money", "names", "platform", "platform/linux"},
    # The book is kept in the currency of the shared store, and messages are read by a file of templates.
    "recording": {"recognition", "book", "money", "extraction", "feedback", "store", "platform", "platform/linux"},
    "old_messages": {"platform", "platform/linux"},
    "overview": {"book", "money", "platform", "platform/linux"},
    # The senders that an import offers and a backup holds are those of the watcher, by its patterns.
    "ledger": {"overview", "old_messages", "sms_watcher", "recording", "recognition", "book", "money", "store",
               "extraction", "feedback", "platform", "platform/linux"},
    # Its endpoint and its commands are the ledger's, with a book chosen for each call.
    "server": {"ledger", "overview", "recording", "book_postgresql", "book", "money", "feedback", "store", "platform", "platform/linux"},
    "app": {"overview", "recording", "recognition", "book", "money", "feedback", "store", "platform", "platform/linux"},
    "demo": {"recognition", "money", "names", "store", "platform", "platform/linux"},
}

# Within a room, its folders -> its folders that they may include. None leads in a circle.
FOLDERS = {
    "platform": {
        "concurrency": set(),
        "foundation": {"concurrency"},
        "app_intents": {"concurrency", "foundation"},
        "user_notifications": {"concurrency", "foundation"},
        "widget_kit": {"foundation"},
    },
    "platform/linux": {
        "concurrency": {"foundation"},
        "bus": {"concurrency", "foundation"},
        "foundation": set(),
        "locale": set(),
        "process": {"concurrency"},
        "terminal": {"foundation", "process"},
        "http": {"foundation", "process"},
        "store": {"foundation", "process"},
        "user_notifications": {"bus"},
        "widget_kit": {"bus"},
        "app_intents": {"bus", "concurrency", "foundation", "http", "process", "terminal", "user_notifications",
                        "widget_kit"},
    },
}

# Rooms that may not include the headers of libraries. Every room may include the standard library's
# and the system's.
PLAIN_ROOMS = {"intents", "extraction", "queue", "feedback", "store", "platform", "money", "recognition", "recording"}

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


def folder_of(path, room):
    """The folder of a path within its room; none when it lies beside the folders."""
    parts = path[len(room) + 1:].split("/")
    return parts[0] if len(parts) > 1 else None


def has_circle(folders):
    """Whether a folder can be reached from itself."""
    left = dict(folders)
    while left:
        ends = {folder for folder, arrows in left.items() if not arrows & left.keys()}
        if not ends:
            return True
        left = {folder: arrows for folder, arrows in left.items() if folder not in ends}
    return False


def check_file(root, file, used_exceptions):
    name = file.relative_to(root).as_posix()
    inside = file.relative_to(root / "src").as_posix()
    room = room_of(inside)
    if room is None:
        yield f"{name}: is in no room"
        return
    if not FILE_NAME.fullmatch(file.name):
        yield f"{name}: a file's name is snake_case"
    folders = FOLDERS.get(room)
    if folders is not None and folder_of(inside, room) not in folders:
        yield f"{name}: is in no folder of {room}"
        return
    for include in INCLUDE.findall(file.read_text(encoding="utf-8")):
        room_or_folder = room
        if include.startswith("<"):
            what, allowed = include, bool(SYSTEM_HEADER.fullmatch(include)) or room not in PLAIN_ROOMS
        else:
            what = room_of(include.strip('"'))
            if what is None:
                yield f"{name}: includes {include}, which is in no room"
                continue
            allowed = what == room or what in ARROWS[room]
            if what == room and folders is not None:
                own, other = folder_of(inside, room), folder_of(include.strip('"'), room)
                allowed = own == other or other in folders[own]
                room_or_folder = f"{room}/{own}"
        if allowed:
            continue
        exception = next((rule for rule in EXCEPTIONS
                          if name.startswith(rule[0]) and rule[1] == what), None)
        if exception is None:
            yield f"{name}: {room_or_folder} may not include {include}"
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
    for room, folders in FOLDERS.items():
        if has_circle(folders):
            yield f"the folders of {room} have a circle"
    for place, what in sorted(EXCEPTIONS - used_exceptions):
        yield f"{place}: no longer needs its exception for {what}"


if __name__ == "__main__":
    broken = list(check(pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else ".").resolve()))
    print("\n".join(broken) if broken else "every include and every link follows the arrows")
    sys.exit(1 if broken else 0)
