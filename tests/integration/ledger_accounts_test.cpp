// `kivo-ledger accounts` and what it changes.
#include <functional>
#include <string>

#include <gmock/gmock.h>

#include "book/current_day.h"
#include "testkit/ledger_command_test.h"

// The bank and the shops below do not exist.

namespace kivo::testkit {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

std::string paid(const std::string& sum, const std::string& shop, const std::string& balance,
                 const std::string& account = "4821") {
  return "Your card ending " + account + " was used for EGP " + sum + " at " + shop +
         ". Available balance EGP " + balance;
}

class TheAccounts : public LedgerCommandTest {
 protected:
  static std::string everything() {
    return shown({"list", "--json"}) + shown({"accounts", "--json"});
  }
};

TEST_F(TheAccounts, OfAnEmptyBookAreNone) {
  EXPECT_EQ(shown({"accounts"}), "No message shows an account.\n");
  EXPECT_THAT(json({"accounts"}), IsEmpty());
}

TEST_F(TheAccounts, ShowTheLastBalanceAndWhatIsUnexplained) {
  receive({paid("100.00", "Nile Cinema", "900.00")}, "2025-11-03");
  receive({paid("50.00", "Moon Pharmacy", "350.00")}, "2025-11-05");
  EXPECT_EQ(shown({"accounts"}),
            "4821: balance EGP 350.00 on 5 November 2025\n"
            "  EGP 500.00 unexplained between 3 and 5 November 2025\n");
  const auto accounts = json({"accounts"});
  ASSERT_THAT(accounts, SizeIs(1));
  EXPECT_EQ(accounts[0]["account"], "4821");
  EXPECT_EQ(accounts[0]["name"], "");
  EXPECT_EQ(accounts[0]["currency"], "EGP");
  EXPECT_EQ(accounts[0]["balance"], "350.00");
  EXPECT_EQ(accounts[0]["balance_date"], "2025-11-05");
  EXPECT_EQ(accounts[0]["gaps"].dump(),
            R"([{"amount":"500.00","from":"2025-11-03","to":"2025-11-05"}])");
}

TEST_F(TheAccounts, NameBothMonthsAndYearsOfAGapAcrossThem) {
  receive({paid("100.00", "Nile Cinema", "900.00")}, "2024-10-30");
  receive({paid("50.00", "Moon Pharmacy", "840.00")}, "2024-11-02");
  receive({paid("50.00", "Tulip Bakery", "1790.00")}, "2025-01-02");
  const std::string text = shown({"accounts"});
  EXPECT_THAT(text,
              HasSubstr("EGP 10.00 unexplained between 30 October 2024 and 2 November 2024\n"));
  EXPECT_THAT(text,
              HasSubstr("EGP 1000.00 more than is booked between 2 November 2024 and 2 January "
                        "2025\n"));
}

TEST_F(TheAccounts, NameTheDayOfAGapWithinOne) {
  receive({paid("100.00", "Nile Cinema", "900.00"), paid("50.00", "Moon Pharmacy", "840.00")},
          book::currentDay().text());
  EXPECT_THAT(shown({"accounts"}), HasSubstr("EGP 10.00 unexplained on "));
}

TEST_F(TheAccounts, HaveNoGapForMessagesThatArriveOutOfOrder) {
  receive({paid("50.00", "Moon Pharmacy", "850.00"), paid("100.00", "Nile Cinema", "900.00"),
           paid("30.00", "Tulip Bakery", "820.00")});
  const auto accounts = json({"accounts"});
  EXPECT_THAT(accounts[0]["gaps"], IsEmpty());
  EXPECT_EQ(accounts[0]["balance"], "820.00");
}

TEST_F(TheAccounts, HaveAnotherGapAfterAnEditOrADeletion) {
  receive({paid("100.00", "Nile Cinema", "900.00")}, "2026-11-03");
  receive({paid("50.00", "Moon Pharmacy", "850.00")}, "2026-11-05");
  receive({paid("30.00", "Tulip Bakery", "820.00")}, "2026-11-07");
  EXPECT_THAT(json({"accounts"})[0]["gaps"], IsEmpty());
  shown({"edit", "2", "--amount", "40"});
  EXPECT_EQ(json({"accounts"})[0]["gaps"][0]["amount"], "10.00");
  shown({"delete", "2", "--yes"});
  EXPECT_EQ(json({"accounts"})[0]["gaps"][0]["amount"], "50.00");
  EXPECT_EQ(json({"accounts"})[0]["gaps"][0]["from"], "2026-11-03");
}

TEST_F(TheAccounts, HaveNamesByWhichListFindsThem) {
  receive(
      {paid("100.00", "Nile Cinema", "900.00"), paid("70.00", "Moon Pharmacy", "10.00", "7790")});
  shown({"accounts", "name", "7790", "Salary"});
  EXPECT_THAT(shown({"accounts"}), HasSubstr("7790 Salary: balance EGP 10.00"));
  for (const char* const account : {"7790", "Salary", "salary"}) {
    const auto found = json({"list", "--account", account});
    ASSERT_THAT(found, SizeIs(1)) << account;
    EXPECT_EQ(found[0]["id"], "2");
  }
  shown({"accounts", "name", "7790", ""});
  EXPECT_THAT(shown({"accounts"}), Not(HasSubstr("Salary")));
  EXPECT_THAT(json({"list", "--account", "Salary"}), IsEmpty());
}

TEST_F(TheAccounts, TakeACreditCardForADebtUntilItIsOff) {
  receive({paid("100.00", "Nile Cinema", "900.00")}, "2026-11-03");
  receive({paid("50.00", "Moon Pharmacy", "950.00")}, "2026-11-05");
  shown({"accounts", "credit", "4821"});
  EXPECT_THAT(shown({"accounts"}), HasSubstr("4821: debt EGP 950.00"));
  EXPECT_THAT(json({"accounts"})[0]["gaps"], IsEmpty());
  shown({"accounts", "credit", "4821", "--off"});
  EXPECT_EQ(json({"accounts"})[0]["kind"], "balance");
  EXPECT_EQ(json({"accounts"})[0]["gaps"][0]["amount"], "-100.00");
}

TEST_F(TheAccounts, RefuseDigitsThatNoPaymentHasAndRepeatThem) {
  receive({paid("100.00", "Nile Cinema", "900.00")});
  expectFailure({"accounts", "name", "1234", "Salary"}, 1,
                "no payment is of the account 1234; kivo-ledger accounts shows them");
  expectFailure({"accounts", "credit", "1234"}, 1,
                "no payment is of the account 1234; kivo-ledger accounts shows them");
}

TEST_F(TheAccounts, RefuseANameThatLooksLikeDigits) {
  receive({paid("100.00", "Nile Cinema", "900.00")});
  expectFailure({"accounts", "name", "4821", "7790"}, 64,
                "invalid NAME \"7790\": it must be a name with a letter, or empty for none");
}

TEST_F(TheAccounts, AreAsBeforeAfterAnUndo) {
  receive({paid("100.00", "Nile Cinema", "900.00")});
  shown({"accounts", "name", "4821", "First"});
  shown({"accounts", "credit", "4821"});
  for (const std::vector<std::string>& command :
       std::vector<std::vector<std::string>>{{"accounts", "name", "4821", "Salary"},
                                             {"accounts", "name", "4821", ""},
                                             {"accounts", "credit", "4821", "--off"}}) {
    const std::string before = everything();
    shown(command);
    EXPECT_NE(everything(), before);
    EXPECT_THAT(shown({"undo"}), HasSubstr("(1 account).\n"));
    EXPECT_EQ(everything(), before);
  }
}

TEST_F(TheAccounts, ComeWithABackup) {
  receive({paid("100.00", "Nile Cinema", "900.00")});
  shown({"accounts", "name", "4821", "Salary"});
  const std::string before = everything();
  const std::string file = ledger_.folders().home() / "book.kivo";
  shown({"backup", file});
  shown({"accounts", "name", "4821", "Other"});
  shown({"restore", file, "--replace"});
  EXPECT_EQ(everything(), before);
}

constexpr const char* withdrawal =
    "Your card ending 4821 was used to withdraw EGP 1,000.00 at an ATM. Available balance EGP "
    "5,000.00";
constexpr const char* keepsCashFromNow =
    "Withdrawals of cash will be transfers to the account Cash, from which add spends. kivo-ledger "
    "accounts shows it.\n";

class AnAccountOfCash : public LedgerCommandTest {
 protected:
  static std::string spent() { return json({"summary", "--month", "2026-11"})["expense"]; }
  // The figures of the account; none when it is not listed.
  static nlohmann::json cash() {
    for (const auto& account : json({"accounts"})) {
      if (account["account"] == "Cash") return account;
    }
    return {};
  }
  static std::string everything() {
    return shown({"list", "--json"}) + shown({"accounts", "--json"});
  }
};

TEST_F(AnAccountOfCash, GetsWhatIsWithdrawnWhileItIsKept) {
  EXPECT_EQ(shown({"accounts", "cash", "on"}), keepsCashFromNow);
  receive({withdrawal});
  const auto entry = json({"show", "1"});
  EXPECT_EQ(entry["kind"], "transfer");
  EXPECT_EQ(entry["category"], "Cash");
  EXPECT_EQ(entry["account"], "4821");
  EXPECT_EQ(spent(), "0.00");
  EXPECT_EQ(cash()["balance"], "1000.00");
  EXPECT_EQ(cash()["balance_date"], "2026-11-21");
  EXPECT_THAT(shown({"accounts"}), HasSubstr("\nCash: balance EGP 1000.00 on 21 November"));
}

TEST_F(AnAccountOfCash, IsSpentFromByPaymentsEnteredByHand) {
  shown({"accounts", "cash", "on"});
  receive({withdrawal});
  shown({"add", "--amount", "80", "--payee", "Corner Kiosk", "--date", "2026-11-22"});
  EXPECT_EQ(json({"show", "2"})["account"], "Cash");
  EXPECT_EQ(cash()["balance"], "920.00");
  EXPECT_EQ(cash()["balance_date"], "2026-11-22");
  EXPECT_EQ(spent(), "80.00");
  shown({"add", "--amount", "10", "--payee", "Book Shop", "--account", "4821"});
  EXPECT_EQ(json({"show", "3"})["account"], "4821");
  EXPECT_EQ(cash()["balance"], "920.00");
}

TEST_F(AnAccountOfCash, IsNotKeptUnlessOneSaysSo) {
  receive({withdrawal});
  shown({"add", "--amount", "80", "--payee", "Corner Kiosk"});
  EXPECT_EQ(json({"show", "1"})["kind"], "expense");
  EXPECT_EQ(json({"show", "2"})["account"], "");
  EXPECT_TRUE(cash().empty());
}

TEST_F(AnAccountOfCash, GetsEarlierWithdrawalsOnRequest) {
  receive({withdrawal, "Your card ending 4821 was used for EGP 50.00 at Moon Pharmacy"});
  const std::string before = everything();
  EXPECT_EQ(shown({"accounts", "cash", "on"}),
            std::string(keepsCashFromNow) +
                "1 earlier one stays as it is; with --also-earlier, it changes too.\n");
  EXPECT_EQ(spent(), "1050.00");
  EXPECT_EQ(shown({"accounts", "cash", "on", "--also-earlier"}),
            std::string(keepsCashFromNow) + "Changed 1 earlier payment.\n");
  EXPECT_EQ(spent(), "50.00");
  EXPECT_EQ(cash()["balance"], "1000.00");
  shown({"undo", "2"});
  EXPECT_EQ(everything(), before);
}

TEST_F(AnAccountOfCash, StaysWithWhatIsBookedWhenItIsNoLongerKept) {
  shown({"accounts", "cash", "on"});
  receive({withdrawal});
  EXPECT_EQ(shown({"accounts", "cash", "off"}),
            "Withdrawals of cash will be expenses. What is booked stays as it is.\n");
  receive({withdrawal});
  EXPECT_EQ(json({"show", "1"})["kind"], "transfer");
  EXPECT_EQ(json({"show", "2"})["kind"], "expense");
  EXPECT_EQ(cash()["balance"], "1000.00");
  shown({"undo"});
  shown({"add", "--amount", "80", "--payee", "Corner Kiosk"});
  EXPECT_EQ(cash()["balance"], "920.00");
}

TEST_F(AnAccountOfCash, GetsADepositTakenFromIt) {
  shown({"accounts", "cash", "on"});
  receive({withdrawal, "EGP 300.00 was credited to your account ending 4821 from Hany Adel"});
  shown({"edit", "2", "--kind", "transfer", "--category", "Cash", "--once"});
  EXPECT_EQ(cash()["balance"], "700.00");
}

TEST_F(AnAccountOfCash, IsTheOtherAccountInExports) {
  shown({"accounts", "cash", "on"});
  receive({withdrawal});
  shown({"add", "--amount", "80", "--payee", "Corner Kiosk", "--category", "Dining"});
  const std::string journal = shown({"export", "--format", "hledger"});
  EXPECT_THAT(journal,
              HasSubstr("    Assets:Cash  1000.00 EGP\n    Assets:Bank:4821  -1000.00 EGP\n"));
  EXPECT_THAT(journal, HasSubstr("    Expenses:Dining  80.00 EGP\n    Assets:Cash  -80.00 EGP\n"));
  EXPECT_THAT(journal, Not(HasSubstr("category: Cash")));
}

TEST_F(AnAccountOfCash, ChangesNoFigureOfAnotherAccount) {
  receive({withdrawal, paid("100.00", "Nile Cinema", "4,900.00")});
  const auto before = json({"accounts"});
  shown({"accounts", "cash", "on", "--also-earlier"});
  auto after = json({"accounts"});
  ASSERT_THAT(after, SizeIs(2));
  after.erase(1);
  EXPECT_EQ(after, before);
}

TEST_F(AnAccountOfCash, IsNoAccountOfABank) {
  expectFailure(
      {"accounts", "name", "Cash", "Wallet"}, 64,
      "Cash is no account of a bank; kivo-ledger accounts cash on keeps it, off does not");
  expectFailure({"accounts", "name", "4821", "Cash"}, 64,
                "invalid NAME \"Cash\": it must be another one, since Cash is the account of cash");
  expectFailure({"accounts", "cash", "maybe"}, 64, "invalid STATE \"maybe\": it must be on or off");
  expectFailure({"accounts", "cash", "off", "--also-earlier"}, 64,
                "accounts cash off leaves earlier payments as they are");
}

}  // namespace
}  // namespace kivo::testkit
