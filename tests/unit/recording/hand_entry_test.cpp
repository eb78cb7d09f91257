#include "recording/hand_entry.h"

#include <gmock/gmock.h>

#include "unit/recording/ledger_test.h"

namespace kivo::recording {
namespace {

using testing::StartsWith;

class APaymentByHand : public LedgerTest {
 protected:
  static HandEntry cash(const std::string& payee, std::int64_t minorUnits = 15000) {
    return {
        .userId = "user", .date = "2026-11-21", .amount = Money{minorUnits, "EGP"}, .payee = payee};
  }
};

TEST_F(APaymentByHand, HasNoMessageAndWaitsForItsBooking) {
  Book book = open();
  const LedgerEntry added = addByHand(book, cash("Zed Corner"));
  const LedgerEntry kept = book.entry(added.id).value();
  EXPECT_EQ(kept.text, std::nullopt);
  EXPECT_EQ(kept.state, LedgerEntry::State::review);
  EXPECT_EQ(kept.amount, (Money{15000, "EGP"}));
  EXPECT_EQ(kept.payee, "Zed Corner");
  EXPECT_EQ(kept.description, "Zed Corner");
  EXPECT_EQ(kept.category, "Other");
}

TEST_F(APaymentByHand, HasAKeyOfItsOwn) {
  Book book = open();
  const LedgerEntry first = addByHand(book, cash("Zed Corner"));
  const LedgerEntry second = addByHand(book, cash("Zed Corner"));
  EXPECT_THAT(first.key, StartsWith("by-hand-"));
  EXPECT_NE(first.key, second.key);
}

TEST_F(APaymentByHand, HasTheCategoryOfItsPayeesName) {
  Book book = open();
  EXPECT_EQ(addByHand(book, cash("Moon Pharmacy")).category, "Health");
  HandEntry moved = cash("Moon Pharmacy");
  moved.kind = money::Kind::transfer;
  EXPECT_EQ(addByHand(book, moved).category, "Transfer");
}

TEST_F(APaymentByHand, HasTheCorrectionsForItsPayee) {
  Book book = open();
  recorded(book, "KEY-1", spent(100, "CAFE LUNE"));
  correct(book, 1, {.description = "Café Lune", .category = "Breakfast"});
  const LedgerEntry added = addByHand(book, cash("cafe lune"));
  EXPECT_EQ(added.category, "Breakfast");
  EXPECT_EQ(added.description, "Café Lune");
}

TEST_F(APaymentByHand, IsMarkedWhenItLooksLikeAMessages) {
  Book book = open();
  recorded(book, "KEY-1", spent(15000, "Sunny Market"));
  EXPECT_EQ(addByHand(book, cash("SUNNY MARKET")).possibleDuplicateOf, 1);
  EXPECT_EQ(addByHand(book, cash("Sunny Market", 15001)).possibleDuplicateOf, std::nullopt);
}

}  // namespace
}  // namespace kivo::recording
