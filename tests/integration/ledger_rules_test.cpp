// Rules for payees through the program: corrections that hold for later payments, `kivo-ledger
// rules`, and the question about earlier ones.
#include <csignal>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "platform/linux/process/child_process.h"
#include "platform/linux/terminal/text_columns.h"
#include "testkit/private_ledger.h"

// The merchants and people below do not exist.

namespace kivo::testkit {
namespace {

using linux_platform::ProgramResult;
using testing::Each;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Le;
using testing::Not;
using testing::ResultOf;

class ALedgersRules : public testing::Test {
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
  // What a terminal of `columns` shows while `typed` is typed.
  static std::string onTerminal(const std::string& arguments, const std::string& typed,
                                int columns = 100) {
    std::string output =
        linux_platform::runProgram({.program = "script",
                                    .arguments = {"--quiet", "--return", "--command",
                                                  "stty cols " + std::to_string(columns) +
                                                      " -echo; exec " + program() + " " + arguments,
                                                  "/dev/null"},
                                    .input = typed,
                                    .environment = {{"SHELL", "/bin/sh"}}})
            .output;
    std::erase(output, '\r');
    return output;
  }
  static void add(const std::string& payee) {
    shown({"add", "--date", "2026-11-02", "--amount", "5", "--payee", payee});
  }
  static std::string member(const std::string& id, const char* name) {
    return nlohmann::json::parse(shown({"show", id, "--json"}))[name];
  }
  static std::string category(const std::string& id) { return member(id, "category"); }
  static nlohmann::json rules() { return nlohmann::json::parse(shown({"rules", "--json"})); }
  static void expectFailure(const std::vector<std::string>& arguments, int status,
                            const std::string& error) {
    const ProgramResult result = run(arguments);
    EXPECT_EQ(result.status, status);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, HasSubstr(error));
  }

  PrivateLedger ledger_;
};

TEST_F(ALedgersRules, AreMadeAndToldByAnEdit) {
  add("ZED CORNER");
  EXPECT_THAT(shown({"edit", "1", "--category", "utilities"}),
              EndsWith("\n\nLater payments to ZED CORNER will be Utilities. "
                       "`kivo-ledger rules` shows it.\n"));
  EXPECT_EQ(shown({"rules"}),
            "NUMBER  PAYEE       DESCRIPTION  CATEGORY   KIND\n"
            "1       ZED CORNER               Utilities\n");
  EXPECT_THAT(shown({"edit", "1", "--description", "Gas"}),
              EndsWith("Later payments to ZED CORNER will be Utilities and called Gas. "
                       "`kivo-ledger rules` shows it.\n"));
  add("zed corner");
  EXPECT_EQ(category("2"), "Utilities");
  EXPECT_EQ(member("2", "description"), "Gas");
}

TEST_F(ALedgersRules, AreNotMadeByOtherEdits) {
  add("ZED CORNER");
  EXPECT_THAT(shown({"edit", "1", "--category", "Fun", "--once"}), Not(HasSubstr("Later")));
  EXPECT_THAT(shown({"edit", "1", "--kind", "transfer", "--amount", "7"}), Not(HasSubstr("Later")));
  EXPECT_EQ(shown({"rules"}),
            "There is no rule. `kivo-ledger edit ID --category CATEGORY` makes one for the "
            "payee.\n");
  EXPECT_EQ(shown({"rules", "--json"}), "[]\n");
}

TEST_F(ALedgersRules, AreNotMadeWithoutAPayee) {
  const auto server = ledger_.start();
  EXPECT_EQ(ledger_.post("KEY", "Your card ending 4821 was charged EGP 20.00.").status(), 200);
  server->signal(SIGTERM);
  EXPECT_EQ(server->wait().status, 0);
  EXPECT_THAT(shown({"edit", "1", "--category", "Fun"}),
              EndsWith("\n\nNo payee is named here, so this makes no rule.\n"));
  EXPECT_EQ(shown({"rules", "--json"}), "[]\n");
}

TEST_F(ALedgersRules, TakeAStarInAPayeesNameAsAStar) {
  const auto server = ledger_.start();
  EXPECT_EQ(
      ledger_.post("KEY", "Your card ending 4821 was charged EGP 20.00 at UBER *TRIP.").status(),
      200);
  server->signal(SIGTERM);
  EXPECT_EQ(server->wait().status, 0);
  EXPECT_THAT(shown({"edit", "1", "--category", "Rides"}),
              EndsWith("Later payments to UBER \\*TRIP will be Rides. "
                       "`kivo-ledger rules` shows it.\n"));
  add("UBER *TRIP");
  add("UBER EATS TRIP");
  EXPECT_EQ(category("2"), "Rides");
  EXPECT_NE(category("3"), "Rides");
  shown({"rules", "add", "--payee", rules()[0]["payee"], "--category", "Typed"});
  EXPECT_EQ(rules().size(), 1U);
}

TEST_F(ALedgersRules, AreAddedWithAPattern) {
  EXPECT_EQ(shown({"rules", "add", "--payee", "TALABAT*", "--category", "dining", "--kind",
                   "transfer", "--description", "Talabat"}),
            "Later payments to TALABAT* will be transfers, Dining and called Talabat. "
            "`kivo-ledger rules` shows it.\n");
  EXPECT_EQ(rules(), nlohmann::json::parse(R"([{"number": "1", "payee": "TALABAT*",
    "description": "Talabat", "category": "Dining", "kind": "transfer"}])"));
  add("Talabat 12");
  EXPECT_EQ(category("1"), "Dining");
  EXPECT_EQ(member("1", "description"), "Talabat");
  EXPECT_EQ(member("1", "kind"), "transfer");
  shown({"add", "--amount", "5", "--payee", "Talabat 13", "--kind", "expense"});
  EXPECT_EQ(member("2", "kind"), "expense");
}

TEST_F(ALedgersRules, SayWhatTheyWereWhenTheyChange) {
  shown({"rules", "add", "--payee", "TALABAT*", "--category", "Dining"});
  EXPECT_EQ(shown({"rules", "add", "--payee", "talabat*", "--category", "Fun", "--kind", "income"}),
            "Changed rule 1. Before, payments to TALABAT* were Dining.\n"
            "Later payments from TALABAT* will be income and Fun. "
            "`kivo-ledger rules` shows it.\n");
  EXPECT_THAT(shown({"rules", "add", "--payee", "talabat*", "--category", "Fun"}),
              HasSubstr("There is rule 1 for this already.\n"));
}

TEST_F(ALedgersRules, AreRemovedByNumberAndLeaveEarlierPayments) {
  shown({"rules", "add", "--payee", "ZED*", "--category", "Fun"});
  add("Zed Corner");
  EXPECT_EQ(shown({"rules", "remove", "1"}),
            "Removed the rule for ZED*. Earlier payments stay as they are.\n");
  EXPECT_EQ(category("1"), "Fun");
  add("Zed Corner");
  EXPECT_EQ(category("2"), "Other");
  expectFailure({"rules", "remove", "1"}, 1,
                "no rule has the number 1; kivo-ledger rules shows them");
  expectFailure({"rules", "remove", "ZED*"}, 64,
                "invalid NUMBER \"ZED*\": it must be a number, as kivo-ledger rules shows it");
}

TEST_F(ALedgersRules, AreRefusedWhenTheyWouldFitEverybodyOrSayNothing) {
  for (const char* const payee : {"*", " ", "* *"}) {
    expectFailure({"rules", "add", "--payee", payee, "--category", "Fun"}, 64,
                  std::string("invalid --payee \"") + payee + "\": it must be a name");
  }
  expectFailure({"rules", "add", "--payee", "ZED*"}, 64,
                "rules add needs one of --description, --category, --kind");
  expectFailure({"rules", "add", "--payee", "ZED*", "--kind", "gift"}, 64,
                "invalid --kind \"gift\"");
  expectFailure({"rules", "ad"}, 64, "did you mean \"rules add\"?");
  EXPECT_EQ(shown({"rules", "--json"}), "[]\n");
}

TEST_F(ALedgersRules, ChangeEarlierPaymentsInAScriptWhenItSaysSo) {
  for (int count = 0; count < 4; ++count) add("ZED CORNER");
  shown({"edit", "3", "--category", "Mine", "--once"});
  EXPECT_THAT(shown({"edit", "4", "--category", "Utilities"}),
              EndsWith("Left as you edited them: 3.\n"
                       "2 earlier ones stay as they are; with --also-earlier, they change too.\n"));
  EXPECT_EQ(category("1"), "Other");
  EXPECT_THAT(shown({"edit", "4", "--category", "Utilities", "--also-earlier"}),
              EndsWith("Left as you edited them: 3.\nChanged 2 earlier payments.\n"));
  EXPECT_EQ(category("1"), "Utilities");
  EXPECT_EQ(category("3"), "Mine");
  EXPECT_THAT(shown({"rules", "add", "--payee", "ZED*", "--description", "Zed", "--also-earlier"}),
              EndsWith("Left as you edited them: 3 and 4.\nChanged 2 earlier payments.\n"));
  EXPECT_EQ(member("2", "description"), "Zed");
}

TEST_F(ALedgersRules, AskAboutEarlierPaymentsOnATerminal) {
  for (int count = 0; count < 3; ++count) add("ZED CORNER");
  const std::string kept = onTerminal("edit 3 --category Utilities", "n\n");
  EXPECT_THAT(kept, HasSubstr("Later payments to ZED CORNER will be Utilities. `kivo-ledger rules` "
                              "shows it.\n2 earlier ones too? [y/N] "));
  EXPECT_EQ(category("1"), "Other");
  EXPECT_EQ(rules().size(), 1U);
  const std::string changed = onTerminal("edit 3 --category Bills", "y\n");
  EXPECT_THAT(changed, EndsWith("2 earlier ones too? [y/N] Changed 2 earlier payments.\n"));
  EXPECT_EQ(category("1"), "Bills");
  EXPECT_THAT(onTerminal("edit 3 --category Bills", ""), Not(HasSubstr("too?")));
  EXPECT_THAT(onTerminal("rules add --payee 'ZED*' --kind transfer", "y\n"),
              EndsWith("Later payments to ZED* will be transfers. `kivo-ledger rules` shows it.\n"
                       "Left as you edited them: 3.\n"
                       "2 earlier ones too? [y/N] Changed 2 earlier payments.\n"));
  EXPECT_EQ(member("1", "kind"), "transfer");
}

TEST_F(ALedgersRules, AskOnceForSeveralPayees) {
  for (const char* const payee : {"ZED CORNER", "PALM QUARTER", "ZED CORNER", "PALM QUARTER"})
    add(payee);
  const std::string changed = onTerminal("edit 1-2 --category Utilities", "y\n");
  EXPECT_THAT(changed, EndsWith("Later payments to ZED CORNER will be Utilities.\n"
                                "Later payments to PALM QUARTER will be Utilities.\n"
                                "`kivo-ledger rules` shows them.\n"
                                "2 earlier ones too? [y/N] Changed 2 earlier payments.\n"));
  EXPECT_EQ(category("3"), "Utilities");
  EXPECT_EQ(category("4"), "Utilities");
}

TEST_F(ALedgersRules, AreUndoneTogetherWithTheEarlierPaymentsThatTheyChanged) {
  add("ZED CORNER");
  add("ZED CORNER");
  shown({"edit", "2", "--category", "Utilities", "--also-earlier"});
  ASSERT_EQ(category("1"), "Utilities");
  shown({"undo"});
  EXPECT_EQ(category("1"), "Other");
  EXPECT_EQ(category("2"), "Other");
  EXPECT_EQ(shown({"rules", "--json"}), "[]\n");
  shown({"rules", "add", "--payee", "ZED*", "--category", "Fun"});
  shown({"rules", "remove", "2"});
  shown({"undo"});
  EXPECT_EQ(rules()[0]["number"], "2");
}

TEST_F(ALedgersRules, AreToldByPaymentsThatGetACategory) {
  EXPECT_EQ(shown({"add", "--amount", "20", "--payee", "Aunt Mona", "--kind", "income",
                   "--category", "Gifts"}),
            "Booked as EGP 20.00. ID 1.\n"
            "Later payments from Aunt Mona will be Gifts. `kivo-ledger rules` shows it.\n");
}

TEST_F(ALedgersRules, RefuseOptionsThatContradictEachOther) {
  add("ZED CORNER");
  expectFailure({"edit", "1", "--category", "Fun", "--once", "--also-earlier"}, 64,
                "--once changes no other payment, and --also-earlier does: give one of them");
  expectFailure({"edit", "1", "--amount", "7", "--also-earlier"}, 64,
                "--also-earlier needs --description or --category");
  expectFailure({"edit", "1", "--once"}, 64, "edit needs one of --date");
  EXPECT_EQ(category("1"), "Other");
}

TEST_F(ALedgersRules, FitNarrowAndWideTerminals) {
  add("The Grand Extraordinary Bookstore");
  add("The Grand Extraordinary Bookstore");
  for (const int columns : {40, 100}) {
    const std::string width = std::to_string(columns);
    std::string all =
        onTerminal("edit 1 --category 'Books and more " + width + "'", "y\n", columns);
    all.erase(0, all.find("Later"));
    all.replace(all.find("Changed"), 0, "\n");  // the answer is not shown
    all +=
        onTerminal("rules add --payee 'مكتبة*' --category Books --description مكتبة", "", columns);
    all += onTerminal("rules", "", columns);
    all += onTerminal("rules remove " + std::to_string(columns == 40 ? 2 : 3), "", columns);
    std::istringstream stream(all);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    EXPECT_THAT(lines,
                Each(ResultOf(linux_platform::columnsOf, Le(static_cast<std::size_t>(columns)))))
        << all;
    EXPECT_THAT(all, HasSubstr("مكتبة*"));
  }
}

}  // namespace
}  // namespace kivo::testkit
