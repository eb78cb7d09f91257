#!/usr/bin/env python3
"""The window, used as a person uses it: by what a screen reader finds, and by keys."""
import datetime
import json
import pathlib
import sqlite3
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
from app_session import Home, Screen, Window  # noqa: E402  pylint: disable=wrong-import-position

TODAY = datetime.date.today()
YESTERDAY = TODAY - datetime.timedelta(days=1)
LAST_MONTH = TODAY.replace(day=1) - datetime.timedelta(days=3)


def purchase(amount, shop, account="4821"):
    return f"Purchase of EGP {amount} at {shop} on card ending {account}"


class AWindow(unittest.TestCase):
    """A book of a few payments, and the window on it."""

    rows = [(TODAY, purchase("150.00", "SUNNY MARKET")), (YESTERDAY, purchase("80.00", "TOWN GAS")),
            (LAST_MONTH, purchase("70.00", "TOWN GAS")), (TODAY, "Purchase of USD 20.00 at MOON SHOP on card ending 4821"),
            (TODAY, "Dear customer, EGP 300.00 is due for your Tulip plan")]

    def setUp(self):
        self.home = Home()
        self.addCleanup(self.home.remove)
        self.prepare()
        self.window = self.open()

    def prepare(self):
        self.home.import_rows(self.rows)

    def open(self, *arguments):
        window = Window(self.home, *arguments)
        self.addCleanup(window.close)
        return window

    def entries(self, *options):
        return json.loads(self.home.ledger("list", "--json", *options))

    def waiting(self):
        return json.loads(self.home.ledger("review", "--json"))[0]

    def entry(self, description):
        found = [one for one in self.entries() if one["description"] == description]
        self.assertEqual(len(found), 1, description)
        return found[0]


class ShowsAMonth(AWindow):
    def test_has_the_figures_of_the_summary(self):
        self.home.ledger("budget", "Groceries", "100")
        month = json.loads(self.home.ledger("summary", "--json"))
        self.window.shows("EGP " + month["expense"])
        for category in month["categories"]:
            if float(category["expense"]) != 0:
                self.window.shows(f"{category['category']}, EGP {category['expense']}")
        self.window.shows("150 %")
        self.window.shows("EGP 150.00 of EGP 100.00, EGP 50.00 over")
        self.window.shows("1 payment waits for you")

    def test_goes_to_the_month_before_and_back(self):
        self.window.click("Previous month")
        self.window.shows(LAST_MONTH.strftime("%B %Y"))
        self.window.shows("Utilities, EGP 70.00")
        self.window.click("Next month")
        self.window.shows(TODAY.strftime("%B %Y"))

    def test_leads_from_a_category_to_its_payments(self):
        self.window.click("Groceries, EGP 150.00")
        self.window.shows("Groceries, " + TODAY.strftime("%B %Y"))
        self.window.shows("SUNNY MARKET, EGP 150.00, Today")
        self.window.lacks("TOWN GAS, EGP 80.00")

    def test_shows_the_year(self):
        year = json.loads(self.home.ledger("summary", "--year", str(TODAY.year), "--json"))
        self.window.click(f"The year {TODAY.year}")
        self.window.shows("Saved")
        self.window.shows("EGP " + year["expense"])


class SaysWhatToDoFirst(AWindow):
    def prepare(self):
        pass

    def test_when_the_book_is_empty(self):
        self.window.shows("Nothing Is Booked")
        self.window.shows("kivo-ledger import")
        self.window.go("Review")
        self.window.shows("Nothing Waits for You")


class ListsPayments(AWindow):
    def test_by_days_and_finds_a_word_and_a_sum(self):
        self.window.go("Payments")
        self.window.shows("SUNNY MARKET, EGP 150.00, Today")
        self.window.shows("TOWN GAS, EGP 80.00, Yesterday")
        self.window.type_into("Search payments", "gas")
        self.window.shows("2 payments")
        self.window.lacks("SUNNY MARKET, EGP")
        self.window.type_into("Search payments", "150.00")
        self.window.shows("1 payment")
        self.window.shows("SUNNY MARKET, EGP 150.00")


    def test_of_one_category_or_account(self):
        self.window.go("Payments")
        self.window.click("Show only a category or an account")
        self.window.click("Show Utilities")
        self.window.shows("2 payments")
        self.window.lacks("SUNNY MARKET, EGP")
        self.window.click("Show only a category or an account")
        self.window.click("Show 4821")
        self.window.shows("Utilities, account 4821")
        self.window.click("Show All")
        self.window.shows("SUNNY MARKET, EGP 150.00")


class CorrectsAPayment(AWindow):
    def change_category(self, shop, category):
        self.window.go("Payments")
        self.window.click(shop)
        self.window.type_into("Category", category)
        self.window.click("Save")

    def test_and_earlier_ones_and_back(self):
        before = self.home.ledger("list", "--json")
        self.change_category("TOWN GAS, EGP 80.00", "Home")
        self.window.shows("1 earlier one too?")
        self.window.shows("Later payments to TOWN GAS will be Home.")
        self.window.click("Change Them")
        self.window.shows("Changed 1 earlier one")
        self.assertEqual({one["category"] for one in self.entries("--search", "TOWN GAS")}, {"Home"})
        self.assertIn("TOWN GAS", self.home.ledger("rules"))
        self.window.click("Undo")
        self.window.shows("It is as it was before.")
        self.assertEqual(self.home.ledger("list", "--json"), before)

    def test_alone_when_the_switch_is_off(self):
        self.window.go("Payments")
        self.window.click("TOWN GAS, EGP 80.00")
        self.window.type_into("Category", "Home")
        self.window.click("Also for later payments of TOWN GAS", "check box")
        self.window.click("Save")
        self.window.shows("Saved")
        self.assertNotIn("TOWN GAS", self.home.ledger("rules"))
        self.assertEqual(sorted(one["category"] for one in self.entries("--search", "TOWN GAS")),
                         ["Home", "Utilities"])

    def test_and_is_named_in_the_history(self):
        self.change_category("SUNNY MARKET", "Food and drink")
        self.window.shows("Saved")
        number = self.entry("SUNNY MARKET")["id"]
        self.assertIn(f'edit {number} --category "Food and drink"', self.home.ledger("history"))

    def test_only_to_a_sum_and_a_day_that_can_be(self):
        before = self.home.ledger("list", "--json")
        self.window.go("Payments")
        self.window.click("SUNNY MARKET")
        for field, wrong, right in (("Sum", "12,34", "1,234.50"), ("Day", "2026-02-30", "2026-02-28")):
            self.window.type_into(field, wrong)
            self.window.click("Save")
            time.sleep(0.5)
            self.assertEqual(self.home.ledger("list", "--json"), before)
            self.window.type_into(field, right)
        self.window.click("Save")
        self.window.shows("Saved")
        changed = self.entry("SUNNY MARKET")
        self.assertEqual((changed["amount"], changed["date"]), ("1234.50", "2026-02-28"))

    def test_in_another_currency(self):
        self.window.go("Payments")
        self.window.click("SUNNY MARKET")
        self.window.type_into("Currency", "EG")
        self.window.click("Save")
        time.sleep(0.5)
        self.assertEqual(self.entry("SUNNY MARKET")["currency"], "EGP")
        self.window.type_into("Currency", "usd")
        self.window.type_into("Sum", "3.10")
        self.window.click("Save")
        self.window.shows("Saved")
        changed = self.entry("SUNNY MARKET")
        self.assertEqual((changed["amount"], changed["currency"]), ("3.10", "USD"))
        self.assertIn("--amount 3.10 --currency USD", self.home.ledger("history"))

    def test_and_says_that_an_income_gives_back_a_payment(self):
        number = self.entry("SUNNY MARKET")["id"]
        self.home.ledger("edit", number, "--kind", "income", "--once")
        self.window.go("Payments")
        self.window.click("SUNNY MARKET")
        self.window.click("It gives back a payment", "check box")
        self.window.click("Save")
        self.window.shows("Saved")
        self.assertEqual(self.entry("SUNNY MARKET").get("refund"), "true")
        self.assertEqual(json.loads(self.home.ledger("rules", "--json")), [])
        self.window.click("Undo")
        self.window.shows("It is as it was before.")
        self.assertNotIn("refund", self.entry("SUNNY MARKET"))

    def test_and_books_what_waits_once(self):
        self.window.go("Review")
        self.window.click("Change: MOON SHOP")
        self.window.click("Right, Book It")
        self.window.shows("Booked")
        self.assertEqual(self.entry("MOON SHOP")["state"], "booked")
        self.window.lacks("Right, Book It")

    def test_and_deletes_it_and_brings_it_back(self):
        self.window.go("Payments")
        self.window.click("SUNNY MARKET")
        self.window.click("Delete")
        self.window.shows("Deleted")
        self.assertFalse([one for one in self.entries() if one["description"] == "SUNNY MARKET"])
        self.window.click("Undo")
        self.window.shows("It is as it was before.")
        self.assertEqual(self.entry("SUNNY MARKET")["amount"], "150.00")

    def test_and_keeps_a_later_change_from_being_undone(self):
        self.change_category("SUNNY MARKET", "Home")
        self.window.shows("Saved")
        other = self.entries("--search", "TOWN GAS")[0]
        self.home.ledger("edit", other["id"], "--once", "--description", "GAS")
        self.window.click("Undo")
        self.window.shows("Not Taken Back")
        self.assertEqual(self.entry("SUNNY MARKET")["category"], "Home")
        self.assertEqual(self.entry("GAS")["id"], other["id"])


class Reviews(AWindow):
    def test_a_message_beside_its_reading(self):
        self.window.go("Review")
        self.window.shows("Purchase of USD 20.00 at MOON SHOP on card ending 4821")
        self.window.shows("expense, Shopping, Today, account 4821")
        self.window.click("Right: MOON SHOP")
        self.window.shows("Nothing Waits for You")
        self.assertEqual((self.entry("MOON SHOP")["amount"], self.entry("MOON SHOP")["currency"]), ("20.00", "USD"))
        self.window.click("Undo")
        self.window.find("push button", "Right: MOON SHOP")

    def test_what_is_no_payment(self):
        self.window.go("Review")
        self.window.click("Not a payment: MOON SHOP")
        self.window.shows("Nothing Waits for You")
        self.assertEqual(json.loads(self.home.ledger("review", "--json")), [])

    def test_a_message_that_was_not_booked(self):
        self.window.go("Review")
        self.window.click("Book: Dear customer, EGP 300.00 is due")
        self.window.type_into("Payee", "Tulip plan")
        self.window.type_into("Sum", "300")
        self.window.type_into("Category", "Subscriptions")
        self.window.click("Book")
        self.window.shows("Booked")
        booked = self.entry("Tulip plan")
        self.assertEqual((booked["amount"], booked["category"]), ("300.00", "Subscriptions"))
        self.window.click("Undo")
        self.window.shows("It is as it was before.")
        self.assertEqual(len(json.loads(self.home.ledger("ignored", "--json"))), 1)


class OffersAPair(AWindow):
    rows = [(TODAY, "EGP 500.00 was debited from account 7790 for a transfer"),
            (TODAY, "EGP 500.00 was credited to account 3301")]

    def test_and_joins_it_to_one_transfer(self):
        self.window.go("Review")
        self.window.shows("One transfer, or two payments?")
        self.window.click("One")
        self.window.shows("They are one transfer")
        self.assertEqual({one.get("counterpart") for one in self.entries()}, {"1", "2"})
        self.window.click("Undo")
        self.window.shows("One transfer, or two payments?")


class AddsAPayment(AWindow):
    def test_by_hand_with_a_category(self):
        self.window.click("Add a payment")
        self.window.type_into("Payee", "Corner shop")
        self.window.type_into("Sum", "12.50")
        self.window.type_into("Category", "Groceries")
        self.window.click("Add")
        self.window.shows("Added")
        self.assertEqual(self.entry("Corner shop")["amount"], "12.50")
        self.window.shows("Groceries, EGP 162.50")

    def test_through_the_extension_and_shows_its_dialog(self):
        self.home.run("kivo-phone", "sign-in", "--local")
        for program in ("kivo-ledger", "kivo-intents"):
            self.addCleanup(self.home.serve(program))
        self.window.click("Add a payment")
        self.window.type_into("Payee", "Corner shop")
        self.window.type_into("Sum", "12.50")
        self.window.click("Add")
        self.window.shows("Tracked EGP 12.50 at Corner shop")
        self.assertEqual(self.entry("Corner shop")["amount"], "12.50")

    def test_and_says_when_the_extension_is_not_there(self):
        self.window.click("Add a payment")
        self.window.type_into("Payee", "Corner shop")
        self.window.type_into("Sum", "12.50")
        self.window.click("Add")
        self.window.shows("Not Added")


class Learns(AWindow):
    rows = [(TODAY, "KVB: 45.00 EGP >> SUNNY MARKET card 4821"), (YESTERDAY, "KVB: 30.00 EGP >> MOON CAFE card 4821"),
            (TODAY, "Dear customer, EGP 300.00 is due for your Tulip plan")]

    def prepare(self):
        super().prepare()
        self.ignored = {one["text"]: one["number"] for one in json.loads(self.home.ledger("ignored", "--json"))}

    def test_how_a_message_is_read_and_unlearns_it(self):
        self.window.go("Review")
        self.window.click("Book: Dear customer, EGP 300.00")
        self.window.click("Teach")
        self.window.click("This Is the Sum")
        self.window.shows("Mark it in the message first")
        self.window.type_into("Payee, as the message writes it", "Tulip plan")
        self.window.click("Learn")
        self.window.shows("Learned")
        self.assertEqual(self.entry("Tulip plan")["amount"], "300.00")
        templates = self.home.path / "config/kivo/templates.toml"
        self.assertIn("for your {payee}", templates.read_text(encoding="utf-8"))
        self.window.click("Undo")
        self.window.shows("It is as it was before.")
        self.assertNotIn("for your", templates.read_text(encoding="utf-8"))
        self.assertEqual(len(json.loads(self.home.ledger("ignored", "--json"))), len(self.ignored))

    def test_and_lists_what_was_taught(self):
        number = self.ignored["Dear customer, EGP 300.00 is due for your Tulip plan"]
        self.home.ledger("teach", f"ignored:{number}", "--kind", "expense", "--amount", "300.00", "--payee", "Tulip plan")
        self.window.go("More")
        self.window.click("Templates")
        self.window.shows("for your {payee}")
        self.window.shows("expense")
        self.window.click("Take One Back in the History")
        self.window.shows(f"teach ignored:{number}")

    def test_only_what_the_message_holds(self):
        self.window.go("Review")
        self.window.click("Book: Dear customer, EGP 300.00")
        self.window.click("Teach")
        self.window.type_into("Sum, as the message writes it", "512")
        self.window.click("Learn")
        self.window.shows("It cannot be learned")
        self.assertFalse((self.home.path / "config/kivo/templates.toml").exists())


class KeepsMore(AWindow):
    rows = [(LAST_MONTH, purchase("70.00", "TOWN GAS") + ". Available balance EGP 930.00"),
            (YESTERDAY, purchase("80.00", "TOWN GAS") + ". Available balance EGP 350.00"),
            (TODAY, purchase("150.00", "SUNNY MARKET") + ". Available balance EGP 200.00")]

    def go_to(self, page):
        self.window.go("More")
        self.window.click(page)

    def test_accounts_with_their_gaps_and_names(self):
        self.go_to("Accounts")
        self.window.shows("Balance")
        self.window.shows("EGP 500.00 unexplained between")
        self.window.type_into("Name of 4821", "Everyday")
        self.window.click("Give 4821 this name")
        self.window.shows("Everyday EGP")
        self.assertEqual(json.loads(self.home.ledger("accounts", "--json"))[0]["name"], "Everyday")

    def test_budgets(self):
        self.go_to("Budgets")
        self.window.type_into("Category", "Groceries")
        self.window.type_into("A month may cost, in EGP", "1,000")
        self.window.click("Set")
        self.window.find("push button", "Remove the budget of Groceries")
        self.assertEqual(json.loads(self.home.ledger("budget", "--json")),
                         [{"category": "Groceries", "amount": "1000.00", "spent": "150.00"}])
        self.window.click("Remove the budget of Groceries")
        self.window.shows("Removed")
        self.assertEqual(json.loads(self.home.ledger("budget", "--json")), [])

    def test_rules(self):
        self.go_to("Rules")
        self.window.shows("There is no rule.")
        self.window.type_into("Payee; * stands for any characters", "TOWN*")
        self.window.type_into("Category", "Home")
        self.window.click("Add")
        self.window.find("push button", "Remove the rule for TOWN*")
        self.assertEqual(json.loads(self.home.ledger("rules", "--json"))[0]["category"], "Home")
        self.window.click("Remove the rule for TOWN*")
        self.window.shows("There is no rule.")

    def test_the_history_and_the_way_back(self):
        before = self.home.ledger("list", "--json")
        first, second = (one["id"] for one in self.entries()[:2])
        self.home.ledger("edit", first, "--once", "--category", "Home")
        self.home.ledger("edit", second, "--once", "--category", "Home")
        self.go_to("History")
        self.window.click(f"Undo: edit {first} --category Home")
        self.window.click("Undo Them")
        self.window.shows("It is as it was before.")
        self.assertEqual(self.home.ledger("list", "--json"), before)
        self.window.lacks(f"edit {second}")


class HoldsHostileNames(AWindow):
    names = ["<b>BOLD</b> & CO", "EVIL ‮SHOP", "A" * 10_000]

    def prepare(self):
        self.home.import_rows(self.rows)
        for entry, name in zip(json.loads(self.home.ledger("list", "--json")), self.names):
            self.home.ledger("edit", entry["id"], "--once", "--description", name, "--category", name[:60])

    def test_as_they_are_without_markup_and_direction(self):
        self.window.go("Payments")
        self.window.shows("<b>BOLD</b> & CO, EGP")
        self.window.shows("EVIL \\u202eSHOP, EGP")
        self.window.shows("A" * 199 + "…, EGP")
        self.window.click("<b>BOLD</b> & CO, EGP")
        self.window.shows("<b>BOLD</b> & CO")
        self.assertNotIn("markup", self.window.complaints())


class Follows(AWindow):
    def test_what_the_service_books_meanwhile(self):
        self.window.shows("EGP 230.00")
        self.home.ledger("add", "--amount", "70", "--payee", "Corner shop")
        self.window.shows("EGP 300.00")
        self.window.go("Payments")
        self.window.shows("Corner shop, EGP 70.00")
        self.home.ledger("delete", self.entry("Corner shop")["id"], "--yes")
        self.window.lacks("Corner shop, EGP 70.00")

    def test_a_currency_that_is_changed_meanwhile(self):
        self.window.shows("EGP 230.00")
        self.home.run("kivo-phone", "store", "set", "currency", "USD")
        self.window.shows("In other currencies")
        self.window.shows("$ 0.00")

    def test_a_payment_that_is_deleted_while_it_is_shown(self):
        self.window.go("Payments")
        self.window.click("SUNNY MARKET")
        self.window.field("Category")
        self.home.ledger("delete", self.entry("SUNNY MARKET")["id"], "--yes")
        self.window.shows("This payment was deleted")


class ShowsWhyABookCannotBeShown(AWindow):
    def test_when_it_is_of_a_newer_version(self):
        self.window.close()
        with sqlite3.connect(self.home.book) as book:
            book.execute("PRAGMA user_version = 99")
        book.close()
        before = self.home.book.read_bytes()
        window = self.open()
        window.shows("The Book Cannot Be Shown")
        self.assertEqual(self.home.book.read_bytes(), before)

    def test_when_it_is_damaged_and_goes_on_when_it_is_whole_again(self):
        self.window.close()
        whole = self.home.path / "whole"
        self.home.book.rename(whole)
        for rest in self.home.book.parent.glob("ledger.sqlite3-*"):
            rest.rename(rest.with_name("kept" + rest.name[len("ledger.sqlite3"):]))
        self.home.book.write_bytes(b"no database" * 1000)
        window = self.open()
        window.shows("The Book Cannot Be Shown")
        window.click("Try Again")
        window.shows("The Book Cannot Be Shown")
        whole.rename(self.home.book)
        for rest in self.home.book.parent.glob("kept*"):
            rest.rename(rest.with_name("ledger.sqlite3" + rest.name[len("kept"):]))
        window.click("Try Again")
        window.shows("EGP 230.00")


class NamesEachControl(AWindow):
    roles = ("push button", "toggle button", "text", "entry", "combo box", "page tab", "check box", "switch")

    def unnamed(self):
        return [f"{node.getRoleName()} below {node.parent.name} {node.parent.parent.name}" for node, name in self.window.nodes()
                if node.getRoleName() in self.roles and not name]

    def test_on_every_page(self):
        self.window.shows("EGP 230.00")
        self.assertEqual(self.unnamed(), [])
        self.window.go("Payments")
        self.window.shows("SUNNY MARKET, EGP")
        self.assertEqual(self.unnamed(), [])
        self.window.click("SUNNY MARKET, EGP")
        self.window.field("Category")
        self.assertEqual(self.unnamed(), [])
        self.window.click("Back")
        self.window.go("Review")
        self.window.find("push button", "Right: MOON SHOP")
        self.assertEqual(self.unnamed(), [])
        self.window.click("Add a payment")
        self.window.field("Payee")
        self.assertEqual(self.unnamed(), [])
        self.window.click("Back")
        self.window.go("More")
        for page, sign in (("Accounts", "Credit card"), ("Budgets", "Set a budget"), ("Rules", "A new rule"),
                           ("Templates", "There is none"), ("History", "import")):
            self.window.click(page)
            self.window.shows(sign)
            self.assertEqual(self.unnamed(), [], page)
            self.window.click("Back")


class HoldsManyPayments(AWindow):
    count = 20_000

    def prepare(self):
        start = datetime.datetime.combine(TODAY, datetime.time(12)) - datetime.timedelta(days=700)
        step = datetime.timedelta(days=700) / self.count
        self.home.import_rows([((start + at * step).isoformat(timespec="seconds"),
                                purchase(f"{at % 900 + 1}.00", "STAR RAIL")) for at in range(self.count)])

    def test_and_reads_only_those_on_screen(self):
        self.window.go("Payments")
        self.window.shows(f"{self.count} payments")
        buttons = [node for node in self.window.walk() if "STAR RAIL, EGP" in (node.name or "")]
        self.assertLess(len(buttons), 300)
        self.window.type_into("Search payments", "STAR RAIL")
        self.window.shows(f"{self.count} payments")

    def test_and_says_so_when_the_book_breaks_while_it_is_open(self):
        self.window.shows("Transport, EGP")
        whole = self.home.book.stat().st_size
        with self.home.book.open("r+b") as book:
            book.seek(40_000)
            book.write(b"\0" * (whole - 40_000))
        self.window.go("Payments")
        self.window.shows("The Book Cannot Be Shown")
        self.assertIsNone(self.window.process.poll())


class OpensByALink(AWindow):
    def test_the_payment_that_the_link_names(self):
        self.home.run("kivo-phone", "sign-in", "--local")
        self.window.shows("EGP 230.00")
        self.home.run("kivo-phone", "open", "--", f"kivo-expenses://payment/{self.waiting()['id']}")
        self.window.click("Right, Book It")
        self.window.shows("Booked")
        self.assertEqual(self.entry("MOON SHOP")["state"], "booked")

    def test_and_says_so_when_that_payment_is_gone(self):
        self.home.run("kivo-phone", "sign-in", "--local")
        self.window.shows("EGP 230.00")
        self.home.run("kivo-phone", "open", "--", "kivo-expenses://payment/999")
        self.window.shows("This payment does not exist any more")

    def test_what_waits_whatever_the_link_says(self):
        self.home.run("kivo-phone", "sign-in", "--local")
        self.window.shows("EGP 230.00")
        self.home.run("kivo-phone", "open", "--", "kivo-expenses://delete/1")
        self.window.wait(lambda: self.window.is_selected("Review"), "the page Review")
        self.assertEqual(len(self.entries()), 3)


class StaysWhole(AWindow):
    def test_when_it_is_killed_after_a_change(self):
        self.window.go("Payments")
        self.window.click("SUNNY MARKET")
        self.window.type_into("Category", "Home")
        self.window.click("Save")
        self.window.shows("Saved")
        self.window.kill()
        self.assertEqual(self.entry("SUNNY MARKET")["category"], "Home")
        self.home.ledger("undo")
        self.assertEqual(self.entry("SUNNY MARKET")["category"], "Groceries")
        window = self.open()
        window.shows("EGP 230.00")


if __name__ == "__main__":
    screen = Screen()
    try:
        unittest.main(verbosity=2)
    finally:
        screen.close()
