#!/usr/bin/env python3
"""Takes pictures of the window's pages at two sizes, light and dark, into build/app/, and the README's.

    KIVO_PROGRAMS=build/release/bin take_pictures.py
"""
import datetime
import os
import pathlib
import random
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parent))
from app_session import Home, Screen, Window  # noqa: E402  pylint: disable=wrong-import-position

TREE = pathlib.Path(__file__).parents[2]
FOUND = TREE / "build/app"
SIZES = ((360, 720), (1280, 800))
SHOPS = (("CITY GROCERY", 900), ("BLUE TAXI", 160), ("MOON CAFE", 180), ("TOWN GAS", 420), ("STAR CINEMA", 300),
         ("SUNNY PHARMACY", 350), ("BOOK CORNER", 260))


def payments():
    """Four months of one person, always the same but for their days."""
    chance = random.Random(4821)
    today = datetime.date.today()
    for back in range(120):
        day = today - datetime.timedelta(days=back)
        for hour in range(chance.randrange(3)):
            shop, most = chance.choice(SHOPS)
            sum_ = chance.randrange(2000, most * 100) / 100
            yield f"{day}T1{hour}:15:00", f"Purchase of EGP {sum_:,.2f} at {shop} on card ending 4821"
    for back in range(4):
        first = (today.replace(day=1) - datetime.timedelta(days=30 * back)).replace(day=1)
        yield f"{first}T09:00:00", f"Your salary of EGP 18,500.00 has been credited to account 7790. Ref S{back}"
    yield f"{today}T09:30:00", "Purchase of USD 20.00 at MOON SHOP on card ending 4821"
    yield f"{today}T08:00:00", "Dear customer, EGP 300.00 is due for your Tulip plan"


def take(window, name, look, size):
    time.sleep(0.7)
    path = FOUND / f"{name}-{look}-{size[0]}.png"
    window.picture(path)
    os.system(f"mogrify -crop {size[0]}x{size[1]}+0+0 +repage {path}")


def pages(window, look, size):
    window.resize(*size)
    take(window, "month", look, size)
    window.go("Payments")
    window.shows("CITY GROCERY, EGP")
    take(window, "payments", look, size)
    window.click("CITY GROCERY, EGP")
    window.field("Category")
    take(window, "payment", look, size)
    window.click("Back")
    window.go("Review")
    take(window, "review", look, size)
    window.click("Add a payment")
    window.field("Payee")
    take(window, "add", look, size)
    window.click("Back")
    window.go("This Month")
    window.click(f"The year {datetime.date.today().year}")
    window.shows("Saved")
    take(window, "year", look, size)
    window.click("Back")


def main():
    FOUND.mkdir(parents=True, exist_ok=True)
    screen = Screen()
    home = Home()
    try:
        home.environment["LC_ALL"] = "en_GB.UTF-8"  # of ICU, which needs no installed locale
        home.import_rows(payments())
        home.ledger("budget", "Groceries", "6000")
        for look in ("light", "dark"):
            home.environment["ADW_DEBUG_COLOR_SCHEME"] = f"prefer-{look}"
            for size in SIZES:
                window = Window(home)
                try:
                    window.shows("Groceries, ")
                    pages(window, look, size)
                finally:
                    window.close()
        picture = FOUND / "month-light-360.png"
        (TREE / "docs/pictures/window.png").write_bytes(picture.read_bytes())
    finally:
        home.remove()
        screen.close()


if __name__ == "__main__":
    main()
