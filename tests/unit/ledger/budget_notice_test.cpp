// Notifications of budgets, from entries that the service books.
#include "ledger/budget_notice.h"

#include <gmock/gmock.h>

#include "ledger/extraction_endpoint.h"
#include "platform/foundation/json_encoder.h"
#include "testkit/set_clock.h"
#include "unit/recording/ledger_test.h"

namespace kivo::ledger {

using recording::LedgerTest;

using book::Book;
using money::Kind;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ABudgetNotice : public LedgerTest {
 protected:
  ABudgetNotice() { open().setBudget({"Groceries", {300000, "EGP"}}); }
  // Has a service book an expense.
  void receive(std::int64_t minorUnits, const std::string& date = "2026-11-21") {
    ExtractionEndpoint endpoint(
        [] { return money::CurrencyCode("EGP"); }, [](const auto&) {}, reader(),
        [this](const BudgetNotice& notice) { said_.push_back(notice.title + ": " + notice.body); });
    reading_.amount->minorUnits = minorUnits;
    platform::JSONEncoder object;
    object.encodeString("sms_text", "text");
    object.encodeString("user_id", "user");
    object.encodeString("expense_date", date);
    object.encodeString("idempotency_key", "KEY-" + std::to_string(++keys_));
    const auto answers = endpoint.answers(
        {{.method = "POST", .target = "/functions/v1/sms-extraction", .body = object.text()}});
    EXPECT_EQ(answers.front().status, 200);
  }
  // Says nothing.
  void book(std::int64_t minorUnits) {
    Book book = open();
    recorded(book, "IMPORT-" + std::to_string(++keys_), spent(minorUnits));
  }

  testkit::SetClock clock_{testkit::utc(2026, 11, 22, 12)};
  std::vector<std::string> said_;
  int keys_ = 0;
};

TEST_F(ABudgetNotice, IsPostedOnceAtEachShare) {
  receive(239999);
  EXPECT_THAT(said_, IsEmpty());
  receive(5001);
  receive(5000);
  const std::string most =
      "Groceries: 81 % of this month's budget is spent: 2,450.00 of 3,000.00 EGP";
  EXPECT_THAT(said_, ElementsAre(most));
  receive(50000);
  receive(50000);
  EXPECT_THAT(said_, ElementsAre(most,
                                 "Groceries: 100 % of this month's budget is spent: "
                                 "3,000.00 of 3,000.00 EGP"));
}

TEST_F(ABudgetNotice, IsPostedOnceWhenOnePaymentPassesBothShares) {
  receive(350000);
  ASSERT_THAT(said_, ElementsAre("Groceries: 116 % of this month's budget is spent: 3,500.00 of "
                                 "3,000.00 EGP"));
  open().edit(1, {.amount = money::Money{250000, "EGP"}});
  receive(100);
  EXPECT_EQ(said_.size(), 1U);
}

TEST_F(ABudgetNotice, IsNotRepeatedAfterUndo) {
  receive(250000);
  Book book = open();
  book::UserCommand command{"edit 1"};
  book.asCommand(command, [&] { book.edit(1, {.amount = money::Money{100, "EGP"}}); });
  book.undo(1);
  receive(100);
  EXPECT_EQ(said_.size(), 1U);
}

TEST_F(ABudgetNotice, CountsWhatWasBookedOtherwiseAtTheNextPayment) {
  book(350000);
  EXPECT_THAT(said_, IsEmpty());
  receive(100);
  EXPECT_EQ(said_.size(), 1U);
}

TEST_F(ABudgetNotice, IsNotDueForAnotherMonthKindOrCategory) {
  receive(350000, "2026-10-31");
  reading_.kind = Kind::income;
  receive(350000);
  reading_ = spent(1);
  reading_.category = "Dining";
  receive(350000);
  EXPECT_THAT(said_, IsEmpty());
}

TEST_F(ABudgetNotice, LeavesAPaymentAnsweredWhenItCannotBeNoted) {
  testkit::RawStore(file()).run(
      "CREATE TRIGGER full BEFORE INSERT ON passed_budgets "
      "BEGIN SELECT raise(ABORT, 'no'); END");
  testing::internal::CaptureStderr();
  receive(350000);
  EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("kivo-ledger: "));
  EXPECT_THAT(said_, IsEmpty());
  EXPECT_EQ(open().entries({}).size(), 1U);
}

}  // namespace
}  // namespace kivo::ledger
