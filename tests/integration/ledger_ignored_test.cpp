// Messages that kivo-ledger did not book though they hold a sum: `ignored`, `book` and
// `teach ignored:N`.
#include <csignal>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "book/current_day.h"
#include "platform/linux/process/child_process.h"
#include "platform/linux/terminal/text_columns.h"
#include "testkit/ledger_command_test.h"
#include "testkit/private_ledger.h"
#include "testkit/raw_store.h"
#include "testkit/stored_bytes.h"

// The banks, merchants and people below do not exist.

namespace kivo::testkit {
namespace {

using linux_platform::columnsOf;
using linux_platform::ProgramResult;
using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Le;
using testing::Not;
using testing::ResultOf;
using testing::SizeIs;

constexpr const char* declined =
    "Your purchase of EGP 900.00 at Tulip Store was declined due to insufficient funds.";
constexpr const char* planned =
    "EGP 99.00 will be debited on 01/12/2026 for StreamNest. Limit EGP 500.00";
constexpr const char* code =
    "Your OTP for the purchase of EGP 1,250.00 at Palm Electronics is 884213.";

class ALedgerThatIgnores : public testing::Test {
 protected:
  static std::string program() { return linux_platform::programFolder() / "kivo-ledger"; }
  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = program(), .arguments = std::move(arguments)});
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
  // The output of `command` on a terminal of `columns`, on which `typed` is typed, without the
  // carriage returns.
  static std::string onTerminal(const std::string& command, int columns,
                                const std::string& typed = "") {
    const std::string line =
        "stty cols " + std::to_string(columns) + "; exec " + program() + " " + command;
    std::string output = linux_platform::runProgram(
                             {.program = "script",
                              .arguments = {"--quiet", "--return", "--command", line, "/dev/null"},
                              .input = typed,
                              .environment = {{"SHELL", "/bin/sh"}}})
                             .output;
    std::erase(output, '\r');
    return output;
  }
  static std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }
  static std::string today() { return book::currentDay().text(); }

  // Sends the messages, of today, to a service that ends again. Returns the answers.
  std::vector<std::string> receive(const std::vector<std::string>& messages) {
    const auto server = ledger_.start();
    std::vector<std::string> answers;
    for (const std::string& message : messages) {
      answers.push_back(ledger_.post("KEY-" + std::to_string(++sent_), message, today()).body());
    }
    server->signal(SIGTERM);
    EXPECT_EQ(server->wait().status, 0);
    return answers;
  }

  PrivateLedger ledger_;
  int sent_ = 0;
};

TEST_F(ALedgerThatIgnores, ListsWhatItDidNotBookWithItsSum) {
  EXPECT_EQ(shown({"ignored"}), "There is no ignored message.\n");
  EXPECT_EQ(json({"ignored"}), nlohmann::json::array());
  receive({planned, declined, code, purchase, "Lunch at 1? I paid last time."});
  EXPECT_EQ(shown({"ignored"}), "NUMBER  DATE        REASON\n2       " + today() +
                                    "  declined\n  " + declined + "\n1       " + today() +
                                    "  no transaction\n  " + planned + "\n");
  const nlohmann::json first = {
      {"number", "1"}, {"date", today()}, {"text", planned}, {"reason", "not_a_transaction"}};
  const nlohmann::json second = {
      {"number", "2"}, {"date", today()}, {"text", declined}, {"reason", "declined"}};
  EXPECT_EQ(json({"ignored"}), nlohmann::json::array({second, first}));
}

TEST_F(ALedgerThatIgnores, KeepsNothingOfACode) {
  receive({code, "551902 is your verification code for a payment of EGP 40.00."});
  EXPECT_EQ(json({"ignored"}), nlohmann::json::array());
  EXPECT_THAT(bytesIn(ledger_.file().parent_path()), Not(HasSubstr("Palm Electronics")));
}

TEST_F(ALedgerThatIgnores, FitsFortyColumnsAndShowsNoControlCharacters) {
  receive({planned, "رصيد حسابك المتاح ٥٬٤٣٠٫١٠ ج.م في ٢١/١١/٢٠٢٦ شكرا لتعاملكم معنا",
           "Zap! \x1b[2J EGP 5.00 \u202e flew\nhttps://tulip.example/" + std::string(90, 'x')});
  const std::string list = onTerminal("ignored", 40);
  EXPECT_THAT(linesOf(list), Each(ResultOf(columnsOf, Le(40U))));
  EXPECT_THAT(list,
              HasSubstr("\n  EGP 99.00 will be debited on\n  01/12/2026 for StreamNest. Limit "
                        "EGP\n  500.00\n"));
  EXPECT_THAT(list, HasSubstr("\\x1b[2J EGP 5.00 \\u202e flew"));
  EXPECT_THAT(list, Not(HasSubstr("\u202e")));
  EXPECT_THAT(list, EndsWith("To book one: kivo-ledger book NUMBER\n"
                             "To have messages like it booked:\n"
                             "kivo-ledger teach ignored:NUMBER\n"));
  EXPECT_THAT(onTerminal("ignored --json", 40), Not(HasSubstr("\x1b[2J")));
  EXPECT_THAT(shown({"ignored"}), Not(HasSubstr("teach")));
}

TEST_F(ALedgerThatIgnores, BooksAMessageAsThePersonSays) {
  const std::string before = receive({planned}).front();
  EXPECT_EQ(shown({"book", "1", "--kind", "expense", "--amount", "99", "--payee", "StreamNest",
                   "--category", "Films"}),
            "Booked as EGP 99.00.\n"
            "Later payments to StreamNest will be Films. `kivo-ledger rules` shows it.\n");
  const nlohmann::json list = json({"list"});
  ASSERT_THAT(list, SizeIs(1));
  EXPECT_EQ(list[0]["key"], "KEY-1");
  EXPECT_EQ(list[0]["date"], today());
  EXPECT_EQ(list[0]["kind"], "expense");
  EXPECT_EQ(list[0]["amount"], "99.00");
  EXPECT_EQ(list[0]["description"], "StreamNest");
  EXPECT_EQ(list[0]["category"], "Films");
  EXPECT_EQ(list[0]["state"], "booked");
  EXPECT_THAT(shown({"show", "1"}), EndsWith(std::string("\n") + planned + "\n"));
  EXPECT_EQ(json({"ignored"}), nlohmann::json::array());
  sent_ = 0;
  EXPECT_EQ(receive({planned}).front(), before);
  EXPECT_THAT(json({"list"}), SizeIs(1));
}

TEST_F(ALedgerThatIgnores, RemembersTheCategoryForThePayee) {
  receive({planned, unreadable});
  shown({"book", "1", "--kind", "expense", "--amount", "99", "--payee", "StreamNest", "--category",
         "Films"});
  shown({"book", "2", "--kind", "expense", "--payee", "STREAMNEST"});
  EXPECT_EQ(json({"list"})[0]["category"], "Films");
}

TEST_F(ALedgerThatIgnores, BooksAMessageInTheCurrencyThatIsGiven) {
  receive({planned});
  expectFailure({"book", "1", "--kind", "expense", "--currency", "USD", "--payee", "StreamNest"},
                64, "--currency needs --amount");
  shown({"book", "1", "--kind", "expense", "--amount", "2.50", "--currency", "USD", "--payee",
         "StreamNest"});
  EXPECT_EQ(json({"list"})[0]["amount"], "2.50");
  EXPECT_EQ(json({"list"})[0]["currency"], "USD");
}

TEST_F(ALedgerThatIgnores, TakesTheOnlySumOfAMessage) {
  receive({unreadable, planned});
  EXPECT_EQ(shown({"book", "1", "--kind", "transfer"}), "Booked as EGP 640.00.\n");
  expectFailure({"book", "2", "--kind", "expense"}, 64, "its sum cannot be read: give --amount");
  EXPECT_EQ(json({"list"})[0]["category"], "Transfer");
}

TEST_F(ALedgerThatIgnores, NamesTheOptionThatItNeeds) {
  receive({planned, unreadable});
  expectFailure({"book", "1"}, 64, "its kind and its sum cannot be read: give --kind and --amount");
  expectFailure({"book", "1", "--amount", "99"}, 64,
                "its kind cannot be read: give --kind expense, income or transfer");
  expectFailure({"book", "1", "--kind", "gift"}, 64,
                "invalid --kind \"gift\": it must be expense, income or transfer");
  expectFailure({"book", "1", "--kind", "expense", "--amount", "1.234,5"}, 64,
                "invalid --amount \"1.234,5\": it must be a sum above zero such as 1,189.50: 2 "
                "decimals at most, commas only between thousands, and up to 90071992547409.92");
  expectFailure({"book", "2", "--kind", "expense", "--payee", ""}, 64, "--payee is empty");
  expectFailure({"book", "2", "--kind", "expense", "--category", ""}, 64, "--category is empty");
  expectFailure(
      {"book", "ignored:2", "--kind", "expense"}, 64,
      "invalid NUMBER \"ignored:2\": it must be a number, as kivo-ledger ignored shows it");
  expectFailure(
      {"book", "7", "--kind", "expense"}, 1,
      "no ignored message has the number 7; kivo-ledger ignored shows those that are kept");
  EXPECT_THAT(json({"ignored"}), SizeIs(2));
  EXPECT_EQ(json({"list"}), nlohmann::json::array());
}

TEST_F(ALedgerThatIgnores, BooksAForeignSumAtItsRateOrAsItIs) {
  receive({"Zap! USD 20.00 flew, EGP 99.10 stay", "Zap! USD 30.00 flew", "Zap! USD 0.01 flew"});
  EXPECT_EQ(shown({"book", "1", "--kind", "expense", "--amount", "20"}), "Booked as USD 20.00.\n");
  shown({"rate", "USD", "48.5"});
  EXPECT_EQ(shown({"book", "2", "--kind", "expense"}), "Booked as EGP 1455.00 at the rate 48.5.\n");
  shown({"rate", "USD", "0.01"});
  expectFailure({"book", "3", "--kind", "expense"}, 1,
                "its sum cannot be converted at its rate: give the sum in EGP by --amount");
  EXPECT_THAT(json({"ignored"}), SizeIs(1));
  EXPECT_EQ(shown({"book", "3", "--kind", "expense", "--amount", "0.50"}), "Booked as EGP 0.50.\n");
}

TEST_F(ALedgerThatIgnores, MarksWhatLooksLikeAnEarlierPayment) {
  receive({purchase, "Zap! EGP 150.00 flew"});
  shown({"book", "1", "--kind", "expense", "--payee", "CARREFOUR city"});
  EXPECT_EQ(json({"list"})[0]["possible_duplicate_of"], "1");
}

TEST_F(ALedgerThatIgnores, LearnsFromAMessageAndBooksIt) {
  receive({unreadable, unreadableToo, planned});
  const std::string taught = shown(
      {"teach", "ignored:1", "--kind", "expense", "--amount", "640.00", "--payee", "Nile Cinema"});
  EXPECT_THAT(taught, HasSubstr("\nBooked as transaction 1.\n"));
  EXPECT_THAT(taught, EndsWith("\nIgnored messages that fit: 2. `kivo-ledger book NUMBER` books "
                               "one.\n"));
  const nlohmann::json first = json({"list"})[0];
  EXPECT_EQ(first["key"], "KEY-1");
  EXPECT_EQ(first["description"], "Nile Cinema");
  EXPECT_EQ(first["category"], "Entertainment");
  EXPECT_THAT(json({"ignored"}), SizeIs(2));

  EXPECT_EQ(shown({"book", "2"}), "Booked as EGP 75.50.\n");  // the template says all
  EXPECT_EQ(json({"list"})[0]["description"], "Moon Pharmacy");
  EXPECT_THAT(json({"ignored"}), SizeIs(1));
}

TEST_F(ALedgerThatIgnores, PutsAForeignSumInReviewWhenItLearnsWithoutARate) {
  receive({"Zap! Tulip Bank flew USD 40.00 over to Nile Cinema"});
  const std::string taught = shown(
      {"teach", "ignored:1", "--kind", "expense", "--amount", "40.00", "--payee", "Nile Cinema"});
  EXPECT_THAT(taught, EndsWith("\nFor review as transaction 1.\n"));
  EXPECT_EQ(json({"review"})[0]["amount"], "40.00");
  EXPECT_EQ(json({"ignored"}), nlohmann::json::array());
}

TEST_F(ALedgerThatIgnores, RemovesAndKeepsNoMessagesThatArePaymentsOfNoKind) {
  receive({"Enjoy 10% off EGP 20.00 at Moon", "Enjoy 15% off EGP 30.00 at Moon", unreadable});
  EXPECT_THAT(shown({"teach", "ignored:2", "--kind", "none"}),
              EndsWith("\nRemoved from the ignored messages: 1 and 2.\n"));
  receive({"Enjoy 20% off EGP 40.00 at Moon"});
  EXPECT_THAT(json({"ignored"}), SizeIs(1));
  shown({"forget-texts", "--yes"});
  EXPECT_EQ(bytesIn(ledger_.file().parent_path()).find("Enjoy 10%"), std::string::npos);
}

TEST_F(ALedgerThatIgnores, LearnsFromAMessageInADialogue) {
  receive({unreadable});
  const std::string dialogue = onTerminal("teach ignored:1", 80, "\n\nNile Cinema\ny\n");
  EXPECT_THAT(dialogue, HasSubstr(std::string("The message:\n  ") + unreadable + "\n"));
  EXPECT_THAT(dialogue, EndsWith("\nBooked as transaction 1.\n"));
  EXPECT_EQ(json({"list"})[0]["amount"], "640.00");
}

TEST_F(ALedgerThatIgnores, NamesTheNumberThatIsNotThere) {
  expectFailure(
      {"teach", "ignored:7", "--kind", "none"}, 1,
      "no ignored message has the number 7; kivo-ledger ignored shows those that are kept");
  expectFailure({"teach", "ignored:", "--kind", "none"}, 64,
                "invalid ID \"ignored:\": it must be ignored: and a number, as kivo-ledger ignored "
                "shows it");
}

TEST_F(ALedgerThatIgnores, CountsThemInTheSummaryAndTheReport) {
  EXPECT_EQ(json({"summary"})["ignored"], "0");
  EXPECT_THAT(shown({"summary"}), Not(HasSubstr("ignored")));
  receive({planned, declined});
  EXPECT_EQ(json({"summary"})["ignored"], "2");
  EXPECT_THAT(shown({"summary"}),
              EndsWith("\n2 messages with a sum were not booked:\nkivo-ledger ignored\n"));
  const std::string page = ledger_.folders().home() / "report.html";
  shown({"report", "--no-open", "--output", page});
  EXPECT_THAT(linux_platform::runProgram({.program = "cat", .arguments = {page}}).output,
              HasSubstr("2 messages with a sum were not booked"));
}

TEST_F(ALedgerThatIgnores, ForgetsThemWithTheTexts) {
  receive({purchase, planned, declined});
  EXPECT_EQ(shown({"forget-texts", "--yes"}),
            "Forgot 3 texts.\n2 of them were ignored messages, which are gone.\n");
  EXPECT_EQ(json({"ignored"}), nlohmann::json::array());
  EXPECT_THAT(bytesIn(ledger_.file().parent_path()), Not(HasSubstr("StreamNest")));
  receive({planned});
  EXPECT_EQ(shown({"forget-texts", "--yes"}),
            "Forgot 1 text.\n1 of them was an ignored message, which is gone.\n");
}

TEST_F(ALedgerThatIgnores, ErasesThemAfterThirtyDaysWithTheNextMessage) {
  receive({planned});
  RawStore(ledger_.file())
      .run("UPDATE ignored SET date = '" + book::currentDay().before(31).text() + "'");
  EXPECT_EQ(json({"ignored"}), nlohmann::json::array());
  expectFailure(
      {"book", "1", "--kind", "expense", "--amount", "99"}, 1,
      "no ignored message has the number 1; kivo-ledger ignored shows those that are kept");
  receive({purchase});
  EXPECT_THAT(bytesIn(ledger_.file().parent_path()), Not(HasSubstr("StreamNest")));
}

TEST_F(ALedgerThatIgnores, SaysAtTeachWhereTheyAreWhenNothingIsForReview) {
  EXPECT_THAT(onTerminal("teach", 80),
              HasSubstr("`kivo-ledger teach ignored:NUMBER` a message that "
                        "`kivo-ledger ignored` shows"));
}

}  // namespace
}  // namespace kivo::testkit
