#!/usr/bin/env python3
"""Imports invented years whose truth is known, and compares what kivo-ledger says of accounts, own transfers, categories
and budgets with it."""
import collections
import csv
import datetime
import decimal
import json
import os
import pathlib
import random
import subprocess
import tempfile
import unittest

LEDGER = pathlib.Path(os.environ["KIVO_BIN"]) / "kivo-ledger"

SHOPS = {"Carrefour City": "Groceries", "Starbucks": "Dining", "Uber": "Transport", "Netflix": "Subscriptions"}


class Year:
    """A year of 2025 on the accounts 4821 and 7790: its messages, and what is true of it."""

    def __init__(self, seed):
        self.chance = random.Random(seed)
        self.balances = {"4821": 20_000_00, "7790": 300_000_00}
        self.messages = []  # (day, text)
        self.missing = {"4821": [], "7790": []}  # (day, minor units) of messages that did not come
        self.spent = collections.Counter()  # by month and category
        self.refunded = collections.Counter()
        self.received = collections.Counter()  # by month
        self.transfers = []  # references
        for number in range(365):
            self.add_day(datetime.date(2025, 1, 1) + datetime.timedelta(number))

    def add_day(self, day):
        if day.day == 1:
            self.receive(day, 25_000_00)
        for _ in range(self.chance.randrange(3)):
            self.buy(day, self.chance.choice(list(SHOPS)), self.chance.randrange(10_00, 900_00))
        if self.chance.random() < 0.03:
            self.refund(day, self.chance.randrange(5_00, 10_00))
        if day.day == 15:
            self.transfer(day, self.chance.randrange(1_000_00, 3_000_00))

    def move(self, account, units):
        self.balances[account] += units
        return f"Available balance EGP {self.balances[account] / 100:,.2f}"

    def buy(self, day, shop, units):
        balance = self.move("4821", -units)
        if self.chance.random() < 0.02 and 10 < day.timetuple().tm_yday < 350:
            self.missing["4821"].append((day, units))
            return
        self.spent[day.month, SHOPS[shop]] += units
        self.messages.append((day, f"Your card ending 4821 was used for EGP {units / 100:,.2f} at {shop}. {balance}"))

    def receive(self, day, units):
        balance = self.move("7790", units)
        self.received[day.month] += units
        self.messages.append((day, f"EGP {units / 100:,.2f} was credited to your account 7790: salary of Acme Works. {balance}"))

    def refund(self, day, units):
        balance = self.move("4821", units)
        self.refunded[day.month, "Groceries"] += units
        self.messages.append((day, f"Refund of EGP {units / 100:,.2f} from Carrefour City has been credited to your card ending 4821. {balance}"))

    def transfer(self, day, units):
        reference = f"77{self.chance.randrange(10**10):010}"
        self.transfers.append(reference)
        out, into = self.move("7790", -units), self.move("4821", units)
        later = day + datetime.timedelta(self.chance.randrange(2))
        self.messages.append((day, f"EGP {units / 100:,.2f} debited from your account 7790. Ref No {reference}. {out}"))
        self.messages.append((later, f"EGP {units / 100:,.2f} credited to your account 4821. Ref No {reference}. {into}"))

    def write(self, path):
        with open(path, "w", newline="") as file:
            rows = csv.writer(file)
            rows.writerow(["date", "sender", "text"])
            # Of one day in the order in which they came.
            for number, (day, text) in enumerate(sorted(self.messages, key=lambda one: one[0])):
                rows.writerow([f"{day}T08:{number // 60 % 60:02}:{number % 60:02}Z", "BANK", text])


class AYear(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="kivo-year-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.environment = {"PATH": "/usr/bin:/bin", "HOME": folder.name, "LC_ALL": "C.UTF-8", "TZ": "UTC",
                            "XDG_RUNTIME_DIR": folder.name}
        self.environment |= {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}

    def run_ledger(self, *arguments):
        result = subprocess.run([LEDGER, *arguments], env=self.environment, capture_output=True, text=True, check=False,
                                timeout=120)
        self.assertEqual(result.returncode, 0, result.stderr + result.stdout)
        return result.stdout

    def json(self, *arguments):
        return json.loads(self.run_ledger(*arguments, "--json"), parse_float=decimal.Decimal)

    def imported(self, seed):
        year = Year(seed)
        year.write(self.folder / "year.csv")
        counts = self.json("import", str(self.folder / "year.csv"), "--sender", "BANK")
        self.assertEqual(counts["booked"], len(year.messages), counts)
        return year

    def test_shows_what_is_missing_and_nothing_else(self):
        year = self.imported(1)
        self.assertGreater(len(year.missing["4821"]), 2)
        accounts = {one["account"]: one for one in self.json("accounts")}
        for account, units in year.balances.items():
            self.assertEqual(accounts[account]["balance"], f"{units / 100:.2f}")
            gaps = accounts[account]["gaps"]
            self.assertEqual(sum(decimal.Decimal(gap["amount"]) for gap in gaps) * 100,
                             sum(missing for _, missing in year.missing[account]))
            for day, _ in year.missing[account]:
                self.assertTrue(any(gap["from"] <= str(day) <= gap["to"] for gap in gaps), f"{day} {gaps}")
            # A day before or after, since messages of adjacent days may have changed places.
            near = datetime.timedelta(1)
            for gap in gaps:
                self.assertTrue(any(gap["from"] <= str(day + near) and str(day - near) <= gap["to"]
                                    for day, _ in year.missing[account]), gap)

    def test_pairs_the_halves_of_each_transfer_and_no_others(self):
        year = self.imported(2)
        entries = {one["id"]: one for one in self.json("list")}
        halves = [one for one in entries.values() if "counterpart" in one]
        self.assertEqual(sorted(one["reference"] for one in halves), sorted(year.transfers * 2))
        for half in halves:
            other = entries[half["counterpart"]]
            self.assertEqual((other["counterpart"], other["reference"], other["amount"]),
                             (half["id"], half["reference"], half["amount"]))
            self.assertNotEqual(other["account"], half["account"])

    def test_has_the_figures_of_each_month_and_category(self):
        year = self.imported(3)
        whole = self.json("summary", "--year", "2025")
        for month in range(1, 13):
            summary = self.json("summary", "--month", f"2025-{month:02}")
            spent = {one["category"]: decimal.Decimal(one["expense"]) * 100 for one in summary["categories"]}
            true = {category: year.spent[month, category] - year.refunded[month, category] for category in SHOPS.values()}
            self.assertEqual({category: spent.get(category, 0) for category in true}, true)
            self.assertEqual(decimal.Decimal(summary["expense"]) * 100, sum(true.values()))
            self.assertEqual(decimal.Decimal(summary["refunded"]) * 100, year.refunded[month, "Groceries"])
            self.assertEqual(decimal.Decimal(summary["income"]) * 100, year.received[month])
            self.assertEqual(whole["months"][month - 1]["expense"], summary["expense"])

    def test_has_what_is_spent_of_each_budget(self):
        year = self.imported(4)
        for category in SHOPS.values():
            self.run_ledger("budget", category, "5000")
        self.run_ledger("budget", "Dining", "100", "--month", "2025-07")
        for month in range(1, 13):
            budgets = {one["category"]: one for one in self.json("budget", "--month", f"2025-{month:02}")}
            self.assertEqual(set(budgets), set(SHOPS.values()))
            for category, budget in budgets.items():
                true = year.spent[month, category] - year.refunded[month, category]
                self.assertEqual(decimal.Decimal(budget["spent"]) * 100, true, f"{category} {month}")
                self.assertEqual(budget["amount"], "100.00" if (category, month) == ("Dining", 7) else "5000.00")

    def test_is_the_same_after_each_change_is_taken_back(self):
        self.imported(5)
        entries = self.json("list")
        half = next(one["id"] for one in entries if "counterpart" in one)
        other = next(one["counterpart"] for one in entries if one["id"] == half)
        commands = [["edit", "3", "--category", "Fun", "--also-earlier"], ["edit", "4", "--amount", "7.50"],
                    ["unpair", half, other], ["budget", "Dining", "100"], ["accounts", "name", "7790", "Salary"],
                    ["rate", "USD", "48.5", "--from", "2025-05-01"], ["delete", "5-9", "--yes"],
                    ["rules", "add", "--payee", "UBER*", "--category", "Work", "--also-earlier"]]

        def everything():
            shown = (["list"], ["accounts"], ["budget"], ["rules"])
            return [self.run_ledger(*command, "--json") for command in shown] + [self.run_ledger("rate")]

        for command in commands:
            before = everything()
            self.run_ledger(*command)
            self.assertNotEqual(everything(), before, command)
            self.run_ledger("undo")
            self.assertEqual(everything(), before, command)


if __name__ == "__main__":
    unittest.main()
