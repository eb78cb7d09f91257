#!/usr/bin/env python3
"""Reads what `kivo-ledger export` writes with the programs that it is for, and compares all sums with the book."""
import collections
import csv
import datetime
import decimal
import io
import json
import os
import pathlib
import random
import re
import sqlite3
import subprocess
import sys
import tempfile
import unicodedata
import unittest

SOURCE = pathlib.Path(os.environ["KIVO_SOURCE"])
UNPACKED = SOURCE / "build/unpacked"  # packages that scripts/setup unpacks
sys.path.append(str(UNPACKED / "usr/lib/python3/dist-packages"))

from beancount import loader
from ofxparse import OfxParser

LEDGER = pathlib.Path(os.environ["KIVO_BIN"]) / "kivo-ledger"
LARGEST = 2**53  # of what is booked, in minor units

# Names that one of the formats has to escape or to change.
HARD = [
    'Joe\'s "Best" Café', "a;b ; c", "comma, comma", "pipe | bar", "line\nbreak\r\nand\rmore", "tab\tstop",
    "  spaces  inside  and around  ", "بقالة النور", "سوق; \"الخضار\", ١٢", "💳 emoji 🍕", "\x01\x1b[31mred\x7f\u0085",
    "<b>&amp;</b>", "]]>", "\\ back\\slash\\", '"', "\\\"", "=1+1", "+1 Club", "-5 Degrees", "@home", "\t=1", "'=quoted",
    " =1", "＝SUM", "(code) paid", "* starred", "! marked", "; comment", "2026-01-01 open X", "x" * 300, "é" * 33,
    "👩‍👩‍👧" * 12, "[2020-01-01]", "date:2020-01-01", "a: b, date: 2020-01-01", "%s %n $(id)", "C:\\x", "\u2028\u202e\ufffe",
    "include /etc/passwd", "<STMTTRN>", "</OFX>", "#tag ^link", "'", ",", "-", ":", "::", "a::b", ":lead", "trail:",
    "Food:Coffee", "Food:coffee beans", "eating out", "1st", "ßharp", "ǆ", "हिन्दी", "日本", "ﬁnance", "Équipe", "O'Neil & Sons",
    "𐐀stral", "٣ شاي", "a-b", "--", "Other", "\u00a0=1",
    "\u3000+1", "\ufeff=1", "\u200b-1", "\u00ad@x", "\x0b=1", "\x0c=1", "\u2028'\u200b=1", "\u061c=1",
    "Transfers", "İstanbul", "no\u00a0break", "한국 A", "Ꭰ Ა", "Ͱ ԥ",
]


def unpacked(environment):
    """`environment` in which the programs of unpacked packages are found, with their libraries and modules."""
    folders = [str(folder) for folder in UNPACKED.glob("usr/lib/*-linux-gnu*")]
    return environment | {"PATH": f"{environment['PATH']}:{UNPACKED}/usr/bin", "LD_LIBRARY_PATH": ":".join(folders),
                          "PYTHONPATH": str(UNPACKED / "usr/lib/python3/dist-packages")}


class Book:
    """A book in private folders."""

    def __init__(self):
        self._folder = tempfile.TemporaryDirectory(prefix="kivo-export-")
        self.folder = pathlib.Path(self._folder.name)
        self.environment = {"PATH": "/usr/bin:/bin", "HOME": str(self.folder), "LC_ALL": "C.UTF-8", "TZ": "UTC",
                            "XDG_RUNTIME_DIR": str(self.folder)}
        self.environment |= {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
        self.run("list")
        self.file = self.folder / ".local/share/app.kivo.ledger/ledger.sqlite3"

    def close(self):
        self._folder.cleanup()

    def add(self, entries):
        """Adds (date, kind, minor units, currency, description, category, account, reference, state)."""
        with sqlite3.connect(self.file) as book:
            first = book.execute("SELECT count(*) FROM transactions").fetchone()[0]
            book.executemany(
                "INSERT INTO transactions (user, key, date, kind, minor_units, currency, description, category, payee,"
                " folded_payee, account, reference, state) VALUES ('u', ?, ?, ?, ?, ?, ?, ?, '', '', ?, ?, ?)",
                [(f"KEY-{number}", *entry) for number, entry in enumerate(entries, start=first)])
        book.close()

    def run(self, *arguments, status=0):
        result = subprocess.run([LEDGER, *arguments], env=self.environment, capture_output=True, check=False, timeout=120)
        assert result.returncode == status, (result.returncode, result.stderr)
        return result.stdout.decode() if status == 0 else result.stderr.decode()

    def listed(self, *options):
        return json.loads(self.run("list", "--json", *options))

    def export(self, form, *options):
        """The path of an export."""
        path = self.folder / f"export.{'ofx' if form == 'ofx' else form}"
        self.run("export", "--format", form, "--output", str(path), *options)
        return path


def hard_entries():
    kinds, currencies = ("expense", "income", "transfer"), ("EGP", "JPY", "KWD", "CLF")
    days = ("2026-01-01", "2026-12-31", "2024-02-29", "1999-12-31", "2026-11-21")
    for number, name in enumerate(HARD):
        yield (days[number % 5], kinds[number % 3], 1 + number * 1009, currencies[number % 4], name,
               HARD[-1 - number], ("", "4821", "77", "*9 (x)")[number // 2 % 4], ("", f"REF{number}", name)[number // 3 % 3],
               "booked")
    for currency in currencies:
        yield ("2026-12-31", "expense", LARGEST, currency, "Largest", "Large", "1", "", "booked")
        yield ("2026-12-31", "income", LARGEST, currency, "Largest", "Large", "1", "", "booked")
        yield ("2026-12-31", "expense", 1, currency, "Smallest", "Small", "1", "", "booked")
    yield ("2026-11-21", "expense", 999, "EGP", "In review", "Review", "", "", "review")


def signed(entry):
    amount = decimal.Decimal(entry["amount"])
    return amount if entry["kind"] == "income" else -amount


def sums(pairs):
    total = collections.defaultdict(decimal.Decimal)
    for key, amount in pairs:
        total[key] += amount
    return dict(total)


def one_line(text):
    """As the exports write names: a run of blanks and control characters is a space."""
    return re.sub("[\\s\x00-\x1f\x7f-\x9f\ufffe\uffff]+", " ", text).strip()


def begins_formula(text):
    """Whether its first character that is visible and no apostrophe begins a formula."""
    visible = [one for one in text if one != "'" and unicodedata.category(one) not in ("Zs", "Zl", "Zp", "Cc", "Cf")]
    return bool(visible) and visible[0] in "=+-@＝＋－＠"


class Export(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        decimal.getcontext().prec = 60
        cls.book = Book()
        cls.addClassCleanup(cls.book.close)
        cls.book.add(hard_entries())
        cls.listed = cls.book.listed()
        cls.oldest_first = cls.listed[::-1]

    def tool(self, *command, status=0, **options):
        result = subprocess.run(command, env=unpacked(self.book.environment), capture_output=True, check=False, text=True,
                                timeout=120, **options)
        self.assertEqual(result.returncode, status, result.stderr + result.stdout)
        return result.stdout

    def test_csv_has_every_field_as_it_is(self):
        text = self.book.export("csv").read_bytes().decode()
        rows = list(csv.reader(io.StringIO(text, newline=""), strict=True))
        names = ["date", "kind", "amount", "currency", "description", "category", "account", "reference", "id"]
        self.assertEqual(rows[0], names)
        plain = [[field[1:] if field.startswith("'") and begins_formula(field) else field for field in row]
                 for row in rows[1:]]
        self.assertEqual(plain, [[entry[name] for name in names] for entry in self.oldest_first])

    def test_csv_gives_a_spreadsheet_no_formula(self):
        rows = csv.reader(io.StringIO(self.book.export("csv").read_bytes().decode(), newline=""))
        begins = [field for row in rows for field in row if not field.startswith("'") and begins_formula(field)]
        self.assertEqual(begins, [])

    def test_hledger_reads_it_and_has_the_sums_of_the_book(self):
        journal = self.book.export("hledger")
        self.tool("hledger", "-f", journal, "check", "--strict")
        printed = json.loads(self.tool("hledger", "-f", journal, "print", "-O", "json"), parse_float=decimal.Decimal)
        self.assertEqual([one["tdate"] for one in printed], [entry["date"] for entry in self.oldest_first])
        self.assertEqual([one["tcode"] for one in printed], [entry["id"] for entry in self.oldest_first])
        self.assertEqual([one["tdescription"] for one in printed],
                         [one_line(entry["description"]).replace(";", ",").replace("|", "/") for entry in self.oldest_first])
        own, other = [], []
        for one, entry in zip(printed, self.oldest_first):
            tags = dict(one["ttags"])
            for posting in one["tpostings"]:
                self.assertIsNone(posting["pdate"])
                [amount] = posting["pamount"]
                quantity = decimal.Decimal(amount["aquantity"]["decimalMantissa"]).scaleb(-amount["aquantity"]["decimalPlaces"])
                account = posting["paccount"]
                if account.startswith("Assets:Bank"):
                    own.append(((account, amount["acommodity"]), quantity))
                else:
                    category = tags.get("category", account.partition(":")[2])
                    other.append(((account.partition(":")[0], category, amount["acommodity"]), quantity))
            self.assertRegex(tags["kivo-id"], rf"^{entry['id']}-[0-9a-f]{{16}}$")
        self.compare(own, other, lambda text: one_line(text.replace(",", " ")),
                     lambda text: one_line(text).replace(";", ",").replace("|", "/"))

    def test_converted_sums_pass_the_checks_of_hledger_and_beancount(self):
        book = Book()
        self.addCleanup(book.close)
        book.add(("2026-11-21", kind, 97_000, "EGP", "Abroad", "Fun", "4821", "", "booked")
                 for kind in ("expense", "income", "transfer"))
        with sqlite3.connect(book.file) as file:
            file.execute("UPDATE transactions SET original = 2000, original_currency = 'USD'")
        file.close()
        journal = book.export("hledger")
        self.tool("hledger", "-f", journal, "check", "--strict")
        spent = self.tool("hledger", "-f", journal, "balance", "-N", "Expenses")
        self.assertEqual(spent.split(), ["20.00", "USD", "Expenses:Fun"])
        earned = self.tool("hledger", "-f", journal, "balance", "-N", "--cost", "Income")
        self.assertEqual(earned.split(), ["-970.00", "EGP", "Income:Fun"])
        self.assertEqual(self.tool("bean-check", book.export("beancount")), "")

    def year_with_balances(self, seed):
        """A book of three accounts whose messages state true balances, and the balances at its end. Some payments came
        without a message, of some days the messages are out of order, and half of the messages state a balance."""
        chance = random.Random(seed)
        book, balances, entries = Book(), {"1111": 900_000, "2222": 50_000, "3333": 7_000_000}, []
        self.addCleanup(book.close)
        for day in range(365):
            date = (datetime.date(2026, 1, 1) + datetime.timedelta(day)).isoformat()
            today = []
            for _ in range(chance.randrange(4)):
                account, sum_of = chance.choice(list(balances)), chance.randrange(1, 40_000)
                kind = chance.choice(["expense", "expense", "income"])
                balances[account] += sum_of if kind == "income" else -sum_of
                if chance.random() < 0.02 and day < 300:
                    continue  # unexplained, and later balances follow
                stated = balances[account] if chance.random() < 0.5 else None
                today.append(((date, kind, sum_of, "EGP", "Somebody", "Some", account, "", "booked"), stated))
            if chance.random() < 0.2:
                chance.shuffle(today)
            entries += today
        book.add(entry for entry, _ in entries)
        with sqlite3.connect(book.file) as file:
            file.execute("UPDATE transactions SET incoming = kind = 'income'")
            for identity, (_, stated) in enumerate(entries, start=1):
                if stated is not None:
                    file.execute("UPDATE transactions SET balance = ?, balance_currency = 'EGP' WHERE id = ?", (stated, identity))
        file.close()
        return book, balances

    def test_balances_of_a_random_year_pass_the_checks_and_end_as_they_did(self):
        asserted = 0
        for seed in range(5):
            book, balances = self.year_with_balances(seed)
            book.run("accounts", "name", "1111", "Salary")
            journal = book.export("hledger", "--balances")
            self.tool("hledger", "-f", journal, "check", "--strict")
            shown = self.tool("hledger", "-f", journal, "balance", "-N", "--flat", "Assets")
            found = {name: units for units, name in re.findall(r"(-?[0-9.]+) EGP  Assets:Bank:(\w+)", shown)}
            expected = {"Salary" if name == "1111" else name: f"{units / 100:.2f}" for name, units in balances.items()}
            self.assertEqual(found, expected, f"seed {seed}")
            self.assertEqual(self.tool("bean-check", book.export("beancount", "--balances")), "")
            asserted += journal.read_text().count(" EGP = ")
            with open(book.export("ofx", "--balances"), "rb") as file:
                read = OfxParser.parse(file)
            self.assertEqual({one.account_id: f"{one.statement.balance:.2f}" for one in read.accounts}, expected)
        self.assertGreater(asserted, 400)

    def test_a_payment_that_is_taken_out_breaks_an_asserted_balance(self):
        book, _ = self.year_with_balances(7)
        for form, check in (("hledger", ("hledger", "-f", "{}", "check")), ("beancount", ("bean-check", "{}"))):
            file = book.export(form, "--balances")
            text = file.read_text()
            one = re.search(r"\n\n2026-06-.*\n(?:.*\n)+?.*Expenses.*  (\d+\.\d\d) EGP", text)
            broken = text[:one.start()] + text[one.start():].replace(one.group(1), "0.01", 2)
            file.write_text(broken)
            self.tool(*(part.format(file) for part in check), status=1)

    def test_balances_are_refused_where_not_all_of_an_account_is_exported(self):
        self.assertEqual(self.book.run("export", "--format", "csv", "--balances", status=64),
                         "kivo-ledger: csv has no place for --balances\n")
        self.assertEqual(self.book.run("export", "--format", "hledger", "--balances", "--category", "Food", status=64),
                         "kivo-ledger: --balances needs every transaction of an account: leave out --category\n")

    def test_accounts_have_their_names_but_in_csv(self):
        book = Book()
        self.addCleanup(book.close)
        book.add(("2026-11-21", "expense", 100, "EGP", "A", "B", account, "", "booked") for account in ("11", "22", "33"))
        for account, name in (("11", "Salary"), ("22", "Savings"), ("33", "savings")):
            book.run("accounts", "name", account, name)
        own = re.findall(r"account (Assets.*)", book.export("hledger").read_text())
        self.assertEqual(own, ["Assets:Bank:Salary", "Assets:Bank:Savings 22", "Assets:Bank:savings 33"])
        self.assertEqual(re.findall(r"open (Assets\S*)", book.export("beancount").read_text()),
                         ["Assets:Bank:Salary", "Assets:Bank:Savings-22", "Assets:Bank:Savings-33"])
        self.assertEqual(re.findall(r"<ACCTID>([^<]*)", book.export("ofx").read_text()), ["Salary", "Savings 22", "savings 33"])
        rows = csv.DictReader(io.StringIO(book.export("csv").read_text()))
        self.assertEqual([row["account"] for row in rows], ["11", "22", "33"])

    def compare(self, own, other, category_name, account_name):
        """Compares postings with the book: by own account, and by kind and category."""
        roots = {"expense": "Expenses", "income": "Income", "transfer": "Equity"}
        accounts = lambda entry: ":".join(["Assets:Bank"] + [name for name in [account_name(entry["account"])] if name])
        self.assertEqual(sums(own), sums(((accounts(entry), entry["currency"]), signed(entry)) for entry in self.listed))
        plain = [((root, category_name(category), currency), amount) for (root, category, currency), amount in other]
        self.assertEqual(sums(plain), sums(((roots[entry["kind"]], category_name(entry["category"]), entry["currency"]),
                                            -signed(entry)) for entry in self.listed))

    def test_beancount_accepts_it_and_has_the_sums_of_the_book(self):
        file = self.book.export("beancount")
        self.assertEqual(self.tool("bean-check", file), "")
        entries, errors, _ = loader.load_file(str(file))
        self.assertEqual(errors, [])
        transactions = [one for one in entries if type(one).__name__ == "Transaction"]
        by_id = {one.meta["kivo-id"].partition("-")[0]: one for one in transactions}
        self.assertEqual(len(by_id), len(self.listed))
        own, other = [], []
        for entry in self.listed:
            one = by_id[entry["id"]]
            self.assertEqual((str(one.date), one.payee, one.narration, one.meta.get("reference", "")),
                             (entry["date"], one_line(entry["description"]), "", one_line(entry["reference"])))
            to_other, to_own = one.postings
            root, _, category = to_other.account.partition(":")
            other.append(((root, one.meta.get("category", category), to_other.units.currency), to_other.units.number))
            own.append(((to_own.account, to_own.units.currency), to_own.units.number))
        self.compare(own, other, one_line, lambda text: re.sub("[^0-9A-Za-z]+", "-", text).strip("-"))

    def test_bean_query_has_the_sums_of_the_book(self):
        query = "SELECT account, currency, sum(number) AS total WHERE account ~ 'Expenses' GROUP BY account, currency"
        file = self.book.export("beancount", "--category", "Food:Coffee")
        rows = list(csv.DictReader(io.StringIO(self.tool("bean-query", "-f", "csv", file, query))))
        expected = sums((entry["currency"], decimal.Decimal(entry["amount"]))
                        for entry in self.book.listed("--category", "Food:Coffee") if entry["kind"] == "expense")
        self.assertGreater(len(expected), 0)
        self.assertEqual({row["currency"].strip(): decimal.Decimal(row["total"]) for row in rows}, expected)
        self.assertEqual({row["account"].strip() for row in rows}, {"Expenses:Food:Coffee"})

    def test_an_ofx_reader_has_the_sums_of_the_book(self):
        with open(self.book.export("ofx"), "rb") as file:
            read = OfxParser.parse(file)
        found, by_id = [], {}
        for account in read.accounts:
            currency = account.statement.currency.upper()
            self.assertEqual(account.routing_number, "KIVO-" + currency)
            digits = "" if account.account_id == "unknown" else account.account_id
            for one in account.statement.transactions:
                found.append(((digits, currency), one.amount))
                by_id[one.id.partition("-")[0]] = one
        self.assertEqual(sums(found), sums(((one_line(entry["account"]), entry["currency"]), signed(entry)) for entry in self.listed))
        self.assertEqual(len(by_id), len(self.listed))
        types = {"expense": "debit", "income": "credit", "transfer": "xfer"}
        for entry in self.listed:
            one, description = by_id[entry["id"]], one_line(entry["description"])
            self.assertEqual((str(one.date.date()), one.amount, one.type, one.payee),
                             (entry["date"], signed(entry), types[entry["kind"]], description[:32].strip()))
            memo = one_line(entry["category"])
            self.assertEqual(one.memo, (f"{description} - {memo}" if len(description) > 32 else memo)[:255].strip())

    def test_libofx_validates_it_and_finds_every_transaction(self):
        file = self.book.export("ofx")
        for zone in ("UTC", "Africa/Cairo", "America/Los_Angeles", "Pacific/Auckland"):
            result = subprocess.run(["ofxdump", file], env=self.book.environment | {"TZ": zone}, capture_output=True,
                                    text=True, check=True, timeout=60)
            ids = re.findall("Financial institution's ID for this transaction: (\\S+)", result.stdout)
            self.assertEqual(sorted(int(one.partition("-")[0]) for one in ids), sorted(int(entry["id"]) for entry in self.listed))
            days = re.findall(r"Date posted: (\w+ \w+ +\d+) \S+ (\d+)", result.stdout)
            self.assertEqual(len(days), len(self.listed))
            # It parses bytes, so that it takes those of UTF-8 for errors, and says that it ignores them.
            errors = [line for line in result.stderr.splitlines() if "LibOFX ERROR" in line]
            self.assertEqual(errors, [])

    def test_the_date_of_libofx_is_the_day_of_the_book(self):
        book = Book()
        self.addCleanup(book.close)
        book.add([("2026-12-31", "expense", 1, "EGP", "A", "B", "", "", "booked")])
        file = book.export("ofx")
        for zone in ("UTC", "Africa/Cairo", "America/Los_Angeles", "Pacific/Auckland"):
            shown = self.tool("env", f"TZ={zone}", "ofxdump", file)
            self.assertRegex(shown, r"Date posted: Thu Dec 31 \d\d:\d\d:\d\d 2026")

    def test_ids_stay_when_a_month_is_exported_alone_and_when_entries_are_corrected(self):
        book = Book()
        self.addCleanup(book.close)
        book.add([("2026-10-31", "expense", 1, "EGP", "A", "B", "", "", "booked"),
                  ("2026-11-01", "expense", 2, "EGP", "A", "B", "", "", "booked")])

        def ids(form, *options):
            return re.findall(r"\b\d+-[0-9a-f]{16}\b", book.export(form, *options).read_text())

        before = ids("ofx")
        self.assertEqual(len(set(before)), 2)
        self.assertEqual(ids("ofx", "--month", "2026-11"), before[1:])
        book.run("edit", "2", "--date", "2026-12-01", "--amount", "5", "--category", "C", "--description", "D")
        for form in ("ofx", "hledger", "beancount"):
            self.assertEqual(ids(form), before)
            self.assertNotIn("KEY-", book.export(form).read_text())

    def test_the_options_choose_what_list_shows(self):
        for options in (["--month", "2026-12"], ["--from", "2026-01-01", "--to", "2026-11-21"], ["--category", "eating out"],
                        ["--search", "café"], ["--search", "4821"]):
            expected = [entry["id"] for entry in self.book.listed(*options)][::-1]
            self.assertGreater(len(expected), 0)
            rows = csv.DictReader(io.StringIO(self.book.run("export", "--format", "csv", *options), newline=""))
            self.assertEqual([row["id"] for row in rows], expected)

    def test_an_empty_export_is_valid(self):
        none = ("--month", "1970-01")
        self.assertEqual(self.book.export("csv", *none).read_text(),
                         "date,kind,amount,currency,description,category,account,reference,id\n")
        journal = self.book.export("hledger", *none)
        self.tool("hledger", "-f", journal, "check", "--strict")
        self.assertEqual(self.tool("hledger", "-f", journal, "print"), "")
        self.tool("bean-check", self.book.export("beancount", *none))
        ofx = self.book.export("ofx", *none)
        with open(ofx, "rb") as file:
            self.assertEqual(OfxParser.parse(file).accounts, [])
        self.tool("ofxdump", ofx)

    def test_a_file_is_private_and_is_the_same_as_standard_output(self):
        for form in ("csv", "hledger", "beancount", "ofx"):
            path = self.book.export(form)
            self.assertEqual(path.stat().st_mode & 0o777, 0o600)
            self.assertEqual(path.read_bytes().decode(), self.book.run("export", "--format", form))

    def test_a_file_that_cannot_be_written_is_reported(self):
        self.assertEqual(self.book.run("export", "--format", "csv", "--output", "/nowhere/a.csv", status=1),
                         'kivo-ledger: cannot write "/nowhere/a.csv": No such file or directory\n')
        self.assertEqual(self.book.run("export", "--format", "csv", "--output", "/dev/null", status=1),
                         'kivo-ledger: cannot write "/dev/null": it is not a plain file\n')

    def test_an_unknown_format_is_refused_with_the_known_ones(self):
        self.assertEqual(self.book.run("export", "--format", "xls", status=64),
                         'kivo-ledger: invalid --format "xls": it must be csv, hledger, beancount or ofx\n')


if __name__ == "__main__":
    unittest.main()
