// `kivo-ledger budget`, and the budgets in summary and report.
#include <csignal>
#include <string>

#include <gmock/gmock.h>

#include "book/current_day.h"
#include "demo/notification_display.h"
#include "testkit/ledger_command_test.h"
#include "testkit/private_phone.h"

// The shops below do not exist.

namespace kivo::testkit {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class TheBudgets : public LedgerCommandTest {
 protected:
  static void spend(const std::string& amount, const std::string& category,
                    const std::string& kind = "expense") {
    shown({"add", "--amount", amount, "--payee", "Moon " + category, "--category", category,
           "--date", "2026-11-21", "--kind", kind});
  }
  static std::string ofNovember() { return json({"budget", "--month", "2026-11"}).dump(); }
};

TEST_F(TheBudgets, AreNotSetInANewBook) {
  EXPECT_EQ(shown({"budget", "--month", "2026-11"}), "No budget is set for November 2026.\n");
  EXPECT_THAT(json({"budget"}), IsEmpty());
}

TEST_F(TheBudgets, ShowWhatIsSpentAndLeft) {
  spend("3100", "Groceries");
  spend("120", "Dining");
  spend("50", "Dining", "transfer");
  shown({"budget", "groceries", "3,000"});
  shown({"budget", "Dining", "900"});
  EXPECT_EQ(shown({"budget", "--month", "2026-11"}),
            "November 2026, in EGP\n"
            "  BUDGET     SPENT     LEFT  CATEGORY\n"
            "  900.00    120.00   780.00  Dining\n"
            "3,000.00  3,100.00  -100.00  Groceries\n");
  EXPECT_EQ(ofNovember(), R"([{"amount":"900.00","category":"Dining","spent":"120.00"},)"
                          R"({"amount":"3000.00","category":"Groceries","spent":"3100.00"}])");
  EXPECT_EQ(json({"summary", "--month", "2026-11"})["budgets"].dump(), ofNovember());
  EXPECT_THAT(shown({"summary", "--month", "2026-11"}), HasSubstr("3,100.00 of 3,000.00  103 %"));
}

TEST_F(TheBudgets, AreLessenedByRefunds) {
  spend("300", "Groceries");
  spend("120", "Groceries", "income");
  shown({"edit", "2", "--refund", "--category", "Groceries", "--once"});
  shown({"budget", "Groceries", "3000"});
  EXPECT_EQ(ofNovember(), R"([{"amount":"3000.00","category":"Groceries","spent":"180.00"}])");
}

TEST_F(TheBudgets, OfOneMonthAreForThatMonthAlone) {
  shown({"budget", "Groceries", "3000"});
  shown({"budget", "Groceries", "3500", "--month", "2026-12"});
  EXPECT_EQ(json({"budget", "--month", "2026-12"})[0]["amount"], "3500.00");
  EXPECT_EQ(json({"budget", "--month", "2026-11"})[0]["amount"], "3000.00");
  shown({"budget", "Groceries", "--remove", "--month", "2026-12"});
  EXPECT_EQ(json({"budget", "--month", "2026-12"})[0]["amount"], "3000.00");
  expectFailure({"budget", "Groceries", "--remove", "--month", "2026-12"}, 1,
                "there is no budget for \"Groceries\" for 2026-12 alone");
  shown({"budget", "Groceries", "--remove"});
  EXPECT_THAT(json({"budget"}), IsEmpty());
  expectFailure({"budget", "Groceries", "--remove"}, 1, "there is no budget for \"Groceries\"");
}

TEST_F(TheBudgets, AreTakenBackByUndo) {
  shown({"budget", "Groceries", "3000"});
  shown({"budget", "Groceries", "3500"});
  EXPECT_EQ(json({"history"})[0]["budgets"], 1);
  EXPECT_EQ(shown({"undo"}), "Undone: budget Groceries 3500 (1 budget).\n");
  EXPECT_THAT(ofNovember(), HasSubstr("3000.00"));
  shown({"undo"});
  EXPECT_THAT(json({"budget"}), IsEmpty());
}

TEST_F(TheBudgets, AreRefusedWithTheReason) {
  expectFailure({"budget", "Grocries", "3000"}, 1,
                "no payment is of the category \"Grocries\"; kivo-ledger summary shows the "
                "categories");
  expectFailure({"budget", "Groceries"}, 64, "give either LIMIT or --remove");
  expectFailure({"budget", "Groceries", "3000", "--remove"}, 64, "give either LIMIT or --remove");
  expectFailure({"budget", "--remove"}, 64, "name the category of the budget");
  expectFailure({"budget", "Groceries", "3000", "--month", "May"}, 64,
                "invalid --month \"May\": it must be a month such as 2026-11");
  for (const char* const amount : {"0", "-5", "1e3", ""}) {
    EXPECT_THAT(run({"budget", "--", "Groceries", amount}).errors,
                HasSubstr("invalid LIMIT \"" + std::string(amount) + "\": it must be a sum above"))
        << amount;
  }
  EXPECT_THAT(json({"budget"}), IsEmpty());
  EXPECT_EQ(shown({"history"}), "There is nothing to undo.\n");
}

TEST(ABudgetOnTheBus, PostsANotificationWhenMostOfItIsSpent) {
  PrivatePhone phone;
  const NotificationDisplay display(phone.address());
  ASSERT_EQ(phone.callCenter("SetAuthorizationStatus", {"app.kivo.expenses.intents", "2"}).status,
            0);
  const std::string program = linux_platform::programFolder() / "kivo-ledger";
  linux_platform::runProgram({.program = program, .arguments = {"budget", "Groceries", "180"}});
  const std::string socket = (phone.folders().home() / "ledger.sock").string();
  linux_platform::ChildProcess server(
      {.program = program, .arguments = {"serve", "--socket", socket}});
  const auto request = PrivateLedger::request(
      socket, "KEY-1", "Your card ending 4821 was charged EGP 150.00 at Carrefour City",
      book::currentDay().text());
  linux_platform::HTTPURLSession session;
  ASSERT_TRUE(eventually([&] { return exchange(session, request).status() == 200; }));
  ASSERT_TRUE(eventually([&] { return !display.shown().empty(); }));
  EXPECT_EQ(display.shown()[0].summary, "Groceries");
  EXPECT_EQ(display.shown()[0].body, "83 % of this month's budget is spent: 150.00 of 180.00 EGP");
  server.signal(SIGTERM);
  EXPECT_EQ(server.wait().status, 0);
  EXPECT_EQ(display.shown().size(), 1U);
}

}  // namespace
}  // namespace kivo::testkit
