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

}  // namespace
}  // namespace kivo::testkit
