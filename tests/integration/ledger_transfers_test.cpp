// Refunds, and transfers between a person's own accounts, through the program kivo-ledger.
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "testkit/ledger_command_test.h"

// The banks, merchants and people below do not exist.

namespace kivo::testkit {
namespace {

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* wentOut =
    "EGP 500.00 debited from your account 1111 on 21-11-2026. Ref No 778812345678. Tulip Bank";
constexpr const char* cameIn =
    "EGP 500.00 credited to your account 2222 on 21-11-2026. Ref No 778812345678. Nile Bank";
constexpr const char* cameInAlone =
    "EGP 500.00 credited to your account 2222 on 21-11-2026. Nile Bank";
constexpr const char* refund =
    "Refund of EGP 50.00 from Carrefour City has been credited to your card ending 4821";

class AMovedSum : public LedgerCommandTest {
 protected:
  static nlohmann::json summary() { return json({"summary", "--month", "2026-11"}); }
  static std::string everything() {
    std::string text;
    for (const char* const command : {"list", "review"}) text += shown({command, "--json"});
    return text + shown({"review"});
  }
};

TEST_F(AMovedSum, IsOneMovementOfTwoMessages) {
  receive({wentOut, cameIn});
  const auto entries = json({"list"});
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[0]["counterpart"], "1");
  EXPECT_EQ(entries[1]["counterpart"], "2");
  EXPECT_FALSE(entries[0].contains("possible_duplicate_of"));
  const auto figures = summary();
  EXPECT_EQ(figures["expense"], "0.00");
  EXPECT_EQ(figures["income"], "0.00");
  EXPECT_EQ(figures["transfer"], "500.00");
  EXPECT_EQ(figures["transactions"], "2");
  EXPECT_THAT(shown({"list"}), HasSubstr("(other half: 1)\n"));
  EXPECT_THAT(shown({"show", "1"}), HasSubstr("Other half   2\n"));
}

TEST_F(AMovedSum, IsOfferedInReviewAndPairedByAPerson) {
  receive({wentOut, cameInAlone});
  EXPECT_EQ(shown({"review"}),
            "These two look like one transfer: 1 and 2\n  (kivo-ledger pair 1 2)\n"
            "kivo-ledger unpair, with the same numbers, says that they are two payments.\n");
  EXPECT_EQ(summary()["income"], "500.00");
  EXPECT_EQ(shown({"pair", "2", "1"}), "2 and 1 are one transfer of EGP 500.00.\n");
  EXPECT_EQ(shown({"review"}), "There is nothing to look at.\n");
  EXPECT_EQ(summary()["income"], "0.00");
}

TEST_F(AMovedSum, IsNotOfferedAgainAfterUnpair) {
  receive({wentOut, cameInAlone});
  EXPECT_EQ(shown({"unpair", "1", "2"}), "1 and 2 are no pair.\n");
  EXPECT_EQ(shown({"review"}), "There is nothing to look at.\n");
  EXPECT_EQ(shown({"undo"}), "Undone: unpair 1 2 (2 transactions).\n");
  EXPECT_THAT(shown({"review"}), StartsWith("These two look like one transfer: 1 and 2\n"));
}

TEST_F(AMovedSum, IsAsBeforeWhenItsCommandIsTakenBack) {
  receive({wentOut, cameIn, purchase, refund});
  for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
           {"unpair", "1", "2"},
           {"edit", "1", "--amount", "499"},
           {"edit", "2", "--kind", "expense"},
           {"delete", "2", "--yes"},
           {"edit", "4", "--no-refund", "--category", "Income"},
       }) {
    const std::string before = everything();
    shown(command);
    EXPECT_NE(everything(), before) << command[0];
    shown({"undo"});
    EXPECT_EQ(everything(), before) << command[0];
  }
  shown({"unpair", "1", "2"});
  const std::string before = everything();
  shown({"pair", "1", "2"});
  shown({"undo"});
  EXPECT_EQ(everything(), before);
}

TEST_F(AMovedSum, SaysWhyTwoTransactionsAreNoPair) {
  receive({wentOut, cameIn, purchase, refund});
  expectFailure({"pair", "1", "2"}, 1, "1 and 2 are one transfer already");
  expectFailure({"pair", "1", "3"}, 1, "1 has the other half 2: kivo-ledger unpair 1 2 parts them");
  expectFailure({"pair", "3", "4"}, 1,
                "4 is a refund: kivo-ledger edit 4 --no-refund makes it an income");
  expectFailure({"pair", "3", "9"}, 1, "no transaction has the ID 9");
  expectFailure({"pair", "3", "3"}, 64, "both numbers are 3: give those of two transactions");
  expectFailure({"pair", "3", "x"}, 64,
                "invalid OTHER-ID \"x\": it must be the number of a transaction, as list shows it");
  expectFailure({"unpair", "1", "3"}, 1, "1 and 3 are no pair");
  shown({"unpair", "1", "2"});
  expectFailure({"pair", "1", "3"}, 1, "their sums differ: EGP 500.00 and EGP 150.00");
  shown({"edit", "2", "--kind", "expense"});
  expectFailure({"pair", "1", "2"}, 1,
                "both went out: kivo-ledger edit ID --kind income corrects one of them");
}

TEST_F(AMovedSum, IsExportedOnce) {
  receive({wentOut, cameIn});
  EXPECT_THAT(shown({"export", "--format", "hledger"}),
              HasSubstr("    Assets:Bank:2222  500.00 EGP\n    Assets:Bank:1111  -500.00 EGP\n"));
  const std::string csv = shown({"export", "--format", "csv"});
  EXPECT_THAT(csv, HasSubstr("2026-11-21,transfer,500.00,EGP,"));
  EXPECT_THAT(csv, Not(HasSubstr("income")));
}

TEST_F(AMovedSum, KeepsARefundApartFromWhatWasReceived) {
  receive({purchase, refund});
  const auto figures = summary();
  EXPECT_EQ(figures["expense"], "100.00");
  EXPECT_EQ(figures["refunded"], "50.00");
  EXPECT_EQ(figures["income"], "0.00");
  EXPECT_EQ(figures["categories"][0]["category"], "Groceries");
  EXPECT_EQ(figures["categories"][0]["expense"], "100.00");
  const auto entry = json({"show", "2"});
  EXPECT_EQ(entry["kind"], "income");
  EXPECT_EQ(entry["refund"], "true");
  EXPECT_EQ(entry["category"], "Groceries");
  EXPECT_THAT(shown({"show", "2"}), HasSubstr("Kind         income, a refund\n"));
  EXPECT_THAT(shown({"list"}), HasSubstr("  refund  "));
  EXPECT_THAT(shown({"summary", "--month", "2026-11"}),
              HasSubstr("Spent (150.00 less 50.00 refunded)\n"));
}

TEST_F(AMovedSum, MakesAnIncomeARefundAndBack) {
  receive({purchase, refund});
  shown({"edit", "2", "--no-refund", "--category", "Income"});
  EXPECT_EQ(summary()["income"], "50.00");
  EXPECT_EQ(summary()["expense"], "150.00");
  shown({"edit", "2", "--refund"});
  EXPECT_EQ(summary()["income"], "0.00");
  EXPECT_EQ(summary()["categories"][0]["expense"], "100.00");
}

TEST_F(AMovedSum, RefusesARefundThatIsNoIncome) {
  receive({purchase});
  expectFailure({"edit", "1", "--refund"}, 64,
                "--refund is for an income, and this is of the kind expense: give --kind income as "
                "well");
  expectFailure({"edit", "1", "--refund", "--no-refund"}, 64,
                "--refund and --no-refund exclude each other: give one of them");
}

}  // namespace
}  // namespace kivo::testkit
