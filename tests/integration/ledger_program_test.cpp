// The real program kivo-ledger, by its command line and by the extension that sends it messages.
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include "demo/notification_display.h"
#include "ledger/listening_socket.h"
#include "platform/linux/process/child_process.h"
#include "store/shared_store.h"
#include "testkit/private_ledger.h"
#include "testkit/private_phone.h"
#include "testkit/raw_store.h"

namespace kivo::testkit {
namespace {

using linux_platform::ChildProcess;
using linux_platform::ProgramResult;
using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* purchaseAbroad = "Your card ending 4821 was charged USD 20.00 at Netflix.";

class ALedger : public testing::Test {
 protected:
  static std::filesystem::path program(const char* name) {
    return linux_platform::programFolder() / name;
  }
  [[nodiscard]] std::filesystem::path socket() const { return ledger_.socket(); }
  [[nodiscard]] std::filesystem::path book() const { return ledger_.file(); }

  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram(
        {.program = program("kivo-ledger"), .arguments = std::move(arguments)});
  }
  // The output of a command that has to succeed.
  static std::string shown(std::vector<std::string> arguments) {
    const ProgramResult result = run(std::move(arguments));
    EXPECT_EQ(result.status, 0) << result.errors;
    return result.output;
  }
  static nlohmann::json json(std::vector<std::string> arguments) {
    arguments.emplace_back("--json");
    return nlohmann::json::parse(shown(std::move(arguments)));
  }
  static void expectFailure(const std::vector<std::string>& arguments, int status,
                            const std::string& error) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "kivo-ledger: " + error + "\n");
  }

  // The dialog for a bank's message.
  static std::string process(const std::string& text) {
    return linux_platform::runProgram(
               {.program = program("kivo-intents"),
                .arguments = {"perform", "ProcessSMSIntent", "--smsText", "-"},
                .input = text})
        .output;
  }

  PrivateLedger ledger_;
};

TEST_F(ALedger, TurnsABankMessageIntoATransaction) {
  const auto server = ledger_.start();
  EXPECT_EQ(linux_platform::runProgram(
                {.program = program("kivo-phone"), .arguments = {"sign-in", "--local"}})
                .output,
            "Signed in at the ledger on this machine\n"
            "The backend answers.\n");
  EXPECT_EQ(process(purchase), "Tracked EGP\u00a0150.00 at Carrefour City\n");
  const auto listed = json({"list"});
  ASSERT_EQ(listed.size(), 1U);
  EXPECT_EQ(listed[0]["id"], "1");
  EXPECT_EQ(listed[0]["kind"], "expense");
  EXPECT_EQ(listed[0]["amount"], "150.00");
  EXPECT_EQ(listed[0]["currency"], "EGP");
  EXPECT_EQ(listed[0]["description"], "Carrefour City");
  EXPECT_EQ(listed[0]["account"], "4821");
  EXPECT_EQ(listed[0]["state"], "booked");
  EXPECT_EQ(json({"show", "1"}), listed[0]);
  EXPECT_THAT(shown({"show", "1"}), EndsWith(std::string("\n\n") + purchase + "\n"));
}

TEST_F(ALedger, RecordsAMessageThatWasQueuedWhileItWasDown) {
  ASSERT_EQ(linux_platform::runProgram(
                {.program = program("kivo-phone"), .arguments = {"sign-in", "--local"}})
                .status,
            0);
  EXPECT_THAT(process(purchase), EndsWith("\nSaved offline - will process when connected\n"));
  const auto server = ledger_.start();
  EXPECT_EQ(
      linux_platform::runProgram({.program = program("kivo-phone"), .arguments = {"queue", "send"}})
          .status,
      0);
  EXPECT_EQ(json({"list"}).size(), 1U);
}

TEST_F(ALedger, AnswersAKeyWithTheSameBytesAfterItWasKilled) {
  auto server = ledger_.start();
  const std::string first = ledger_.post("KEY-1").body();
  server->signal(SIGKILL);
  server->wait();
  server = ledger_.start();
  EXPECT_EQ(ledger_.post("KEY-1", purchaseAbroad).body(), first);
  EXPECT_EQ(json({"list"}).size(), 1U);
}

TEST_F(ALedger, AnswersSixtyRequestsAtOnce) {
  const auto server = ledger_.start();
  std::vector<std::unique_ptr<RunningExchange>> exchanges;
  for (int number = 0; number < 60; ++number) {
    const std::string key = "KEY-" + std::to_string(number / 2);  // each of them twice
    exchanges.push_back(std::make_unique<RunningExchange>(
        ledger_.session(), PrivateLedger::request(ledger_.socket(), key)));
  }
  for (const auto& running : exchanges) EXPECT_EQ(running->wait().status(), 200);
  EXPECT_EQ(json({"list"}).size(), 30U);
}

TEST_F(ALedger, EndsOnATerminationSignalAndRemovesItsSocket) {
  for (const int signal : {SIGTERM, SIGINT}) {
    const auto server = ledger_.start();
    server->signal(signal);
    const ProgramResult result = server->wait();
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_FALSE(std::filesystem::exists(socket()));
  }
}

TEST_F(ALedger, UsesTheSocketOfTheServiceManager) {
  const auto path = ledger_.folders().home() / "handed.sock";
  const auto handed = ledger::ListeningSocket::create(path);
  const pid_t id = fork();
  if (id == 0) {
    dup2(handed.descriptor(), 3);
    if (handed.descriptor() == 3) fcntl(3, F_SETFD, 0);
    setenv("LISTEN_FDS", "1", 1);
    setenv("LISTEN_PID", std::to_string(getpid()).c_str(), 1);
    execl(program("kivo-ledger").c_str(), "kivo-ledger", "serve", nullptr);
    _exit(127);
  }
  EXPECT_EQ(exchange(ledger_.session(), PrivateLedger::request(path, "KEY-1")).status(), 200);
  EXPECT_FALSE(std::filesystem::exists(socket()));
  kill(id, SIGTERM);
  int status = -1;
  waitpid(id, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_TRUE(std::filesystem::exists(path));  // is the service manager's
}

TEST_F(ALedger, RefusesToReplaceTheSocketOfARunningLedger) {
  const auto server = ledger_.start();
  expectFailure({"serve"}, 1,
                socket().string() +
                    " is in use by another server; stop it, or name another socket " +
                    "by --socket");
}

TEST_F(ALedger, AcknowledgesNothingAtAFileSizeLimit) {
  ASSERT_EQ(shown({"list"}), "No transaction fits.\n");
  std::filesystem::resize_file(book(), 0);
  std::filesystem::remove(book().string() + "-wal");
  std::filesystem::remove(book().string() + "-shm");
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  rlimit small = before;
  small.rlim_cur = 12 << 10U;  // enough for the shared memory of no database
  setrlimit(RLIMIT_FSIZE, &small);
  const auto server = ledger_.start();
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_EQ(ledger_.post("KEY-1").status(), 503);
  server->signal(SIGTERM);
  EXPECT_THAT(server->wait().errors, StartsWith("kivo-ledger: "));
  const auto healthy = ledger_.start();
  EXPECT_EQ(ledger_.post("KEY-1").status(), 200);
  EXPECT_EQ(json({"list"}).size(), 1U);
}

TEST_F(ALedger, AcknowledgesNothingInABookOfANewerVersion) {
  shown({"list"});
  RawStore(book()).run("PRAGMA user_version = 99");
  const auto server = ledger_.start();
  EXPECT_EQ(ledger_.post("KEY-1").status(), 503);
  server->signal(SIGTERM);
  EXPECT_EQ(server->wait().errors,
            "kivo-ledger: cannot open the store: " + book().string() +
                " was written by a newer version of Kivo (file format 99); update Kivo\n");
}

TEST_F(ALedger, PutsAForeignAmountInReview) {
  const auto server = ledger_.start();
  EXPECT_THAT(ledger_.post("KEY-1", purchaseAbroad).body(), HasSubstr("needs_review"));
  EXPECT_EQ(shown({"list"}), "No transaction fits.\n");
  const auto items = json({"review"});
  ASSERT_EQ(items.size(), 1U);
  EXPECT_EQ(items[0]["amount"], "20.00");
  EXPECT_EQ(items[0]["currency"], "USD");
  EXPECT_EQ(items[0]["state"], "review");

  shown({"edit", "1", "--amount", "970", "--currency", "egp", "--category", "Fun"});
  EXPECT_EQ(shown({"accept", "1"}), "Booked as EGP 970.00.\n");
  EXPECT_EQ(shown({"review"}), "There is nothing to look at.\n");
  EXPECT_EQ(json({"list"})[0]["amount"], "970.00");

  shown({"rate", "usd", "50"});
  EXPECT_EQ(shown({"rate"}), "USD 50\n");
  EXPECT_THAT(ledger_.post("KEY-2", purchaseAbroad).body(),
              HasSubstr(R"("amount":1000.0,"category":"Fun")"));
  shown({"rate", "USD", "--remove"});
  EXPECT_EQ(shown({"rate"}), "No rate is set.\n");
}

TEST_F(ALedger, SaysTheSumAndTheRateOfAnAcceptedForeignSum) {
  const auto server = ledger_.start();
  ledger_.post("KEY-1", purchaseAbroad);
  ledger_.post("KEY-2", purchaseAbroad);
  EXPECT_EQ(shown({"accept", "1"}), "Booked as USD 20.00.\n");
  shown({"rate", "USD", "48.5"});
  EXPECT_EQ(shown({"accept", "2"}), "Booked as EGP 970.00 at the rate 48.5.\n");
}

TEST_F(ALedger, ListsTheSumFromWhichAnEntryWasConverted) {
  const auto server = ledger_.start();
  ledger_.post("KEY-1", purchaseAbroad);
  EXPECT_FALSE(json({"review"})[0].contains("original_amount"));
  shown({"rate", "USD", "48.5"});
  shown({"accept", "1"});
  EXPECT_EQ(json({"list"})[0]["original_amount"], "20.00");
  EXPECT_EQ(json({"show", "1"})["original_currency"], "USD");
}

TEST_F(ALedger, KeepsTheOriginalSumUntilAPersonSetsAnotherAmount) {
  const auto server = ledger_.start();
  shown({"rate", "USD", "48.5"});
  ledger_.post("KEY-1", purchaseAbroad);
  shown({"edit", "1", "--description", "Books"});
  EXPECT_EQ(json({"list"})[0]["original_amount"], "20.00");
  shown({"edit", "1", "--amount", "975"});
  EXPECT_FALSE(json({"list"})[0].contains("original_amount"));
  EXPECT_FALSE(json({"list"})[0].contains("original_currency"));
  shown({"undo"});
  EXPECT_EQ(json({"list"})[0]["original_currency"], "USD");
}

TEST_F(ALedger, RoundsAConvertedSumHalfUp) {
  const auto server = ledger_.start();
  shown({"rate", "USD", "1.005"});
  EXPECT_THAT(ledger_.post("KEY-1", "Your card was charged USD 1.00 at Netflix.").body(),
              HasSubstr(R"("amount":1.01)"));
}

TEST_F(ALedger, KeepsForReviewAForeignSumThatConvertsToNothing) {
  const auto server = ledger_.start();
  shown({"rate", "IRR", "0.00001"});
  EXPECT_THAT(ledger_.post("KEY-1", "Your card was charged IRR 499.99 at Netflix.").body(),
              HasSubstr("needs_review"));
  EXPECT_EQ(json({"review"})[0]["amount"], "499.99");
  expectFailure({"accept", "1"}, 1,
                "its sum IRR 499.99 converted at its rate is not from 0.01 to 90071992547409.92; "
                "kivo-ledger edit 1 --amount SUM --currency EGP gives it one");
  EXPECT_EQ(json({"review"}).size(), 1U);
}

TEST_F(ALedger, IgnoresAStoredRateThatIsNoDecimal) {
  const auto server = ledger_.start();
  shown({"rate", "EUR", "52"});
  RawStore(book()).run(
      "PRAGMA ignore_check_constraints = ON; INSERT INTO rates VALUES ('USD', '', '0x30')");
  EXPECT_EQ(shown({"rate"}),
            "EUR 52\n"
            "USD 0x30 is not used: a rate must be a number above zero such as 48.5: 18 digits at "
            "most, with at most one point\n");
  EXPECT_THAT(ledger_.post("KEY-1", purchaseAbroad).body(), HasSubstr("needs_review"));
  EXPECT_EQ(shown({"accept", "1"}), "Booked as USD 20.00.\n");
}

TEST_F(ALedger, TakesASumWithCommasBetweenThousands) {
  {
    const auto server = ledger_.start();
    ledger_.post("KEY-1");
  }
  shown({"edit", "1", "--amount", "1,189.50"});
  EXPECT_EQ(json({"list"})[0]["amount"], "1189.50");
}

TEST_F(ALedger, ConvertsAnEntryWhoseCurrencyIsEdited) {
  const auto server = ledger_.start();
  ledger_.post("KEY-1", "Your card was charged USD 9.99 at Netflix.");
  expectFailure(
      {"edit", "1", "--currency", "EGP"}, 64,
      "there is no rate for USD on 2026-11-21: set it by kivo-ledger rate USD RATE, or give the "
      "sum in EGP by --amount");
  expectFailure({"edit", "1", "--currency", "EUR"}, 64,
                "there are rates for EGP alone: give the sum in EUR by --amount");
  EXPECT_EQ(json({"review"})[0]["currency"], "USD");
  shown({"edit", "1", "--currency", "USD", "--category", "Fun"});
  EXPECT_EQ(json({"review"})[0]["amount"], "9.99");
  shown({"rate", "USD", "48.5"});
  shown({"edit", "1", "--currency", "EGP"});
  EXPECT_EQ(json({"review"})[0]["amount"], "484.52");
  EXPECT_EQ(json({"review"})[0]["currency"], "EGP");
  EXPECT_THAT(shown({"show", "1"}), HasSubstr("\nConverted    from 9.99 USD\n"));
}

TEST_F(ALedger, ShowsAndRemovesRatesByTheirFirstDays) {
  shown({"rate", "USD", "48.5", "--from", "2026-03-01"});
  shown({"rate", "USD", "30.9"});
  shown({"rate", "EUR", "52", "--from", "2026-06-01"});
  EXPECT_EQ(shown({"rate"}), "EUR 52 from 2026-06-01\nUSD 30.9\nUSD 48.5 from 2026-03-01\n");
  expectFailure({"rate", "USD", "--remove", "--from", "2026-03-02"}, 1,
                "there is no rate for USD from 2026-03-02");
  shown({"rate", "USD", "--remove", "--from", "2026-03-01"});
  EXPECT_EQ(shown({"rate"}), "EUR 52 from 2026-06-01\nUSD 30.9\n");
  shown({"undo", "2"});
  EXPECT_EQ(shown({"rate"}), "USD 30.9\nUSD 48.5 from 2026-03-01\n");
  shown({"rate", "USD", "--remove"});
  EXPECT_EQ(shown({"rate"}), "No rate is set.\n");
  expectFailure({"rate", "--from", "2026-03-01"}, 64, "name the currency of the rate");
  expectFailure({"rate", "USD", "50", "--from", "March"}, 64,
                "invalid --from \"March\": it must be a day such as 2026-11-21");
}

TEST_F(ALedger, ShowsTheBalanceThatAMessageStates) {
  {
    const auto server = ledger_.start();
    ledger_.post("KEY-1",
                 "Your card ending 4821 was charged EGP 150.00 at Carrefour City. "
                 "Available balance EGP 9,000.50");
  }
  EXPECT_THAT(shown({"show", "1"}), HasSubstr("\nBalance      9000.50 EGP\n"));
}

TEST_F(ALedger, RefusesToBookASumThatIsOutOfRange) {
  const auto server = ledger_.start();
  EXPECT_THAT(
      ledger_.post("KEY-1", "Your card was charged EGP 92233720368547758.07 at Netflix.").body(),
      HasSubstr("needs_review"));
  expectFailure({"accept", "1"}, 1, "its sum is unknown; kivo-ledger edit 1 --amount gives it one");
  RawStore(book()).run(
      "PRAGMA ignore_check_constraints = ON; UPDATE transactions SET currency = 'EGP', "
      "minor_units = 9007199254740993");
  expectFailure({"accept", "1"}, 1, "it is set aside; kivo-ledger show 1 says which value to edit");
  shown({"edit", "1", "--amount", "90,071,992,547,409.92"});
  EXPECT_EQ(shown({"accept", "1"}), "Booked as EGP 90071992547409.92.\n");
}

TEST_F(ALedger, BooksInTheCurrencyOfTheStore) {
  SharedStore store = SharedStore::open(appGroup).value();
  store.writeText(StoreKeys::currency, "usd");
  ASSERT_TRUE(store.synchronize());
  const auto server = ledger_.start();
  EXPECT_THAT(ledger_.post("KEY-1", purchaseAbroad).body(), HasSubstr(R"("amount":20.0)"));
}

TEST_F(ALedger, BooksWithoutACurrencyWhereTheStoreHoldsNoCode) {
  SharedStore store = SharedStore::open(appGroup).value();
  store.writeText(StoreKeys::currency, "EURO");
  ASSERT_TRUE(store.synchronize());
  {
    const auto server = ledger_.start();
    EXPECT_THAT(ledger_.post("KEY-1", "Your card 4821 was charged 150.00 at Carrefour City").body(),
                HasSubstr(R"("saved":)"));
    EXPECT_THAT(ledger_.post("KEY-2", purchaseAbroad).body(), HasSubstr("needs_review"));
  }
  EXPECT_EQ(json({"review"})[0]["currency"], "USD");
  for (const auto& entry : json({"list"})) EXPECT_EQ(entry["currency"], "XXX");
}

TEST_F(ALedger, ShowsATable) {
  {
    const auto server = ledger_.start();
    ledger_.post("KEY-1");
    ledger_.post("KEY-2");
  }
  EXPECT_EQ(shown({"list", "--month", "2026-11"}),
            "ID  DATE        KIND         AMOUNT  DESCRIPTION     CATEGORY\n"
            "2   2026-11-21  expense  150.00 EGP  Carrefour City  Groceries (looks like 1)\n"
            "1   2026-11-21  expense  150.00 EGP  Carrefour City  Groceries\n");
  EXPECT_EQ(shown({"list", "--month", "2026-10"}), "No transaction fits.\n");
  EXPECT_EQ(json({"list", "--from", "2026-11-22"}).size(), 0U);
  EXPECT_EQ(json({"list", "--to", "2026-11-21", "--search", "carrefour"}).size(), 2U);
  EXPECT_EQ(json({"list", "--category", "groceries"})[0]["possible_duplicate_of"], "1");
  EXPECT_EQ(shown({"delete", "2", "--yes"}), "Deleted.\n");
  EXPECT_EQ(shown({"forget-texts", "--yes"}), "Forgot 1 text.\n");
  EXPECT_EQ(json({"list"}).size(), 1U);
}

TEST_F(ALedger, RefusesInvalidArguments) {
  expectFailure({"list", "--month", "2026"}, 64,
                "invalid --month \"2026\": it must be a month such as 2026-11");
  expectFailure({"list", "--from", "2026-02-30"}, 64,
                "invalid --from \"2026-02-30\": it must be a day such as 2026-11-21");
  expectFailure({"show", "x"}, 64, "ID is the number of a transaction, as list and review show it");
  expectFailure({"show", "7"}, 1, "no transaction has the ID 7");
  expectFailure({"edit", "7"}, 64,
                "edit needs one of --date, --amount, --currency, --kind, --refund, --no-refund, "
                "--description, --category");
  expectFailure({"delete", "7"}, 64,
                "there is no terminal to ask at; --yes deletes without asking");
  expectFailure({"rate", "XX", "1"}, 64, "invalid CURRENCY \"XX\": it must be a code such as USD");
  for (const char* const rate :
       {"nan", "0x30", "4e1", "1e308", "-1", "+48.5", "0", "1,5", "", "1234567890123456789"}) {
    expectFailure({"rate", "USD", rate}, 64,
                  std::string("invalid RATE \"") + rate +
                      "\": it must be a number above zero such as 48.5: 18 digits at most, with "
                      "at most one point");
  }
  EXPECT_EQ(shown({"rate"}), "No rate is set.\n");
  expectFailure({"rate", "USD"}, 64, "give either RATE or --remove");
  expectFailure({"rate", "USD", "--remove"}, 1, "there is no rate for USD");
}

TEST_F(ALedger, RefusesInvalidEdits) {
  {
    const auto server = ledger_.start();
    ledger_.post("KEY-1");
  }
  for (const char* const sum : {"0", "-5", "1.001", "1,18.50", "1189,50", "1e3", "0x30", "",
                                "90071992547409.93", "92233720368547758.08"}) {
    expectFailure(
        {"edit", "1", "--amount", sum}, 64,
        std::string("invalid --amount \"") + sum +
            "\": it must be a sum above zero such as 1,189.50: 2 decimals at most, commas "
            "only between thousands, and up to 90071992547409.92");
  }
  expectFailure({"edit", "1", "--currency", "EURO"}, 64,
                "invalid --currency \"EURO\": it must be a code such as EGP");
  expectFailure({"edit", "1", "--kind", "gift"}, 64,
                "invalid --kind \"gift\": it must be expense, income or transfer");
  expectFailure({"edit", "1", "--date", "today"}, 64,
                "invalid --date \"today\": it must be a day such as 2026-11-21");
  expectFailure({"edit", "1", "--category", ""}, 64, "--category is empty");
  EXPECT_EQ(json({"list"})[0]["amount"], "150.00");
}

TEST(ALedgerOnTheBus, PostsANotificationThatOpensAnEntryInReview) {
  PrivatePhone phone;
  NotificationDisplay display(phone.address());
  ASSERT_EQ(phone.callCenter("SetAuthorizationStatus", {"app.kivo.expenses.intents", "2"}).status,
            0);
  const std::string socket = (phone.folders().home() / "ledger.sock").string();
  ChildProcess server({.program = linux_platform::programFolder() / "kivo-ledger",
                       .arguments = {"serve", "--socket", socket}});
  const auto request = PrivateLedger::request(socket, "KEY-1", purchaseAbroad);
  linux_platform::HTTPURLSession session;
  ASSERT_TRUE(eventually([&] { return exchange(session, request).status() == 200; }));
  EXPECT_EQ(exchange(session, request).status(), 200);
  ASSERT_TRUE(eventually([&] { return !display.shown().empty(); }));
  EXPECT_EQ(display.shown()[0].summary, "🔎 Needs a look");
  EXPECT_EQ(display.shown()[0].body, "20.00 USD at Netflix");
  server.signal(SIGTERM);
  EXPECT_EQ(server.wait().status, 0);
  EXPECT_EQ(display.shown().size(), 1U);
  // The center learns the number of what it showed just after the display has it.
  ASSERT_TRUE(eventually([&] {
    return phone.callCenter("Pending", {"app.kivo.expenses.intents"}).output == "(@as [],)\n";
  }));
  display.invokeDefaultAction(display.shown()[0].id);
  EXPECT_THAT(phone.openedLinks(1), testing::ElementsAre("kivo-expenses://payment/1"));
}

}  // namespace
}  // namespace kivo::testkit
