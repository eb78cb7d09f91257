#include "overview/exports/hledger_export.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "exported_entry.h"

namespace kivo::overview {

using book::LedgerEntry;
using money::Kind;
using money::Money;

namespace {

using testing::HasSubstr;
using testing::Not;

TEST(AnHledgerExport, DeclaresCurrenciesAndAccountsAndBalancesEachEntry) {
  EXPECT_EQ(hledgerExport({exportedEntry()}),
            std::string("; Written by kivo-ledger. Another export replaces it.\n"
                        "decimal-mark .\n"
                        "commodity EGP\n"
                        "account Assets:Bank:4821\n"
                        "account Expenses:Groceries\n"
                        "\n"
                        "2026-11-21 * (42) Carrefour City\n"
                        "    ; kivo-id: ") +
                exportedId +
                "\n"
                "    ; reference: REF7\n"
                "    Expenses:Groceries  150.00 EGP\n"
                "    Assets:Bank:4821  -150.00 EGP\n");
}

TEST(AnHledgerExport, PostsIncomeToTheOwnAccount) {
  LedgerEntry entry = exportedEntry();
  setKind(entry, Kind::income);
  entry.account = "";
  EXPECT_THAT(hledgerExport({entry}), HasSubstr("    Income:Groceries  -150.00 EGP\n"
                                                "    Assets:Bank  150.00 EGP\n"));
}

TEST(AnHledgerExport, PostsATransferToEquityAndKeepsItsCategory) {
  LedgerEntry entry = exportedEntry();
  entry.kind = Kind::transfer;
  EXPECT_THAT(hledgerExport({entry}), HasSubstr("    ; category: Groceries\n"));
  EXPECT_THAT(hledgerExport({entry}), HasSubstr("    Equity:Transfers  150.00 EGP\n"
                                                "    Assets:Bank:4821  -150.00 EGP\n"));
}

TEST(AnHledgerExport, PostsARefundToItsExpenses) {
  LedgerEntry entry = exportedEntry();
  setKind(entry, Kind::income);
  entry.refund = true;
  EXPECT_THAT(hledgerExport({entry}), HasSubstr("    Expenses:Groceries  -150.00 EGP\n"
                                                "    Assets:Bank:4821  150.00 EGP\n"));
}

TEST(AnHledgerExport, PostsAForeignSumWithItsPrice) {
  const std::string journal = hledgerExport({convertedEntry()});
  EXPECT_THAT(journal, HasSubstr("commodity EGP\ncommodity USD\n"));
  EXPECT_THAT(journal, HasSubstr("    Expenses:Groceries  20.00 USD @@ 970.00 EGP\n"
                                 "    Assets:Bank:4821  -970.00 EGP\n"));
}

TEST(AnHledgerExport, PostsAForeignIncomeAsANegativeSumWithItsPrice) {
  LedgerEntry entry = convertedEntry();
  setKind(entry, Kind::income);
  EXPECT_THAT(hledgerExport({entry}), HasSubstr("    Income:Groceries  -20.00 USD @@ 970.00 EGP\n"
                                                "    Assets:Bank:4821  970.00 EGP\n"));
}

TEST(AnHledgerExport, LeavesOutAForeignSumThatCannotBe) {
  LedgerEntry entry = convertedEntry();
  entry.original->minorUnits = 0;
  EXPECT_THAT(hledgerExport({entry}), HasSubstr("    Expenses:Groceries  970.00 EGP\n"));
}

TEST(AnHledgerExport, HasNoForeignSumOnAnOwnAccount) {
  auto transfer = exportedTransfer();
  for (LedgerEntry& half : transfer) half.original = Money{2000, "USD"};
  EXPECT_THAT(hledgerExport(transfer), HasSubstr("    Assets:Bank:7314  150.00 EGP\n"));
}

TEST(AnHledgerExport, PostsBothHalvesOfATransferOnce) {
  const std::string journal = hledgerExport(exportedTransfer());
  EXPECT_THAT(journal, HasSubstr("    Assets:Bank:7314  150.00 EGP\n"
                                 "    Assets:Bank:4821  -150.00 EGP\n"));
  EXPECT_THAT(journal, HasSubstr("* (42) "));
  EXPECT_THAT(journal, Not(HasSubstr("* (43) ")));
}

TEST(AnHledgerExport, PostsAHalfAloneAgainstEquity) {
  EXPECT_THAT(hledgerExport({exportedTransfer().front()}),
              HasSubstr("    Equity:Transfers  -150.00 EGP\n"
                        "    Assets:Bank:7314  150.00 EGP\n"));
}

TEST(AnHledgerExport, KeepsNamesFromBecomingCommentsNotesOrAmounts) {
  LedgerEntry entry = exportedEntry();
  entry.description = "a; b | c\n    Assets:Bank  1 EGP";
  entry.category = "eating  out; :: 5";
  entry.reference = "R, date:2020-01-01";
  const std::string journal = hledgerExport({entry});
  EXPECT_THAT(journal, HasSubstr("* (42) a, b / c Assets:Bank 1 EGP\n"));
  EXPECT_THAT(journal, HasSubstr("    Expenses:eating out,:5  150.00 EGP\n"));
  EXPECT_THAT(journal, HasSubstr("    ; category: eating out; :: 5\n"));
  EXPECT_THAT(journal, HasSubstr("    ; reference: R date:2020-01-01\n"));
}

TEST(AnHledgerExport, HasTheDecimalsOfEachCurrency) {
  LedgerEntry yen = exportedEntry();
  yen.amount = Money{9223372036854775807, "JPY"};
  LedgerEntry dinar = exportedEntry();
  dinar.amount = Money{9223372036854775807, "KWD"};
  const std::string journal = hledgerExport({yen, dinar});
  EXPECT_THAT(journal, HasSubstr("  -9223372036854775807 JPY\n"));
  EXPECT_THAT(journal, HasSubstr("  -9223372036854775.807 KWD\n"));
}

TEST(AnHledgerExport, HasNoTransactionForNoEntries) {
  EXPECT_THAT(hledgerExport({}), Not(HasSubstr("*")));
}

}  // namespace
}  // namespace kivo::overview
