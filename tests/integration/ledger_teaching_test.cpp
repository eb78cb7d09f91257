// `kivo-ledger teach`: by options, in a dialogue on a pseudo-terminal, and beside a running
// service.
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "platform/linux/process/child_process.h"
#include "testkit/private_ledger.h"

namespace kivo::testkit {
namespace {

using linux_platform::ProgramResult;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

// No rule knows this wording. The two sums make the rules ask.
constexpr const char* unknown =
    "Zap! Tulip Bank moved EGP 150.00 over to Nile Cinema on 21/11/2026, EGP 99.10 stay.";
constexpr const char* next =
    "Zap! Tulip Bank moved EGP 1,020.50 over to Old Town Books on 03/12/2026, EGP 78.60 stay.";
constexpr const char* unclear = "Purchase EGP 10.00 EGP 20.00 at Nile Cinema";

class ATaughtLedger : public testing::Test {
 protected:
  static std::string program() { return linux_platform::programFolder() / "kivo-ledger"; }
  static ProgramResult run(std::vector<std::string> arguments, const std::string& input = "") {
    return linux_platform::runProgram(
        {.program = program(), .arguments = std::move(arguments), .input = input});
  }
  // Runs it on a pseudo-terminal, on which `typed` is typed.
  static ProgramResult onTerminal(const std::string& arguments, const std::string& typed) {
    return linux_platform::runProgram({.program = "script",
                                       .arguments = {"--quiet", "--return", "--command",
                                                     program() + " " + arguments, "/dev/null"},
                                       .input = typed});
  }
  static nlohmann::json json(const std::string& command) {
    return nlohmann::json::parse(run({command, "--json"}).output);
  }
  static nlohmann::json shownEntry(const std::string& id) {
    return nlohmann::json::parse(run({"show", id, "--json"}).output);
  }
  [[nodiscard]] std::filesystem::path file() const {
    return ledger_.folders().home() / "config" / "kivo" / "templates.toml";
  }
  [[nodiscard]] std::string templates() const {
    std::ostringstream text;
    text << std::ifstream(file()).rdbuf();
    return text.str();
  }
  void write(const std::string& text) const {
    std::filesystem::create_directories(file().parent_path());
    std::ofstream(file()) << text;
  }
  // Sends the messages to a service that ends again.
  void receive(const std::vector<std::string>& messages) {
    const auto server = ledger_.start();
    int number = 0;
    for (const std::string& message : messages) {
      EXPECT_EQ(ledger_.post("KEY-" + std::to_string(++number), message).status(), 200);
    }
    server->signal(SIGTERM);
    EXPECT_EQ(server->wait().status, 0);
  }

  PrivateLedger ledger_;
};

TEST_F(ATaughtLedger, LearnsAMessageFromStandardInput) {
  const ProgramResult result = run(
      {"teach", "-", "--kind", "expense", "--amount", "150.00", "--payee", "Nile Cinema"}, unknown);
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(result.output,
            "\nThe template:\n"
            "  Zap! Tulip Bank moved EGP {amount} over to {payee} on {any}, EGP {any} stay.\n"
            "It reads this message as:\n"
            "  expense, 150.00 EGP, Nile Cinema, Entertainment\n\n"
            "Saved in " +
                file().string() +
                "\nThe message itself is not booked: it did not come from the phone.\n");
  EXPECT_THAT(templates(), HasSubstr("\n[[template]]\ntext = \"Zap! Tulip Bank moved EGP {amount} "
                                     "over to {payee} on {any}, EGP {any} stay.\"\n"
                                     "kind = \"expense\"\ncurrency = \"EGP\"\n"));
}

TEST_F(ATaughtLedger, LearnsNothingThatItCannotShow) {
  const ProgramResult result = linux_platform::runProgram(
      {.program = "sh",
       .arguments = {"-c", "exec \"$0\" teach - --kind expense --amount 150.00 >/dev/full",
                     program()},
       .input = unknown});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "kivo-ledger: standard output cannot be written\n");
  EXPECT_EQ(templates(), "");
}

TEST_F(ATaughtLedger, TakesACurrencyInSmallLetters) {
  const ProgramResult result =
      run({"teach", "-", "--kind", "expense", "--amount", "20", "--currency", "usd"},
          "Zap! Tulip Bank moved 20 over to Nile Cinema.");
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(templates(), HasSubstr("currency = \"USD\"\n"));
}

TEST_F(ATaughtLedger, TakesASumWithCommasBetweenThousands) {
  const ProgramResult result = run({"teach", "-", "--kind", "expense", "--amount", "1,189.50"},
                                   "Zap! Tulip Bank moved EGP 1189.50 over.");
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, HasSubstr("  expense, 1189.50 EGP, Payment, Other\n"));
}

TEST_F(ATaughtLedger, ReadsTheNextMessageWithoutARestart) {
  const auto server = ledger_.start();
  EXPECT_THAT(ledger_.post("KEY-1", unknown).body(), Not(HasSubstr("\"saved\":true")));
  ASSERT_EQ(run({"teach", "-", "--kind", "expense", "--amount", "150.00", "--payee", "Nile Cinema"},
                unknown)
                .status,
            0);
  EXPECT_THAT(ledger_.post("KEY-2", next).body(), HasSubstr("\"saved\":true"));
  const auto listed = json("list");
  ASSERT_THAT(listed, SizeIs(1));
  EXPECT_EQ(listed[0]["amount"], "1020.50");
  EXPECT_EQ(listed[0]["description"], "Old Town Books");
}

TEST_F(ATaughtLedger, ShowsTransfersByTheirNameAndKeepsThemOutOfTheTotals) {
  write("[[template]]\ntext = \"Paid {amount} EGP at Savings\"\nkind = \"transfer\"\n");
  const auto program = [](const char* name, std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = linux_platform::programFolder() / name,
                                       .arguments = std::move(arguments)})
        .output;
  };
  const auto server = ledger_.start();
  program("kivo-phone", {"sign-in", "--local"});
  EXPECT_EQ(program("kivo-intents",
                    {"perform", "AddExpenseIntent", "--amount", "150", "--merchant", "Savings"}),
            "Tracked EGP\u00a0150.00 at Own transfer\n");
  EXPECT_EQ(program("kivo-intents", {"perform", "ProcessSMSIntent", "--smsText",
                                     "Transfer of EGP 40.00 between your accounts was completed."}),
            "Tracked EGP\u00a040.00 at Own transfer\n");
  EXPECT_EQ(program("kivo-phone", {"store", "get", "todayTotal"}), "");
  const auto listed = json("list");
  ASSERT_THAT(listed, SizeIs(2));
  EXPECT_EQ(listed[0]["category"], "Transfer");
  EXPECT_EQ(listed[1]["category"], "Transfer");
  EXPECT_THAT(run({"export", "--format", "csv"}).output, Not(HasSubstr("__system_transfer__")));
}

TEST_F(ATaughtLedger, TakesMessagesInSpiteOfADamagedFile) {
  write("[[template]]\ntext = 'Zap {sum}'\nkind = 'expense'\n");
  const auto server = ledger_.start();
  EXPECT_THAT(ledger_.post("KEY-1").body(), HasSubstr("\"saved\":true"));
  EXPECT_THAT(ledger_.post("KEY-2").body(), HasSubstr("\"saved\":true"));
  server->signal(SIGTERM);
  EXPECT_EQ(server->wait().errors,
            "kivo-ledger: " + file().string() +
                ": line 2: {amount}, {payee} and {any} are all placeholders; a brace itself is "
                "written {{; messages are read without templates\n");
}

TEST_F(ATaughtLedger, DoesNotAddToADamagedFile) {
  write("[[template]]\ntext = 'Zap {sum}'\nkind = 'expense'\n");
  const ProgramResult result = run({"teach", "-", "--kind", "none"}, "Zap news");
  EXPECT_EQ(result.status, 1);
  EXPECT_THAT(result.errors, StartsWith("kivo-ledger: " + file().string() + ": line 2: "));
  EXPECT_EQ(templates(), "[[template]]\ntext = 'Zap {sum}'\nkind = 'expense'\n");
}

TEST_F(ATaughtLedger, KeepsTheTemplatesOfManyThatTeachAtOnce) {
  constexpr std::string_view names = "abcdefghij";
  std::vector<std::unique_ptr<linux_platform::ChildProcess>> teachers;
  for (const char name : names) {
    teachers.push_back(std::make_unique<linux_platform::ChildProcess>(linux_platform::ProgramCall{
        .program = program(),
        .arguments = {"teach", "-", "--kind", "expense", "--amount", "5"},
        .input = std::string("Zap! Bank ") + name + " moved EGP 5"}));
  }
  for (const auto& teacher : teachers) {
    const ProgramResult result = teacher->wait();
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("Saved in "));
  }
  for (const char name : names) {
    EXPECT_THAT(templates(), HasSubstr(std::string("Zap! Bank ") + name + " moved EGP {amount}"));
  }
}

TEST_F(ATaughtLedger, RefusesAFileThatOtherUsersMayChange) {
  write("[[template]]\ntext = 'Zap {any}'\nkind = 'none'\n");
  std::filesystem::permissions(file(), std::filesystem::perms(0664));
  const ProgramResult result = run({"teach", "-", "--kind", "none"}, "Zip news");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors,
            "kivo-ledger: " + file().string() +
                ": other users may change it; take that right from them with chmod go-w\n");
  std::filesystem::permissions(file(), std::filesystem::perms(0644));
  EXPECT_EQ(run({"teach", "-", "--kind", "none"}, "Zip news").status, 0);
}

TEST_F(ATaughtLedger, CorrectsTheTransactionThatItWasShown) {
  receive({purchase});
  const ProgramResult result = run({"teach", "1", "--kind", "transfer", "--amount", "150.00"});
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_THAT(result.output, AllOf(HasSubstr("It reads this message as:\n  transfer, 150.00 EGP, "),
                                   EndsWith("Corrected 1.\n")));
  EXPECT_EQ(json("list")[0]["kind"], "transfer");
}

TEST_F(ATaughtLedger, LeavesWhatAPersonEdited) {
  receive({unclear, "Purchase EGP 30.00 EGP 40.00 at Old Books", purchase});
  run({"edit", "2", "--amount", "33.00"});
  run({"accept", "2"});
  run({"edit", "3", "--date", "2026-11-20"});
  const ProgramResult result = run(
      {"teach", "1", "--kind", "expense", "--amount", "20.00", "--payee", "Nile Cinema", "--book"});
  EXPECT_THAT(result.output, EndsWith("Booked 1.\nLeft as you edited them: 2.\n"));
  const ProgramResult shown = run({"teach", "3", "--kind", "transfer", "--amount", "150.00"});
  EXPECT_THAT(shown.output, EndsWith("Left as you edited them: 3.\n"));
  EXPECT_EQ(shownEntry("2")["amount"], "33.00");
  EXPECT_EQ(shownEntry("3")["kind"], "expense");
}

TEST_F(ATaughtLedger, OffersBookedTransactionsThatFit) {
  receive({purchase, "Your card ending 7 was charged EGP 9.50 at Old Books on 20-11-2026."});
  const std::vector<std::string> teaching = {"teach",    "1",      "--kind",  "transfer",
                                             "--amount", "150.00", "--payee", "Carrefour City"};
  const ProgramResult shown = run(teaching);
  EXPECT_THAT(shown.output,
              AllOf(HasSubstr("\nOthers that fit, as they are read now:\nID "),
                    EndsWith("Left as they are; with --book, teach books them so.\n")));
  auto booking = teaching;
  booking.emplace_back("--book");
  EXPECT_THAT(run(booking).output, EndsWith("Booked 1 so.\n"));
  EXPECT_THAT(run(booking).output, EndsWith(" already.\n"));
  for (const auto& entry : json("list")) EXPECT_EQ(entry["kind"], "transfer");
}

TEST_F(ATaughtLedger, BooksWhatFitsWhenAsked) {
  receive({unclear, "Purchase EGP 30.00 EGP 40.00 at Old Books", purchase});
  ASSERT_THAT(json("review"), SizeIs(2));
  const std::vector<std::string> teaching = {"teach",    "1",     "--kind",  "expense",
                                             "--amount", "20.00", "--payee", "Nile Cinema"};
  const ProgramResult shown = run(teaching);
  EXPECT_EQ(shown.status, 0) << shown.errors;
  EXPECT_THAT(shown.output,
              AllOf(HasSubstr("Booked 1.\n\nOthers that fit, as they are read now:\nID "),
                    HasSubstr("40.00 EGP  Old Books"),
                    EndsWith("Left as they are; with --book, teach books them so.\n")));
  EXPECT_THAT(json("review"), SizeIs(1));
  auto booking = teaching;
  booking.emplace_back("--book");
  const ProgramResult booked = run(booking);
  EXPECT_THAT(booked.output, AllOf(HasSubstr("It is in " + file().string() + " already.\n"),
                                   EndsWith("Booked 1 so.\n")));
  EXPECT_THAT(json("review"), SizeIs(0));
  const auto listed = json("list");
  ASSERT_THAT(listed, SizeIs(3));
  EXPECT_EQ(listed[1]["id"], "2");
  EXPECT_EQ(listed[1]["amount"], "40.00");
  EXPECT_EQ(listed[1]["description"], "Old Books");
}

TEST_F(ATaughtLedger, NamesReviewsThatAreNoPayment) {
  receive({unclear});
  const ProgramResult result = run({"teach", "1", "--kind", "none"});
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_THAT(result.output, AllOf(HasSubstr("It reads this message as:\n  no payment\n"),
                                   EndsWith("In the book, and no payment: 1. `kivo-ledger delete "
                                            "ID` deletes one.\n")));
  EXPECT_THAT(json("review"), SizeIs(1));
}

TEST_F(ATaughtLedger, LeavesAForeignSumForReviewUntilThereIsARate) {
  receive({"Purchase USD 10.00 USD 20.00 at Nile Cinema"});
  const std::vector<std::string> teaching = {"teach",    "1",     "--kind", "expense",
                                             "--amount", "20.00", "--book"};
  EXPECT_THAT(run(teaching).output,
              AllOf(HasSubstr("  expense, 20.00 USD, Payment, "),
                    HasSubstr("\n  (USD is booked at its rate, and is for review without one)\n"),
                    EndsWith("Still for review: 1.\n")));
  run({"rate", "USD", "50"});
  EXPECT_THAT(run(teaching).output, EndsWith("Booked 1.\n"));
  EXPECT_EQ(json("list")[0]["amount"], "1000.00");
}

TEST_F(ATaughtLedger, AsksForThePartsAtATerminal) {
  receive({unclear});
  const ProgramResult result = onTerminal("teach 1", "e\n7\n20.00\n\n\n");
  EXPECT_EQ(result.status, 0);
  const std::vector<std::string> parts = {
      "The message:\r\n  Purchase EGP 10.00 EGP 20.00 at Nile Cinema\r\n",
      "Kind: expense, income, transfer, or none for no payment? [expense] ",
      "The sum, as the message writes it?",
      "That has to be one number of the message, as it is there or such as 1,189.50: commas only "
      "between thousands.\r\n",
      "Who was paid, as the message writes it, or - for no name? [Nile Cinema] ",
      "  Purchase EGP {any} EGP {amount} at {payee}\r\n",
      "  expense, 20.00 EGP, Nile Cinema, Entertainment\r\n",
      "Save it? [Y/n] ",
      "Booked 1.\r\n"};
  std::size_t place = 0;
  for (const std::string& part : parts) {
    place = result.output.find(part, place);
    ASSERT_NE(place, std::string::npos) << part << "\nis not in\n" << result.output;
  }
  EXPECT_EQ(json("list")[0]["amount"], "20.00");
}

TEST_F(ATaughtLedger, TakesTheRulesReadingByEnter) {
  receive({purchase});
  const ProgramResult result = onTerminal("teach 1", "\n\n\n\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, AllOf(HasSubstr("[150.00] "), HasSubstr("[Carrefour City] ")));
  EXPECT_THAT(
      templates(),
      HasSubstr("\"Your card ending {any} was charged EGP {amount} at {payee} on {any}.\""));
}

TEST_F(ATaughtLedger, AsksForTheMessageToo) {
  receive({unclear});
  const ProgramResult result = onTerminal("teach", "1\nnone\n\n");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("Teach which one? ID: "));
  EXPECT_THAT(templates(), HasSubstr("kind = \"none\"\n"));
}

TEST_F(ATaughtLedger, LearnsNothingWithoutAnAnswer) {
  receive({unclear});
  for (const char* const typed : {"\x04", "e\n\x04", "e\n20.00\n\x04", "e\n20.00\n\nn\n"}) {
    const ProgramResult result = onTerminal("teach 1", typed);
    EXPECT_EQ(result.status, 1) << typed;
    EXPECT_THAT(result.output, HasSubstr("kivo-ledger: nothing was taught\r\n")) << typed;
    EXPECT_FALSE(std::filesystem::exists(file()));
  }
}

TEST_F(ATaughtLedger, AsksAtTheTerminalForAMessageFromAPipe) {
  const auto message = ledger_.folders().home() / "message";
  std::ofstream(message) << unknown;
  const ProgramResult result =
      onTerminal("teach - < " + message.string(), "e\n150.00\nNile Cinema\ny\n");
  EXPECT_EQ(result.status, 0) << result.output;
  EXPECT_THAT(templates(), HasSubstr("moved EGP {amount} over to {payee} on"));
}

TEST_F(ATaughtLedger, SaysWhatIsMissingOrWrong) {
  receive({unclear});
  const auto expectFailure = [](const std::vector<std::string>& arguments, int status,
                                const std::string& error) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "kivo-ledger: " + error + "\n");
  };
  const std::string noTerminal =
      "there is no terminal to ask at; give ID or -, --kind and --amount";
  expectFailure({"teach"}, 64, noTerminal);
  expectFailure({"teach", "1"}, 64, noTerminal);
  expectFailure({"teach", "1", "--kind", "income"}, 64, noTerminal);
  expectFailure({"teach", "1", "--amount", "20.00"}, 64, noTerminal);
  expectFailure({"teach", "1", "--kind", "gift"}, 64,
                "invalid --kind \"gift\": it must be expense, income, transfer or none");
  expectFailure({"teach", "1", "--kind", "none", "--currency", "euro"}, 64,
                "invalid --currency \"euro\": it must be a code such as EGP");
  expectFailure({"teach", "x", "--kind", "none"}, 64,
                "invalid ID \"x\": it must be a number, as list and review show it");
  expectFailure({"teach", "9", "--kind", "none"}, 1, "no transaction has the ID 9");
  expectFailure({"teach", "-", "--kind", "none"}, 64, "standard input is empty");
  expectFailure({"teach", "1", "--kind", "expense", "--amount", "1,18.50"}, 1,
                "--amount has to be one number of the message, as it is there or such as 1,189.50: "
                "commas only between thousands");
  expectFailure({"teach", "1", "--kind", "expense", "--amount", "20.00", "--payee", "Moon"}, 1,
                "--payee has to be a part of the message, as it is there");
  run({"forget-texts", "--yes"});
  expectFailure({"teach", "1", "--kind", "none"}, 1,
                "1 has no text: it was forgotten, or entered by hand; `kivo-ledger teach -` takes "
                "a message from standard input");
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(ATaughtLedger, OffersTeachingAtATerminalWhereSomethingIsForReview) {
  const std::string hint =
      "To have messages like one of these\r\nbooked from now on: kivo-ledger teach ID\r\n";
  EXPECT_THAT(onTerminal("review", "").output, Not(HasSubstr("teach")));
  receive({unclear});
  EXPECT_THAT(onTerminal("review", "").output, EndsWith(hint));
  EXPECT_THAT(onTerminal("review --json", "").output, Not(HasSubstr("teach")));
  EXPECT_THAT(run({"review"}).output, Not(HasSubstr("teach")));
}

TEST_F(ATaughtLedger, EscapesControlCharactersOfAMessage) {
  const ProgramResult result = run({"teach", "-", "--kind", "none"}, "Zap \x1b[2J \u202e news");
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.output, HasSubstr("\n  Zap \\x1b[{any} news\n"));
}

}  // namespace
}  // namespace kivo::testkit
