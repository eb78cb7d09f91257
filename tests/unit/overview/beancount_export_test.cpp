#include "overview/exports/beancount_export.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "exported_entry.h"

namespace kivo::overview {

using book::LedgerEntry;

namespace {

using testing::HasSubstr;
using testing::Not;

// The account of an expense in this category.
std::string accountFor(const std::string& category) {
  LedgerEntry entry = exportedEntry();
  entry.category = category;
  const std::string file = beancountExport({entry});
  const std::size_t at = file.find("open Expenses:") + 5;
  return file.substr(at, file.find('\n', at) - at);
}

TEST(ABeancountExport, OpensAccountsAndBalancesEachEntry) {
  EXPECT_EQ(beancountExport({exportedEntry()}),
            std::string("; Written by kivo-ledger. Another export replaces it.\n"
                        "2026-11-21 open Assets:Bank:4821\n"
                        "2026-11-21 open Expenses:Groceries\n"
                        "\n"
                        "2026-11-21 * \"Carrefour City\" \"\"\n"
                        "  kivo-id: \"") +
                exportedId +
                "\"\n"
                "  reference: \"REF7\"\n"
                "  Expenses:Groceries  150.00 EGP\n"
                "  Assets:Bank:4821  -150.00 EGP\n");
}

TEST(ABeancountExport, PostsAForeignSumWithItsPrice) {
  EXPECT_THAT(beancountExport({convertedEntry()}),
              HasSubstr("  Expenses:Groceries  20.00 USD @@ 970.00 EGP\n"
                        "  Assets:Bank:4821  -970.00 EGP\n"));
}

TEST(ABeancountExport, OpensAnAccountOnceOnTheDayOfItsFirstEntry) {
  LedgerEntry later = exportedEntry();
  later.date = "2026-12-31";
  later.category = "Travel";
  const std::string file = beancountExport({exportedEntry(), later});
  EXPECT_THAT(file,
              HasSubstr("2026-11-21 open Assets:Bank:4821\n2026-11-21 open Expenses:Groceries\n"
                        "2026-12-31 open Expenses:Travel\n\n"));
}

TEST(ABeancountExport, MakesACategoryAnAccountThatBeancountTakes) {
  EXPECT_EQ(accountFor("eating out"), "Expenses:Eating-out");
  EXPECT_EQ(accountFor("Food:coffee & cake"), "Expenses:Food:Coffee-cake");
  EXPECT_EQ(accountFor("1st"), "Expenses:1st");
  EXPECT_EQ(accountFor("équipe"), "Expenses:Équipe");
  EXPECT_EQ(accountFor("بقالة النور"), "Expenses:X-بقالة-النور");
  EXPECT_EQ(accountFor("ßharp"), "Expenses:X-ßharp");
  EXPECT_EQ(accountFor(" -a- "), "Expenses:A");
}

TEST(ABeancountExport, KeepsTheLettersThatBeancountKnowsAlone) {
  EXPECT_EQ(accountFor("ක"), "Expenses:X-ක");    // since Unicode 3.0
  EXPECT_EQ(accountFor("ⴰ"), "Expenses:Other");  // since Unicode 4.1
}

TEST(ABeancountExport, NamesACategoryOtherOfWhichNoLetterCanStay) {
  for (const char* const category : {"", "🍕", "::", "日本", "한국"}) {
    EXPECT_EQ(accountFor(category), "Expenses:Other") << category;
  }
}

TEST(ABeancountExport, KeepsTheCategoryWhereTheAccountDiffers) {
  LedgerEntry entry = exportedEntry();
  entry.category = "日本";
  EXPECT_THAT(beancountExport({entry}), HasSubstr("  category: \"日本\"\n"));
  EXPECT_THAT(beancountExport({exportedEntry()}), Not(HasSubstr("category:")));
}

TEST(ABeancountExport, EscapesQuotesAndBackslashes) {
  LedgerEntry entry = exportedEntry();
  entry.description = "a \"b\" \\ c\n2026-01-01 open X";
  EXPECT_THAT(beancountExport({entry}), HasSubstr(R"(* "a \"b\" \\ c 2026-01-01 open X" "")"));
}

TEST(ABeancountExport, IsACommentForNoEntries) {
  EXPECT_EQ(beancountExport({}), "; Written by kivo-ledger. Another export replaces it.\n");
}

TEST(ABeancountExport, PostsBothHalvesOfATransferOnce) {
  const std::string file = beancountExport(exportedTransfer());
  EXPECT_THAT(file, testing::HasSubstr("  Assets:Bank:7314  150.00 EGP\n"
                                       "  Assets:Bank:4821  -150.00 EGP\n"));
  EXPECT_THAT(file, testing::Not(testing::HasSubstr("kivo-id: \"43-")));
}

}  // namespace
}  // namespace kivo::overview
