// Corrections, look-alikes and categories: names that differ only in their spelling are one.
#include <gmock/gmock.h>

#include "book/book_file.h"
#include "unit/recording/ledger_test.h"

namespace kivo::book {

using recording::LedgerTest;

using money::Kind;
using money::Money;
using recognition::Reading;

namespace {

class APayee : public LedgerTest {
 protected:
  static Reading of(const std::string& category) {
    Reading reading = spent(100);
    reading.category = category;
    return reading;
  }
};

TEST_F(APayee, IsTheSameInAnyCaseAndAccents) {
  Book book = open();
  for (const auto& [first, second] : {std::pair("Café Lune", "CAFÉ LUNE"),
                                      {"Магазин Рига", "МАГАЗИН РИГА"},
                                      {"Καφέ", "ΚΑΦΕ"},
                                      {"مقهى النيل", "مقهي النيل"}}) {
    const LedgerEntry one = recorded(book, std::string(first), spent(15000, first));
    EXPECT_FALSE(one.possibleDuplicateOf) << first;
    correct(book, one.id, {.category = "Mine"});
    const LedgerEntry other = recorded(book, std::string(second), spent(15000, second));
    EXPECT_EQ(other.possibleDuplicateOf, one.id) << second;
    EXPECT_EQ(other.category, "Mine") << second;
  }
}

TEST_F(APayee, HasOneCorrectionThatTheLastEditHolds) {
  Book book = open();
  recorded(book, "KEY-1", spent(100, "CAFÉ LUNE"));
  recorded(book, "KEY-2", spent(200, "Cafe Lune"));
  correct(book, 1, {.description = "Lune", .category = "Food"});
  correct(book, 2, {.category = "Treats"});
  const LedgerEntry later = recorded(book, "KEY-3", spent(300, "café lune"));
  EXPECT_EQ(later.description, "Lune");
  EXPECT_EQ(later.category, "Treats");
}

TEST_F(APayee, KeepsADescriptionOrACategoryThatItsCorrectionLacks) {
  Book book = open();
  recorded(book, "KEY-1", spent(100, "CAFE LUNE"));
  correct(book, 1, {.description = "Lune"});
  recorded(book, "KEY-2", spent(100, "CAFE SOL"));
  correct(book, 2, {.category = "Treats"});
  const LedgerEntry lune = recorded(book, "KEY-3", spent(200, "CAFE LUNE"));
  EXPECT_EQ(lune.description, "Lune");
  EXPECT_EQ(lune.category, "Groceries");
  const LedgerEntry sol = recorded(book, "KEY-4", spent(200, "CAFE SOL"));
  EXPECT_EQ(sol.description, "CAFE SOL");
  EXPECT_EQ(sol.category, "Treats");
}

TEST_F(APayee, HasNoCorrectionByAnEditOfASumOrWithoutAName) {
  Book book = open();
  recorded(book, "KEY-1", spent(100, "CAFE LUNE"));
  recorded(book, "KEY-2", spent(100, ""));
  correct(book, 1, {.amount = Money{200, "EGP"}});
  correct(book, 2, {.description = "Lune"});
  EXPECT_EQ(raw("SELECT count(*) FROM rules"), "0\n");
}

TEST_F(APayee, IsComparedThroughAnIndex) {
  open();
  EXPECT_THAT(
      raw("EXPLAIN QUERY PLAN SELECT id FROM transactions WHERE date = '2026-11-21' AND "
          "minor_units = 1 AND folded_payee = 'x' AND currency = 'EGP' AND kind = 'expense' "
          "AND user = 'u' AND id < 9 ORDER BY id LIMIT 1"),
      testing::AllOf(testing::HasSubstr("transactions_by_likeness"),
                     testing::Not(testing::HasSubstr("TEMP B-TREE"))));
}

TEST_F(APayee, IsComparedAgainWhenAnEntryIsEdited) {
  Book book = open();
  recorded(book, "KEY-1", spent(100));
  recorded(book, "KEY-2", spent(100));
  recorded(book, "KEY-3", spent(100));
  ASSERT_EQ(book.entry(3)->possibleDuplicateOf, 1);
  ASSERT_TRUE(book.edit(1, {.amount = Money{200, "EGP"}}));
  EXPECT_EQ(book.entry(2)->possibleDuplicateOf, std::nullopt);
  EXPECT_EQ(book.entry(3)->possibleDuplicateOf, 2);
  ASSERT_TRUE(book.edit(3, {.date = money::Day("2026-11-22")}));
  EXPECT_EQ(book.entry(3)->possibleDuplicateOf, std::nullopt);
  ASSERT_TRUE(book.edit(3, {.date = money::Day("2026-11-21"), .kind = Kind::income}));
  EXPECT_EQ(book.entry(3)->possibleDuplicateOf, std::nullopt);
  ASSERT_TRUE(book.edit(3, {.kind = Kind::expense}));
  EXPECT_EQ(book.entry(3)->possibleDuplicateOf, 2);
  ASSERT_TRUE(book.edit(1, {.amount = Money{100, "EGP"}}));  // the later ones look like it again
  EXPECT_EQ(book.entry(2)->possibleDuplicateOf, 1);
  EXPECT_EQ(book.entry(3)->possibleDuplicateOf, 1);
}

TEST_F(APayee, StaysALookAlikeByItsReference) {
  Book book = open();
  Reading reading = spent(100);
  reading.reference = "UTR 7";
  recorded(book, "KEY-1", reading);
  recorded(book, "KEY-2", reading);
  ASSERT_TRUE(book.edit(2, {.date = money::Day("2026-11-22"), .amount = Money{900, "EGP"}}));
  EXPECT_EQ(book.entry(2)->possibleDuplicateOf, 1);
}

TEST_F(APayee, GetsACategoryInTheSpellingOfTheBook) {
  Book book = open();
  EXPECT_EQ(recorded(book, "KEY-1", of("Groceries")).category, "Groceries");
  EXPECT_EQ(recorded(book, "KEY-2", of("GROCERIES")).category, "Groceries");
  ASSERT_TRUE(book.edit(1, {.category = "groceries"}));
  EXPECT_EQ(book.entry(1)->category, "Groceries");
  correct(book, 1, {.category = "café"});
  ASSERT_TRUE(book.edit(2, {.category = "CAFÉ"}));
  EXPECT_EQ(book.entry(2)->category, "café");
  EXPECT_EQ(recorded(book, "KEY-3", spent(100)).category, "café");  // by the correction
  EXPECT_EQ(book.entries({.category = "Cafe"}).size(), 3U);
}

TEST_F(APayee, GetsAStandardCategoryInItsOwnSpelling) {
  Book book = open();
  recorded(book, "KEY-1", of("Other"));
  ASSERT_TRUE(book.edit(1, {.category = "utilities"}));
  EXPECT_EQ(book.entry(1)->category, "Utilities");
}

TEST_F(APayee, MayGetAnotherSpellingOfACategoryThatNoOtherEntryHas) {
  Book book = open();
  recorded(book, "KEY-1", of("Other"));
  ASSERT_TRUE(book.edit(1, {.category = "treats"}));
  ASSERT_TRUE(book.edit(1, {.category = "Treats"}));
  EXPECT_EQ(book.entry(1)->category, "Treats");
}

TEST_F(APayee, GetsSubcategoriesInTheSpellingOfTheirParents) {
  Book book = open();
  recorded(book, "KEY-1", of("Food:Coffee"));
  EXPECT_EQ(recorded(book, "KEY-2", of("food:tea")).category, "Food:tea");
  EXPECT_EQ(recorded(book, "KEY-3", of("FOOD")).category, "Food");
  EXPECT_EQ(recorded(book, "KEY-4", of("foods:coffee")).category, "foods:coffee");
}

TEST_F(APayee, NeverGetsTheInnerNameOfTransfers) {
  Book book = open();
  recorded(book, "KEY-1", of("__system_transfer__"));
  EXPECT_EQ(book.entry(1)->category, "Transfer");
  correct(book, 1, {.category = "__system_transfer__"});
  EXPECT_EQ(book.entry(1)->category, "Transfer");
  EXPECT_EQ(recorded(book, "KEY-2", spent(100)).category, "Transfer");
}

}  // namespace
}  // namespace kivo::book
