// Refunds and directions as the book keeps them.
#include <gtest/gtest.h>

#include "unit/recording/ledger_test.h"

namespace kivo::book {

using money::Kind;
using recognition::Reading;
using recording::LedgerTest;

namespace {

class ADirection : public LedgerTest {
 protected:
  static Reading refunded(std::int64_t minorUnits) {
    Reading reading = spent(minorUnits);
    reading.kind = Kind::income;
    reading.refund = true;
    return reading;
  }
  static Reading moved(std::int64_t minorUnits) {
    Reading reading = spent(minorUnits, "");
    reading.kind = Kind::transfer;
    reading.incoming = true;
    return reading;
  }

  Book book_ = open();
};

TEST_F(ADirection, IsStoredWithItsEntry) {
  const LedgerEntry refund = recorded(book_, "refund", refunded(100));
  EXPECT_TRUE(refund.refund);
  EXPECT_TRUE(refund.incoming);
  const LedgerEntry transfer = recorded(book_, "transfer", moved(100));
  EXPECT_FALSE(transfer.refund);
  EXPECT_TRUE(transfer.incoming);
  EXPECT_FALSE(transfer.counterpart);
  EXPECT_FALSE(recorded(book_, "payment", spent(100)).incoming);
}

TEST_F(ADirection, IsThatOfTheKindThatAPersonGives) {
  const auto id = recorded(book_, "refund", refunded(100)).id;
  ASSERT_TRUE(book_.edit(id, {.kind = Kind::income}));
  EXPECT_TRUE(book_.entry(id)->refund);
  ASSERT_TRUE(book_.edit(id, {.kind = Kind::expense}));
  EXPECT_FALSE(book_.entry(id)->refund);
  EXPECT_FALSE(book_.entry(id)->incoming);
  ASSERT_TRUE(book_.edit(id, {.kind = Kind::income}));
  EXPECT_FALSE(book_.entry(id)->refund);
  EXPECT_TRUE(book_.entry(id)->incoming);
  ASSERT_TRUE(book_.edit(id, {.kind = Kind::transfer}));
  EXPECT_TRUE(book_.entry(id)->incoming);
}

TEST_F(ADirection, IsAsItWasBeforeACommandThatIsTakenBack) {
  const auto id = recorded(book_, "refund", refunded(100)).id;
  UserCommand command{.words = "edit"};
  book_.asCommand(command, [&] { book_.edit(id, {.kind = Kind::expense}); });
  book_.undo(1);
  EXPECT_TRUE(book_.entry(id)->refund);
  EXPECT_TRUE(book_.entry(id)->incoming);
}

TEST_F(ADirection, ComesBackWithABackup) {
  const auto id = recorded(book_, "refund", refunded(100)).id;
  const auto backup = folders_.dataHome() / "backup";
  book_.backUp(backup, {}, "test");
  ASSERT_TRUE(book_.edit(id, {.kind = Kind::expense}));
  book_.restore(Backup::read(backup), [] {});
  EXPECT_TRUE(book_.entry(id)->refund);
  EXPECT_TRUE(book_.entry(id)->incoming);
}

}  // namespace
}  // namespace kivo::book
