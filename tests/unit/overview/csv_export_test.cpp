#include "overview/exports/csv_export.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "exported_entry.h"

namespace kivo::overview {

using book::LedgerEntry;
using money::Kind;
using money::Money;

namespace {

constexpr const char* header =
    "date,kind,amount,currency,description,category,account,reference,id\n";

// The record of an entry with this description.
std::string recordOf(const std::string& description) {
  LedgerEntry entry = exportedEntry();
  entry.description = description;
  return csvExport({entry}).substr(std::string(header).size());
}

std::string around(const std::string& field) {
  return "2026-11-21,expense,150.00,EGP," + field + ",Groceries,4821,REF7,42\n";
}

TEST(ACsvExport, HasARecordForEachEntry) {
  LedgerEntry income = exportedEntry();
  income.id = 43;
  setKind(income, Kind::income);
  income.amount = Money{5, "KWD"};
  income.account = income.reference = "";
  EXPECT_EQ(csvExport({exportedEntry(), income}),
            std::string(header) + around("Carrefour City") +
                "2026-11-21,income,0.005,KWD,Carrefour City,Groceries,,,43\n");
}

TEST(ACsvExport, IsItsHeaderForNoEntries) { EXPECT_EQ(csvExport({}), header); }

TEST(ACsvExport, QuotesSeparatorsLineBreaksAndOuterBlanks) {
  EXPECT_EQ(recordOf("a,b"), around(R"("a,b")"));
  EXPECT_EQ(recordOf("a;b"), around(R"("a;b")"));
  EXPECT_EQ(recordOf("a\tb"), around("\"a\tb\""));
  EXPECT_EQ(recordOf("a\r\nb"), around("\"a\r\nb\""));
  EXPECT_EQ(recordOf(R"(Joe's "Best")"), around(R"("Joe's ""Best""")"));
  EXPECT_EQ(recordOf(" a "), around(R"(" a ")"));
  EXPECT_EQ(recordOf("بقالة النور"), around("بقالة النور"));
}

TEST(ACsvExport, PutsAnApostropheBeforeAFormula) {
  for (const char* const sign : {"=", "+", "-", "@", "＝"}) {
    EXPECT_EQ(recordOf(std::string(sign) + "A1"), around("'" + std::string(sign) + "A1"));
  }
  EXPECT_EQ(recordOf(" \t=A1"), around("\"' \t=A1\""));
  EXPECT_EQ(recordOf("'=A1"), around("''=A1"));
  EXPECT_EQ(recordOf("\u00a0 \u200b'=A1"), around("'\u00a0 \u200b'=A1"));
  EXPECT_EQ(recordOf("'A1"), around("'A1"));
  EXPECT_EQ(recordOf("a=b"), around("a=b"));
}

TEST(ACsvExport, PutsAnApostropheBeforeAFormulaBehindInvisibleCharacters) {
  for (const char* const lead :
       {"\u00a0", "\u3000", "\u2028", "\u2029", "\ufeff", "\u200b", "\u00ad", "\u202e", "\x01",
        "\v", "\f", "\x7f", "\u0085", "\U000e0020"}) {
    const std::string text = lead + std::string("@A1");
    EXPECT_EQ(recordOf(text), around("'" + text)) << text;
    EXPECT_EQ(recordOf(lead + std::string("A1")), around(lead + std::string("A1")));
  }
}

TEST(ACsvExport, HasATransferBetweenOwnAccountsOnce) {
  const std::string csv = csvExport(exportedTransfer());
  EXPECT_EQ(csv.substr(csv.find('\n') + 1),
            "2026-11-21,transfer,150.00,EGP,Carrefour City,Groceries,4821,REF7,42\n");
}

TEST(ACsvExport, HasARefundAsAnIncome) {
  LedgerEntry entry = exportedEntry();
  setKind(entry, Kind::income);
  entry.refund = true;
  EXPECT_THAT(csvExport({entry}), testing::HasSubstr("2026-11-21,income,150.00,"));
}

}  // namespace
}  // namespace kivo::overview
