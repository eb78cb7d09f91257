#!/usr/bin/python3 -B
"""Takes the pictures of a desktop for the documents: a notification on GNOME and on Phosh, the report that opens from
it, the widget and the demo in a console. Leaves them in the folder that is kept."""
import contextlib
import datetime
import http.client
import json
import socket
import time
import uuid

import gi
from desktop_session import KEPT, MESSAGE, REPORT, Kivo, Session, end_of, run, wait_for
from gnome_shell import GnomeShell
from phosh import Phosh

gi.require_version("GdkPixbuf", "2.0")
from gi.repository import GdkPixbuf  # noqa: E402

PAID = "Your card ending 4821 was charged EGP {} at {}."
TODAY = ["Paid EGP 89.50 at Uber", "بنك نيلو: تم خصم مبلغ ٣٢٠٫٠٠ ج.م من بطاقتك لدى مطعم أبو طارق"]
DAYS_BEFORE = {  # how many days ago: what the bank wrote
    1: [PAID.format("64.00", "Cilantro Cafe"), PAID.format("41.00", "Uber")],
    2: [PAID.format("612.35", "Carrefour City"), "Your card ending 4821 was charged USD 9.99 at Spotify."],
    4: [PAID.format("275.00", "Seif Pharmacy"), PAID.format("58.50", "Uber")],
    5: [PAID.format("190.00", "Zooba Restaurant")],
    7: [PAID.format("430.75", "Spinneys Market"), PAID.format("75.00", "Cilantro Cafe")],
    9: [PAID.format("420.00", "Delta Telecom")],
    11: [PAID.format("66.25", "Uber"), PAID.format("349.00", "Carrefour City")],
    13: [PAID.format("540.00", "Total Petrol Station")],
    15: [PAID.format("650.00", "Nile Furniture")],
    17: [PAID.format("82.00", "Cilantro Cafe"), PAID.format("505.40", "Carrefour City")],
    20: [PAID.format("95.00", "Vox Cinema")],
    **{days: [PAID.format(f"{180 + days * 67 % 400}.50", payee)] for days, payee in zip(
        range(22, 330, 2), ("Carrefour City", "Uber", "Delta Telecom", "Zooba Restaurant", "Spinneys Market") * 31)},
    **{days: ["Your salary of EGP 18,500.00 from Horizon Company was credited to your account."]
       for days in range(31, 330, 30)}
}
MARGIN = 24


class LedgerConnection(http.client.HTTPConnection):
    """To the ledger's socket."""

    def __init__(self, path):
        super().__init__("localhost")
        self._path = path

    def connect(self):
        self.sock = socket.socket(socket.AF_UNIX)
        self.sock.connect(str(self._path))


def fill(session):
    """Books what came before today, and has the store's running total say the same."""
    for days, texts in DAYS_BEFORE.items():
        day = datetime.date.today() - datetime.timedelta(days)
        for text in texts:
            connection = LedgerConnection(session.runtime / "kivo/ledger.sock")
            connection.request("POST", "/functions/v1/sms-extraction", json.dumps({
                "sms_text": text, "user_id": "local", "expense_date": str(day), "idempotency_key": str(uuid.uuid4())}))
            assert connection.getresponse().status == 200
    booked = json.loads(run("kivo-ledger", "list", "--json"))
    spent = sum(float(entry["amount"]) for entry in booked if entry["kind"] == "expense")
    run("kivo-phone", "store", "set", "monthlyTotal", f"{spent:.2f}")


def settled(photograph):
    """A picture of the screen, once nothing has moved on it for two seconds."""
    file, seen = KEPT / "screen.png", [None, None, None]

    def is_still():
        photograph(file)
        seen[:] = [*seen[1:], GdkPixbuf.Pixbuf.new_from_file(str(file))]
        time.sleep(1)
        return all(seen) and len({screen.get_pixels() for screen in seen}) == 1

    wait_for(is_still, "nothing moves on the screen")
    file.unlink()
    return seen[-1]


def save(name, screen, place):
    """The screen at a place, with a margin."""
    left, top = (max(0, place[side] - MARGIN) for side in (0, 1))
    right, bottom = (min(limit, place[side] + place[side + 2] + MARGIN)
                     for side, limit in ((0, screen.get_width()), (1, screen.get_height())))
    screen.new_subpixbuf(left, top, right - left, bottom - top).savev(str(KEPT / f"{name}.png"), "png", [], [])


@contextlib.contextmanager
def session(desktop):
    """With a book of the last year."""
    with contextlib.closing(Session(XDG_CURRENT_DESKTOP=desktop)) as begun:
        run("gsettings", "set", "org.gnome.desktop.interface", "cursor-blink", "false")
        kivo = Kivo(begun)
        fill(begun)
        run("kivo-phone", "notifications", "denied")
        for text in TODAY:
            kivo.receive(text)
        run("kivo-phone", "notifications", "authorized")
        yield begun, kivo


def save_console(begun, shell, name, command, size):
    """A console of a size in pixels."""
    console = begun.start("kgx", "--command", command)
    wait_for(shell.types_into_a_window, "the console is open")
    shell.resize_window(*size)
    save(name, settled(shell.photograph), shell.window_place())
    end_of(console)
    wait_for(lambda: not shell.windows(), "the console is closed")


def on_gnome():
    with session("GNOME") as (begun, kivo):
        shell = GnomeShell(begun)
        kivo.receive(MESSAGE)
        banner = wait_for(shell.banner, "the notification is shown")
        left, top, width, height = banner["place"]
        save("notification", settled(shell.photograph), (left, 0, width, top + height))
        shell.click(banner["place"])
        wait_for(lambda: REPORT in shell.windows(), "the report is open")
        save("report-window", settled(shell.photograph), shell.window_place())
        shell.close_window()
        save_console(begun, shell, "widget", "kivo-phone widget --watch", (400, 300))
        (begun.home / "run").symlink_to("/usr/bin/kivo-demo")  # as ./run does when everything is built
        call = f'./run "{MESSAGE}"'
        save_console(begun, shell, "run", f"sh -c 'echo \"$ $0\"; eval \"$0\"; exec sleep 60' '{call}'", (760, 420))


def on_phosh():
    with session("Phosh:GNOME") as (begun, kivo):
        phone = Phosh(begun)
        kivo.receive(MESSAGE)
        wait_for(lambda: phone.controls(program="phosh", name="now"), "the notification is shown")
        save("notification-phone", settled(phone.photograph), (0, 0, 360, 720))


on_gnome()
on_phosh()
