// Rules for payees: which messages they fit, which rule decides, and what they do to earlier
// entries.
#include <array>
#include <random>

#include <gmock/gmock.h>

#include "book/book_file.h"
#include "unit/recording/ledger_test.h"

// The merchants and people below do not exist.

namespace kivo::book {

using recording::LedgerTest;

namespace {

using money::Kind;
using testing::ElementsAre;
using testing::IsEmpty;

class ARule : public LedgerTest {
 protected:
  KeptRule kept(const std::string& payee, const RuleMembers& members) {
    return book_.keepRule(payee, members).value();
  }
  // The entry of a new message that names `payee`.
  LedgerEntry of(const std::string& payee) {
    ++messages_;
    return recorded(book_, "KEY-" + std::to_string(messages_), spent(messages_, payee));
  }
  std::string categoryOf(const std::string& payee) { return of(payee).category; }

  Book book_ = open();
  int messages_ = 0;
};

TEST_F(ARule, GivesItsMembersToMessagesWhosePayeesFit) {
  kept("TALABAT*", {.description = "Talabat", .category = "Dining", .kind = Kind::transfer});
  const LedgerEntry entry = of("Talábat 1234");
  EXPECT_EQ(entry.description, "Talabat");
  EXPECT_EQ(entry.category, "Dining");
  EXPECT_EQ(entry.kind, Kind::transfer);
  EXPECT_EQ(entry.payee, "Talábat 1234");
  const LedgerEntry other = of("My Talabat");
  EXPECT_EQ(other.description, "My Talabat");
  EXPECT_EQ(other.category, "Groceries");
  EXPECT_EQ(other.kind, Kind::expense);
}

TEST_F(ARule, FitsArabicNamesInAllTheirSpellings) {
  kept("مكتبة*", {.category = "Books"});
  EXPECT_EQ(categoryOf("مكتبه النيل"), "Books");
  EXPECT_EQ(categoryOf("مَكتبة أحمد"), "Books");
  EXPECT_EQ(categoryOf("دار مكتبة"), "Groceries");
}

TEST_F(ARule, GivesWayToAMoreExactOne) {
  kept("TOWN GAS", {.category = "Exact"});
  kept("TOWN GAS*", {.category = "Longer"});
  kept("TOWN*", {.category = "Shorter"});
  kept("*TOWN", {.category = "Newer"});
  EXPECT_EQ(categoryOf("Town Gas"), "Exact");
  EXPECT_EQ(categoryOf("Town Gas 2"), "Longer");
  EXPECT_EQ(categoryOf("Town Hall"), "Shorter");
  EXPECT_EQ(categoryOf("Town"), "Newer");
}

TEST_F(ARule, LeavesAMemberThatItLacksToTheNext) {
  kept("TOWN*", {.description = "The town", .category = "Rent", .kind = Kind::transfer});
  kept("TOWN GAS*", {.category = "Utilities"});
  kept("TOWN GAS CO", {.description = "Gas"});
  const LedgerEntry entry = of("town gas co");
  EXPECT_EQ(entry.description, "Gas");
  EXPECT_EQ(entry.category, "Utilities");
  EXPECT_EQ(entry.kind, Kind::transfer);
}

TEST_F(ARule, OfAnEditFitsAStarInAPayeesNameAsAStar) {
  for (const char* const payee : {"UBER *TRIP", "*", "**", "＊", "\\*", "A\\B"}) {
    const std::int64_t id = of(payee).id;
    ASSERT_TRUE(book_.edit(id, {.category = "Odd"}));
    const auto rule = book_.keepRuleOf(id, {.category = "Odd"});
    ASSERT_TRUE(rule) << payee;
    EXPECT_EQ(categoryOf(payee), "Odd") << payee;
    EXPECT_EQ(categoryOf("Uber Eats Trip"), "Groceries") << payee;
    EXPECT_EQ(categoryOf("Town Gas"), "Groceries") << payee;
    ASSERT_EQ(book_.keepRule(rule->rule.payee, {.category = "Typed"})->rule.number,
              rule->rule.number)
        << payee;
    EXPECT_EQ(categoryOf(payee), "Typed") << payee;
    book_.removeRule(rule->rule.number);
  }
}

TEST_F(ARule, IsNotKeptForEverybodyOrWithoutMembers) {
  EXPECT_FALSE(book_.keepRule("*", {.category = "Fun"}));
  EXPECT_FALSE(book_.keepRule(" ", {.category = "Fun"}));
  EXPECT_FALSE(book_.keepRule("TOWN GAS", {}));
  of("");
  EXPECT_FALSE(book_.keepRuleOf(1, {.category = "Fun"}));
  EXPECT_FALSE(book_.keepRuleOf(9, {.category = "Fun"}));
  EXPECT_THAT(book_.rules(), IsEmpty());
}

TEST_F(ARule, GetsMembersThatAreGivenForItsPatternAgain) {
  const KeptRule first = kept("Town Gas*", {.category = "Fun"});
  EXPECT_FALSE(first.before);
  const KeptRule second = kept("TOWN  GAS**", {.description = "Gas", .category = "utilities"});
  EXPECT_EQ(second.rule.number, first.rule.number);
  EXPECT_EQ(second.rule.payee, "Town Gas*");
  EXPECT_EQ(second.before, RuleMembers{.category = "Fun"});
  EXPECT_EQ(second.given, (RuleMembers{.description = "Gas", .category = "Utilities"}));
  const KeptRule third = kept("town gas*", {.kind = Kind::transfer});
  EXPECT_EQ(third.rule.members,
            (RuleMembers{.description = "Gas", .category = "Utilities", .kind = Kind::transfer}));
  EXPECT_EQ(book_.rules().size(), 1U);
}

TEST_F(ARule, IsListedByItsPatternAndRemovedByItsNumber) {
  kept("Zed*", {.category = "Fun"});
  kept("abc", {.description = "ABC"});
  const auto rules = book_.rules();
  ASSERT_EQ(rules.size(), 2U);
  EXPECT_EQ(rules[0].payee, "abc");
  EXPECT_EQ(rules[0].members, RuleMembers{.description = "ABC"});
  EXPECT_EQ(rules[1].payee, "Zed*");
  EXPECT_EQ(book_.removeRule(1)->payee, "Zed*");
  EXPECT_FALSE(book_.removeRule(1));
  EXPECT_EQ(kept("Zed*", {.category = "Fun"}).rule.number, 3);
}

TEST_F(ARule, ChangesEarlierEntriesThatItFits) {
  of("Town Gas 1");
  of("Town Gas 2");
  of("Another");
  raw("UPDATE transactions SET state = 'review' WHERE id = 2");
  const KeptRule rule = kept("town gas*", {.description = "Gas", .category = "utilities"});
  const EarlierEntries found = book_.earlierFor(rule);
  EXPECT_THAT(found.changing, ElementsAre(1, 2));
  EXPECT_EQ(book_.entry(1)->category, "Groceries");
  EXPECT_THAT(book_.changeEarlier(rule).changing, ElementsAre(1, 2));
  for (const std::int64_t id : {1, 2}) {
    EXPECT_EQ(book_.entry(id)->description, "Gas");
    EXPECT_EQ(book_.entry(id)->category, "Utilities");
    EXPECT_FALSE(book_.entry(id)->edited);
  }
  EXPECT_EQ(book_.entry(2)->state, LedgerEntry::State::review);
  EXPECT_EQ(book_.entry(3)->category, "Groceries");
  EXPECT_THAT(book_.earlierFor(rule).changing, IsEmpty());
}

TEST_F(ARule, LeavesEarlierEntriesThatTheUserEdited) {
  of("Town Gas");
  of("Town Gas");
  of("Town Gas");
  ASSERT_TRUE(book_.edit(2, {.category = "Mine"}));
  ASSERT_TRUE(book_.edit(3, {.category = "Utilities"}));
  const KeptRule rule = kept("Town Gas", {.category = "Utilities"});
  const EarlierEntries changed = book_.changeEarlier(rule);
  EXPECT_THAT(changed.changing, ElementsAre(1));
  EXPECT_THAT(changed.edited, ElementsAre(2));  // the third has the category already
  EXPECT_EQ(book_.entry(2)->category, "Mine");
}

TEST_F(ARule, LeavesEarlierEntriesThatAMoreExactOneHas) {
  of("Town Gas");
  of("Town Hall");
  kept("Town Gas", {.category = "Gas"});
  const KeptRule rule = kept("Town*", {.description = "Town", .category = "Utilities"});
  EXPECT_THAT(book_.changeEarlier(rule).changing, ElementsAre(1, 2));
  EXPECT_EQ(book_.entry(1)->description, "Town");
  EXPECT_EQ(book_.entry(1)->category, "Groceries");
  EXPECT_EQ(book_.entry(2)->category, "Utilities");
}

TEST_F(ARule, ChangesInEarlierEntriesOnlyWhatIsGivenNow) {
  of("Town Gas");
  kept("Town Gas", {.description = "Gas"});
  const KeptRule rule = kept("Town Gas", {.category = "Utilities"});
  book_.changeEarlier(rule);
  EXPECT_EQ(book_.entry(1)->description, "Town Gas");
  EXPECT_EQ(book_.entry(1)->category, "Utilities");
}

TEST_F(ARule, ChangesNoEarlierEntryOnceItIsRemoved) {
  of("Town Gas");
  const KeptRule rule = kept("Town Gas", {.category = "Utilities"});
  book_.removeRule(rule.rule.number);
  EXPECT_THAT(book_.changeEarlier(rule).changing, IsEmpty());
}

TEST_F(ARule, HasLookAlikesLookedForAgainByTheKindThatItGives) {
  recorded(book_, "A", spent(100, "Town Gas"));
  recorded(book_, "B", spent(100, "Town Gas"));
  ASSERT_EQ(book_.entry(2)->possibleDuplicateOf, 1);
  ASSERT_TRUE(book_.edit(1, {.category = "Mine"}));
  book_.changeEarlier(kept("Town Gas", {.kind = Kind::transfer}));
  EXPECT_EQ(book_.entry(2)->kind, Kind::transfer);
  EXPECT_EQ(book_.entry(2)->possibleDuplicateOf, std::nullopt);
}

TEST_F(ARule, IsTakenBackWithWhatItChanged) {
  of("Town Gas");
  kept("Town Gas", {.category = "Fun"});
  kept("Gone", {.category = "Fun"});
  UserCommand command{.words = "rules add"};
  book_.asCommand(command, [&] {
    book_.changeEarlier(kept("Town Gas", {.description = "Gas", .category = "Utilities"}));
    kept("New*", {.category = "Fun"});
    book_.removeRule(2);
  });
  ASSERT_EQ(book_.entry(1)->description, "Gas");
  book_.undo(1);
  EXPECT_EQ(book_.entry(1)->description, "Town Gas");
  EXPECT_EQ(book_.entry(1)->category, "Groceries");
  const auto rules = book_.rules();
  ASSERT_EQ(rules.size(), 2U);
  EXPECT_EQ(rules[0].payee, "Gone");
  EXPECT_EQ(rules[1].members, RuleMembers{.category = "Fun"});
}

TEST_F(ARule, LeavesNothingBehindWhenItIsRemoved) {
  std::mt19937 random(11);
  constexpr std::array marks = {"a", "B", "é", " ", "\\", "*"};
  const auto text = [&](std::size_t choice) {
    std::string made = "a";
    for (auto left = random() % 5; left > 0; --left) made += marks[random() % choice];
    return made;
  };
  kept("a*", {.category = "Kept"});
  int fitting = 0;
  for (int round = 0; round < 60; ++round) {
    const std::string pattern = text(6) + "*" + text(6);
    std::string payee;  // that often fits the pattern
    for (const char mark : pattern) payee += mark == '*' ? text(5) : std::string(1, mark);
    const LedgerEntry before = of(payee);
    const KeptRule rule =
        kept(pattern, {.description = "D", .category = "C", .kind = Kind::transfer});
    if (of(payee).description == "D") ++fitting;
    book_.removeRule(rule.rule.number);
    const LedgerEntry after = of(payee);
    EXPECT_EQ(after.description, before.description) << payee << " by " << pattern;
    EXPECT_EQ(after.category, before.category) << payee << " by " << pattern;
    EXPECT_EQ(after.kind, before.kind) << payee << " by " << pattern;
  }
  EXPECT_GT(fitting, 20);
}

TEST_F(ARule, IsLookedUpThroughIndexes) {
  const std::string plan =
      raw("EXPLAIN QUERY PLAN SELECT number FROM rules WHERE payee = 'a' "
          "UNION ALL SELECT number FROM rules WHERE has_wildcard AND payee <> 'a'");
  EXPECT_THAT(plan, testing::HasSubstr("sqlite_autoindex_rules_1 (payee=?)"));
  EXPECT_THAT(plan, testing::HasSubstr("rules_with_wildcard"));
}

}  // namespace
}  // namespace kivo::book
