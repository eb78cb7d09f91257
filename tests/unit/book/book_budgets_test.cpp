// The budgets that a book keeps.
#include <gmock/gmock.h>

#include "unit/recording/ledger_test.h"

namespace kivo::book {

using money::Month;
using recognition::Reading;
using recording::LedgerTest;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ABookWithBudgets : public LedgerTest {
 protected:
  static Budget budget(const std::string& category, std::int64_t minorUnits,
                       const std::optional<Month>& month = {}) {
    return {category, {minorUnits, "EGP"}, month};
  }
  static constexpr Month november{"2026-11"};
  static constexpr Month december{"2026-12"};
};

TEST_F(ABookWithBudgets, KeepsOneForEachCategoryInAnySpelling) {
  Book book = open();
  book.setBudget(budget("groceries", 300000));
  book.setBudget(budget("Dining", 90000));
  book.setBudget(budget(" GROCERIES", 350000));
  EXPECT_THAT(book.budgets(november),
              ElementsAre(budget("Dining", 90000), budget("Groceries", 350000)));
}

TEST_F(ABookWithBudgets, NamesTheCategoryAsItsEntriesDo) {
  Book book = open();
  book.setBudget(budget("food:tea", 100));
  Reading reading = spent(100);
  reading.category = "Food:Tea";
  recorded(book, "KEY", reading);
  EXPECT_THAT(book.budgets(november), ElementsAre(budget("Food:Tea", 100)));
}

TEST_F(ABookWithBudgets, PrefersTheBudgetOfAMonth) {
  Book book = open();
  book.setBudget(budget("Groceries", 350000, december));
  EXPECT_THAT(book.budgets(november), IsEmpty());
  book.setBudget(budget("Groceries", 300000));
  EXPECT_THAT(book.budgets(november), ElementsAre(budget("Groceries", 300000)));
  EXPECT_THAT(book.budgets(december), ElementsAre(budget("Groceries", 350000, december)));
}

TEST_F(ABookWithBudgets, RemovesTheBudgetOfAMonthAloneOrAll) {
  Book book = open();
  book.setBudget(budget("Groceries", 300000));
  book.setBudget(budget("Groceries", 350000, december));
  EXPECT_FALSE(book.removeBudget("Groceries", november));
  EXPECT_FALSE(book.removeBudget("Dining", {}));
  EXPECT_TRUE(book.removeBudget("GROCERIES", december));
  EXPECT_THAT(book.budgets(december), ElementsAre(budget("Groceries", 300000)));
  book.setBudget(budget("Groceries", 350000, december));
  EXPECT_TRUE(book.removeBudget("Groceries", {}));
  EXPECT_THAT(book.budgets(december), IsEmpty());
}

TEST_F(ABookWithBudgets, KnowsCategoriesThatAreStandardUsedOrGivenByARule) {
  Book book = open();
  Reading reading = spent(100);
  reading.category = "Food:Tea";
  recorded(book, "KEY", reading);
  book.keepRule("Zoo*", {.category = "Animals"});
  for (const char* const known : {"utilities", "food", "FOOD:TEA", "animals"}) {
    EXPECT_TRUE(book.knowsCategory(known)) << known;
  }
  for (const char* const unknown : {"Grocries", "Tea", "Zoo"}) {
    EXPECT_FALSE(book.knowsCategory(unknown)) << unknown;
  }
}

TEST_F(ABookWithBudgets, NotesEachPassedShareOnceAMonth) {
  Book book = open();
  EXPECT_TRUE(book.notePassedBudget("Groceries", november, 80));
  EXPECT_FALSE(open().notePassedBudget("groceries", november, 80));
  EXPECT_TRUE(book.notePassedBudget("Groceries", november, 100));
  EXPECT_FALSE(book.notePassedBudget("Groceries", november, 80));
  EXPECT_TRUE(book.notePassedBudget("Groceries", december, 80));
  EXPECT_TRUE(book.notePassedBudget("Dining", november, 100));
}

TEST_F(ABookWithBudgets, DoesNotTakeBackThatAPassedShareWasNoted) {
  Book book = open();
  UserCommand command{"budget Groceries 3000"};
  book.asCommand(command, [&] {
    book.setBudget(budget("Groceries", 300000));
    book.notePassedBudget("Groceries", november, 80);
  });
  EXPECT_EQ(book.history().front().budgets, 1);
  book.undo(1);
  EXPECT_THAT(book.budgets(november), IsEmpty());
  EXPECT_FALSE(book.notePassedBudget("Groceries", november, 80));
}

TEST_F(ABookWithBudgets, HoldsSettingsAndBringsThemBackFromABackup) {
  Book book = open();
  EXPECT_EQ(book.holds(), Book::Holds::nothing);
  book.setBudget(budget("Groceries", 300000));
  EXPECT_EQ(book.holds(), Book::Holds::settings);
  book.notePassedBudget("Groceries", november, 80);
  const auto path = folders_.home() / "book.kivo";
  book.backUp(path, {}, "1.2");
  book.removeBudget("Groceries", {});
  book.restore(Backup::read(path), [] {});
  EXPECT_THAT(book.budgets(november), ElementsAre(budget("Groceries", 300000)));
  EXPECT_FALSE(book.notePassedBudget("Groceries", november, 80));
}

}  // namespace
}  // namespace kivo::book
