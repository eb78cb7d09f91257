// Two messages of one transfer between a person's own accounts.
#include <map>
#include <random>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "unit/recording/ledger_test.h"

namespace kivo::book {

using money::Kind;
using money::Money;
using money::Period;
using recognition::Outcome;
using recognition::Reading;
using recording::LedgerTest;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::int64_t largest = money::largestSum;

class AnOwnTransfer : public LedgerTest {
 protected:
  static Reading half(Kind kind, const std::string& account, const std::string& reference = "R1",
                      std::int64_t minorUnits = 50000) {
    Reading reading = spent(minorUnits, "");
    reading.kind = kind;
    reading.description = "Transfer";
    reading.category = "Other";
    reading.account = account;
    reading.reference = reference;
    return reading;
  }
  static Reading out(const std::string& reference = "R1") {
    return half(Kind::expense, "1111", reference);
  }
  static Reading in(const std::string& reference = "R1") {
    return half(Kind::income, "2222", reference);
  }
  std::int64_t add(const Reading& reading, const money::Day& date = "2026-11-21") {
    return recorded(book_, "KEY-" + std::to_string(++keys_), reading, date).id;
  }
  // Runs `steps` as a command.
  void asCommand(const std::function<void()>& steps) {
    UserCommand command{.words = "command"};
    book_.asCommand(command, steps);
  }
  [[nodiscard]] bool arePair(std::int64_t one, std::int64_t other) const {
    const auto first = book_.entry(one);
    const auto second = book_.entry(other);
    return first && second && first->counterpart == other && second->counterpart == one;
  }
  [[nodiscard]] bool isFree(std::int64_t id) const { return !book_.entry(id)->counterpart; }
  // The sum of a kind in November 2026.
  [[nodiscard]] std::int64_t sum(Kind kind) const {
    std::int64_t found = 0;
    for (const auto& group : book_.sumsByMonth(Period::of(money::Month("2026-11")), largest)) {
      if (group.kind == kind) found += group.sum.minorUnits;
    }
    return found;
  }
  // All of the booked entries that lists show.
  [[nodiscard]] std::string everything() const {
    std::string text;
    for (const auto state : {LedgerEntry::State::booked, LedgerEntry::State::review}) {
      for (const LedgerEntry& entry : book_.entries({.state = state})) {
        text += std::to_string(entry.id) + " " + entry.date.text() + " " + kindWord(entry) + " " +
                (entry.incoming ? "in " : "out ") +
                (entry.amount ? amountText(*entry.amount) : "?") + " " + entry.category + " " +
                entry.description + " " + std::to_string(entry.counterpart.value_or(0)) + " " +
                std::to_string(entry.possibleDuplicateOf.value_or(0)) + "\n";
      }
    }
    for (const auto& [one, other] : book_.likelyPairs()) {
      text += std::to_string(one) + "-" + std::to_string(other) + "\n";
    }
    return text;
  }

  Book book_ = open();
  int keys_ = 0;
};

TEST_F(AnOwnTransfer, IsPairedByItsReference) {
  const auto one = add(out());
  const auto other = add(in());
  EXPECT_TRUE(arePair(one, other));
}

TEST_F(AnOwnTransfer, IsPairedInEitherOrderOfArrival) {
  const auto one = add(in(), "2026-11-22");
  const auto other = add(out(), "2026-11-20");
  EXPECT_TRUE(arePair(one, other));
}

TEST_F(AnOwnTransfer, HasNoHalfThatLooksLikeTheOther) {
  const auto one = add(out());
  const auto other = add(in());
  EXPECT_FALSE(book_.entry(one)->possibleDuplicateOf);
  EXPECT_FALSE(book_.entry(other)->possibleDuplicateOf);
}

TEST_F(AnOwnTransfer, PairsACardsBillWithItsMessageAtTheCard) {
  Reading atCard = half(Kind::transfer, "2222");
  atCard.incoming = true;
  const auto one = add(half(Kind::transfer, "1111"));
  const auto other = add(atCard);
  EXPECT_TRUE(arePair(one, other));
  EXPECT_FALSE(book_.entry(other)->possibleDuplicateOf);
}

TEST_F(AnOwnTransfer, IsNotPairedWithTheSameDirection) {
  const auto one = add(out());
  const auto other = add(half(Kind::expense, "2222"));
  EXPECT_TRUE(isFree(one));
  EXPECT_TRUE(isFree(other));
  EXPECT_EQ(book_.entry(other)->possibleDuplicateOf, one);
}

TEST_F(AnOwnTransfer, IsNotPairedWithAnotherSum) {
  const auto one = add(out());
  EXPECT_TRUE(isFree(add(half(Kind::income, "2222", "R1", 50001))));
  EXPECT_TRUE(isFree(one));
}

TEST_F(AnOwnTransfer, IsNotPairedWithinOneAccount) {
  add(out());
  EXPECT_TRUE(isFree(add(half(Kind::income, "1111"))));
  EXPECT_THAT(book_.likelyPairs(), IsEmpty());
}

TEST_F(AnOwnTransfer, IsNotPairedWithAnUnknownAccount) {
  add(out());
  EXPECT_TRUE(isFree(add(half(Kind::income, ""))));
  EXPECT_THAT(book_.likelyPairs(), IsEmpty());
}

TEST_F(AnOwnTransfer, IsNotPairedThreeDaysApart) {
  add(out(), "2026-11-18");
  EXPECT_TRUE(isFree(add(in(), "2026-11-21")));
  EXPECT_THAT(book_.likelyPairs(), IsEmpty());
}

TEST_F(AnOwnTransfer, IsNotPairedWithARefund) {
  add(out());
  Reading refund = in();
  refund.refund = true;
  EXPECT_TRUE(isFree(add(refund)));
  EXPECT_THAT(book_.likelyPairs(), IsEmpty());
}

TEST_F(AnOwnTransfer, IsPairedWhenAHalfInReviewIsAccepted) {
  const auto one = add(out());
  Reading doubtful = in();
  doubtful.outcome = Outcome::needsReview;
  const auto other = add(doubtful);
  EXPECT_TRUE(isFree(one));
  EXPECT_THAT(book_.likelyPairs(), IsEmpty());
  accept(book_, other);
  EXPECT_TRUE(arePair(one, other));
}

TEST_F(AnOwnTransfer, LeavesAThirdMessageWithItsReferenceAlone) {
  const auto one = add(out());
  const auto other = add(in());
  const auto third = add(half(Kind::income, "3333"));
  EXPECT_TRUE(arePair(one, other));
  EXPECT_TRUE(isFree(third));
  EXPECT_EQ(book_.entry(third)->possibleDuplicateOf, one);
}

TEST_F(AnOwnTransfer, CountsOnceAsTransferred) {
  add(out());
  EXPECT_EQ(sum(Kind::expense), 50000);
  add(in());
  EXPECT_EQ(sum(Kind::expense), 0);
  EXPECT_EQ(sum(Kind::income), 0);
  EXPECT_EQ(sum(Kind::transfer), 50000);
}

TEST_F(AnOwnTransfer, IsOneHalfAloneWhenTheOtherIsDeleted) {
  const auto one = add(out());
  const auto other = add(in());
  asCommand([&] { book_.remove(other); });
  EXPECT_TRUE(isFree(one));
  EXPECT_EQ(sum(Kind::expense), 50000);
  book_.undo(1);
  EXPECT_TRUE(arePair(one, other));
}

TEST_F(AnOwnTransfer, IsPartedByAnEditAfterWhichItsHalvesDoNotFit) {
  const auto one = add(out());
  const auto other = add(in());
  asCommand([&] { book_.edit(one, {.amount = Money{49900, "EGP"}}); });
  EXPECT_TRUE(isFree(one));
  EXPECT_TRUE(isFree(other));
  book_.undo(1);
  ASSERT_TRUE(arePair(one, other));
  asCommand([&] { book_.edit(other, {.kind = Kind::expense}); });
  EXPECT_TRUE(isFree(one));
  EXPECT_TRUE(isFree(other));
  book_.undo(1);
  EXPECT_TRUE(arePair(one, other));
}

TEST_F(AnOwnTransfer, StaysAPairAfterOtherEdits) {
  const auto one = add(out());
  const auto other = add(in());
  book_.edit(one, {.kind = Kind::transfer, .description = "To savings"});
  book_.edit(other, {.date = money::Day("2026-11-29"), .category = "Savings"});
  EXPECT_TRUE(arePair(one, other));
}

TEST_F(AnOwnTransfer, IsOfferedWhenOnlyTheSumIsTheSame) {
  const auto one = add(out("R1"), "2026-11-19");
  const auto other = add(in(""));
  EXPECT_TRUE(isFree(one));
  EXPECT_THAT(book_.likelyPairs(), ElementsAre(LikelyPair{one, other}));
  EXPECT_EQ(sum(Kind::expense), 50000);
  EXPECT_EQ(sum(Kind::income), 50000);
}

TEST_F(AnOwnTransfer, IsOfferedOnceForEachEntry) {
  const auto one = add(out(""));
  const auto two = add(out(""));
  const auto first = add(in(""));
  EXPECT_THAT(book_.likelyPairs(), ElementsAre(LikelyPair{one, first}));
  const auto second = add(in(""));
  EXPECT_THAT(book_.likelyPairs(), ElementsAre(LikelyPair{one, second}, LikelyPair{two, first}));
}

TEST_F(AnOwnTransfer, IsPairedByAPersonUntilTheyTakeItBack) {
  const auto one = add(out(""), "2026-11-01");
  const auto other = add(half(Kind::income, "", "", 50000));
  asCommand([&] { EXPECT_TRUE(book_.pair(one, other)); });
  EXPECT_TRUE(arePair(one, other));
  EXPECT_FALSE(book_.pair(other, one));
  book_.undo(1);
  EXPECT_TRUE(isFree(one));
  EXPECT_TRUE(isFree(other));
}

TEST_F(AnOwnTransfer, CannotBeOfEntriesThatDoNotFit) {
  const auto one = add(out(""));
  EXPECT_FALSE(book_.pair(one, one));
  EXPECT_FALSE(book_.pair(one, 99));
  EXPECT_FALSE(book_.pair(one, add(half(Kind::income, "2222", "", 1))));
  EXPECT_FALSE(book_.pair(one, add(half(Kind::expense, "2222", ""))));
}

TEST_F(AnOwnTransfer, IsNotOfferedAgainAfterItWasParted) {
  const auto one = add(out());
  const auto other = add(in());
  asCommand([&] { EXPECT_TRUE(book_.unpair(other, one)); });
  EXPECT_TRUE(isFree(one));
  EXPECT_TRUE(isFree(other));
  EXPECT_THAT(book_.likelyPairs(), IsEmpty());
  EXPECT_FALSE(book_.unpair(one, other));
  accept(book_, other);
  EXPECT_TRUE(isFree(one));
  asCommand([&] { EXPECT_TRUE(book_.pair(one, other)); });
  book_.undo(1);
  EXPECT_THAT(book_.likelyPairs(), IsEmpty());
  book_.undo(1);
  EXPECT_TRUE(arePair(one, other));
}

TEST_F(AnOwnTransfer, IsNotOfferedAgainAfterAPersonDeclined) {
  const auto one = add(out(""));
  const auto other = add(in(""));
  asCommand([&] { EXPECT_TRUE(book_.unpair(one, other)); });
  EXPECT_THAT(book_.likelyPairs(), IsEmpty());
  EXPECT_EQ(book_.history().front().transactions, 2);
  book_.undo(1);
  EXPECT_THAT(book_.likelyPairs(), ElementsAre(LikelyPair{one, other}));
}

TEST_F(AnOwnTransfer, IsNotPartedThroughAnotherEntry) {
  const auto one = add(out());
  const auto other = add(in());
  const auto third = add(half(Kind::income, "3333", ""));
  EXPECT_FALSE(book_.unpair(one, third));
  EXPECT_TRUE(arePair(one, other));
}

TEST_F(AnOwnTransfer, LosesTheHalfThatAnUndoRemoves) {
  std::int64_t one = 0;
  asCommand([&] { one = add(out()); });
  const auto other = add(in());
  ASSERT_TRUE(arePair(one, other));
  book_.undo(1);
  EXPECT_TRUE(isFree(other));
  EXPECT_EQ(sum(Kind::income), 50000);
}

TEST_F(AnOwnTransfer, KeepsTheHalfThatCameAfterAnEditIsTakenBack) {
  const auto one = add(out());
  asCommand([&] { book_.edit(one, {.description = "To savings"}); });
  const auto other = add(in());
  book_.undo(1);
  EXPECT_TRUE(arePair(one, other));
}

TEST_F(AnOwnTransfer, LosesTheHalfThatFitOnlyWhileAnEditHeld) {
  const auto one = add(half(Kind::expense, "1111", "R1", 49900));
  asCommand([&] { book_.edit(one, {.amount = Money{50000, "EGP"}}); });
  const auto other = add(in());
  ASSERT_TRUE(arePair(one, other));
  book_.undo(1);
  EXPECT_TRUE(isFree(one));
  EXPECT_TRUE(isFree(other));
}

TEST_F(AnOwnTransfer, ComesBackWithABackupAsDoesAPartedOne) {
  const auto one = add(out());
  const auto other = add(in());
  const auto third = add(half(Kind::expense, "3333", "", 7));
  const auto fourth = add(half(Kind::income, "4444", "", 7));
  ASSERT_TRUE(book_.unpair(third, fourth));
  const auto backup = folders_.dataHome() / "backup";
  book_.backUp(backup, {}, "test");
  ASSERT_TRUE(book_.unpair(one, other));
  book_.restore(Backup::read(backup), [] {});
  EXPECT_TRUE(arePair(one, other));
  EXPECT_THAT(book_.likelyPairs(), IsEmpty());
}

// Books of entries with few sums, days and accounts, so that many fit.
class ARandomBook : public AnOwnTransfer {
 protected:
  int below(int end) { return std::uniform_int_distribution<int>(0, end - 1)(numbers_); }
  void addRandom() {
    Reading reading =
        half(below(2) == 0 ? Kind::expense : Kind::income, std::to_string(1111 * (1 + below(3))),
             below(3) == 0 ? "R" + std::to_string(below(4)) : "", 100 * (1 + below(3)));
    reading.category = below(2) == 0 ? "Dining" : "Groceries";
    reading.description = reading.category;
    reading.refund = reading.kind == Kind::income && below(3) == 0;
    add(reading, money::Day("2026-11-10").before(below(5)));
  }
  // The balance of each account: all that came in less all that went out.
  [[nodiscard]] std::map<std::string, std::int64_t> balances() const {
    std::map<std::string, std::int64_t> found;
    for (const LedgerEntry& entry : book_.entries({})) {
      found[entry.account] += (entry.incoming ? 1 : -1) * entry.amount->minorUnits;
    }
    return found;
  }
  [[nodiscard]] std::int64_t receivedLessSpent() const {
    return sum(Kind::income) - sum(Kind::expense);
  }
  [[nodiscard]] std::int64_t categories() const {
    std::int64_t found = 0;
    const Period november = Period::of(money::Month("2026-11"));
    for (const auto& group : book_.sumsByName(Names::category, november, largest)) {
      if (group.kind == Kind::expense) found += group.sum.minorUnits;
    }
    return found;
  }
  std::int64_t anyId() {
    const auto entries = book_.entries({});
    return entries[static_cast<std::size_t>(below(static_cast<int>(entries.size())))].id;
  }
  void changeAtRandom() {
    const std::int64_t id = anyId();
    switch (below(6)) {
      case 0:
        book_.edit(id, {.amount = Money{100 * (1 + below(3)), "EGP"}});
        break;
      case 1:
        book_.edit(id, {.kind = below(2) == 0 ? Kind::expense : Kind::income});
        break;
      case 2:
        book_.edit(id, {.refund = below(2) == 0});
        break;
      case 3:
        book_.remove(id);
        break;
      case 4:
        book_.pair(id, anyId());
        break;
      default:
        book_.unpair(id, anyId());
    }
  }

  std::mt19937 numbers_{20261123};
};

TEST_F(ARandomBook, HasCategoriesWhoseSumIsWhatWasSpent) {
  for (int count = 0; count < 60; ++count) {
    addRandom();
    EXPECT_EQ(categories(), sum(Kind::expense));
  }
}

TEST_F(ARandomBook, KeepsItsBalancesAndWhatIsLeftWhenAPairIsMade) {
  for (int count = 0; count < 60; ++count) addRandom();
  int made = 0;
  for (const auto& [one, other] : book_.likelyPairs()) {
    const auto balancesBefore = balances();
    const auto leftBefore = receivedLessSpent();
    ASSERT_TRUE(book_.pair(one, other));
    EXPECT_EQ(balances(), balancesBefore);
    EXPECT_EQ(receivedLessSpent(), leftBefore);
    ++made;
  }
  EXPECT_GT(made, 3);
}

TEST_F(ARandomBook, IsAsBeforeWhenACommandIsTakenBack) {
  for (int count = 0; count < 40; ++count) addRandom();
  for (int count = 0; count < 150; ++count) {
    const std::string before = everything();
    const auto commands = book_.history().size();
    asCommand([&] { changeAtRandom(); });
    if (book_.history().size() == commands) continue;  // it changed nothing
    if (count % 3 == 0) continue;
    book_.undo(1);
    ASSERT_EQ(everything(), before) << count;
  }
}

TEST_F(ARandomBook, HasTwoHalvesOfEachPairThatNameEachOther) {
  for (int count = 0; count < 40; ++count) addRandom();
  for (int count = 0; count < 150; ++count) {
    asCommand([&] { changeAtRandom(); });
    addRandom();
    if (count % 4 == 0) book_.undo(1);
    for (const LedgerEntry& entry : book_.entries({})) {
      if (!entry.counterpart) continue;
      const auto other = book_.entry(*entry.counterpart);
      ASSERT_TRUE(other && other->counterpart == entry.id) << entry.id;
      ASSERT_TRUE(fitTogether(entry, *other)) << entry.id;
    }
  }
}

}  // namespace
}  // namespace kivo::book
