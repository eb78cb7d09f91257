"""A book of invented payments in private folders, and its report by the real kivo-ledger."""
import datetime
import os
import pathlib
import random
import sqlite3
import subprocess

PAYEES = [  # description, category, the smallest and the largest sum, and how often in a hundred days
    ("Carrefour City", "Groceries", 120, 900, 16),
    ("Sunny Market", "Groceries", 20, 350, 14),
    ("مطعم أبو طارق", "Dining", 60, 420, 12),
    ("Costa Coffee", "Dining", 45, 140, 14),
    ("Uber", "Transport", 30, 160, 28),
    ("Cairo Metro", "Transport", 8, 20, 34),
    ("صيدلية العزبي", "Health", 35, 260, 9),
    ("Diwan Bookstore", "Shopping", 90, 600, 9),
]
MONTHLY = [  # day, kind, description, category, the smallest and the largest sum
    (1, "expense", "Green Homes", "Rent", 6500, 6500),
    (2, "transfer", "Own savings", "Transfer", 1500, 1500),
    (5, "expense", "Netflix", "Entertainment", 120, 120),
    (12, "expense", "Vodafone Egypt", "Bills", 210, 320),
    (20, "income", "شركة الأفق", "Salary", 18500, 18900),
]
HOSTILE = "<script>document.title='hacked'</script> \"quoted\" & 'single' </style>\x1b\u202e"


class InventedBook:
    """In `folder`, which has to be empty; `programs` has kivo-ledger. Empty until something is added."""

    def __init__(self, folder, programs, locale="en_US.UTF-8"):
        self.folder = pathlib.Path(folder)
        self._program = pathlib.Path(programs) / "kivo-ledger"
        self._environment = {"HOME": str(folder), "XDG_DATA_HOME": f"{folder}/data", "XDG_RUNTIME_DIR": f"{folder}/run",
                             "PATH": os.environ["PATH"], "TZ": "UTC", "LANG": locale}
        self._keys = 0
        self.call("list")  # makes the file
        self._book = sqlite3.connect(self.folder / "data/app.kivo.ledger/ledger.sqlite3", isolation_level=None)

    def call(self, *arguments):
        return subprocess.run([self._program, *arguments], env=self._environment, check=True, capture_output=True,
                              text=True, timeout=60).stdout

    def add(self, date, kind, minor_units, description, category, currency="EGP", state="booked", like=None,
            text=None):
        self._keys += 1
        self._book.execute(
            "INSERT INTO transactions (user, key, date, kind, minor_units, currency, description, category, payee,"
            " folded_payee, account, reference, state, possible_duplicate_of, text)"
            " VALUES ('local', ?, ?, ?, ?, ?, ?, ?, ?, '', '', '', ?, ?, ?)",
            (f"KEY-{self._keys}", str(date), kind, minor_units, currency, description, category, description, state, like,
             text))

    def add_year(self):
        """What somebody in Cairo may pay from December 2025 to 24 November 2026; always the same."""
        chance = random.Random(16)
        day, end = datetime.date(2025, 12, 1), datetime.date(2026, 11, 24)
        self._book.execute("BEGIN")
        while day <= end:
            for description, category, least, most, often in PAYEES:
                if chance.randrange(100) < often:
                    self.add(day, "expense", chance.randint(least * 100, most * 100), description, category)
            for of_month, kind, description, category, least, most in MONTHLY:
                if day.day == of_month:
                    self.add(day, kind, chance.randint(least, most) * 100, description, category)
            day += datetime.timedelta(days=1)
        self.add("2026-11-10", "expense", 12500, "Dubai Duty Free", "Shopping", "AED")
        self.add("2026-11-23", "expense", 4999, "Steam", "Entertainment", "USD", "review",
                 text="Your card ending 4821 was charged USD 49.99 at Steam on 23-11-2026.")
        self.add("2026-11-19", "expense", None, "Nile Cinema", "Entertainment", "", "review",
                 text="Purchase EGP 150.00 EGP 350.00 at Nile Cinema")
        self._book.execute("COMMIT")

    def report(self, name="report.html", month="2026-11"):
        """The path of a new report."""
        path = self.folder / name
        self.call("report", "--no-open", "--month", month, "--output", path)
        return path

    def year_report(self, name="year.html", year="2026"):
        """The path of a new report of a year."""
        path = self.folder / name
        self.call("report", "--no-open", "--year", year, "--output", path)
        return path
