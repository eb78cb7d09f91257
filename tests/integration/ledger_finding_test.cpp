// How payments are found: the filters of `kivo-ledger list` and `export`, and the sums at the end
// of `list`.
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "platform/linux/process/child_process.h"
#include "platform/linux/terminal/text_columns.h"
#include "testkit/private_ledger.h"
#include "testkit/raw_store.h"

// The merchants and people below do not exist.

namespace kivo::testkit {
namespace {

using linux_platform::columnsOf;
using linux_platform::ProgramResult;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ASearchOfTheBook : public testing::Test {
 protected:
  static std::string program() { return linux_platform::programFolder() / "kivo-ledger"; }
  static ProgramResult run(std::vector<std::string> arguments) {
    return linux_platform::runProgram({.program = program(), .arguments = std::move(arguments)});
  }
  static void add(const std::string& amount, const std::string& currency, const std::string& kind,
                  const std::string& payee, const std::string& account) {
    const ProgramResult added =
        run({"add", "--date", "2026-11-02", "--amount", amount, "--currency", currency, "--kind",
             kind, "--payee", payee, "--account", account});
    EXPECT_EQ(added.status, 0) << added.errors;
  }
  // 1 to 4.
  static void addFour() {
    add("1189.50", "EGP", "expense", "Zed Corner", "4821");
    add("18500", "EGP", "income", "Horizon Trading", "221");
    add("20", "USD", "expense", "Shop 1189", "4821");
    add("300", "EGP", "transfer", "Aunt Mona", "4821");
  }
  // The ids that `list` shows.
  static std::vector<std::string> found(std::vector<std::string> options) {
    options.insert(options.begin(), {"list", "--json"});
    const ProgramResult result = run(std::move(options));
    EXPECT_EQ(result.status, 0) << result.errors;
    std::vector<std::string> ids;
    for (const auto& entry : nlohmann::json::parse(result.output)) ids.push_back(entry["id"]);
    return ids;
  }
  // The output of `list` on a terminal of 40 columns, without the carriage returns.
  static std::string onTerminal(const std::string& options) {
    const std::string line = "stty cols 40; exec " + program() + " list " + options;
    std::string output = linux_platform::runProgram(
                             {.program = "script",
                              .arguments = {"--quiet", "--return", "--command", line, "/dev/null"},
                              .environment = {{"SHELL", "/bin/sh"}}})
                             .output;
    std::erase(output, '\r');
    return output;
  }

  PrivateLedger ledger_;
};

TEST_F(ASearchOfTheBook, FindsASumHoweverItIsTyped) {
  addFour();
  for (const char* sum : {"1189.50", "1,189.50", "1189.5"}) {
    EXPECT_THAT(found({"--search", sum}), ElementsAre("1")) << sum;
  }
  EXPECT_THAT(found({"--search", "1189"}), ElementsAre("3"));
  EXPECT_THAT(found({"--search", "20"}), ElementsAre("3"));
}

TEST_F(ASearchOfTheBook, FindsSumsWithinBoundsOfTheirOwnCurrency) {
  addFour();
  EXPECT_THAT(found({"--min", "300"}), ElementsAre("4", "2", "1"));
  EXPECT_THAT(found({"--max", "1,189.50"}), ElementsAre("4", "3", "1"));
  EXPECT_THAT(found({"--min", "20.01", "--max", "300"}), ElementsAre("4"));
  EXPECT_THAT(found({"--min", "300", "--max", "20"}), IsEmpty());
}

TEST_F(ASearchOfTheBook, FindsTheKindAndTheAccount) {
  addFour();
  EXPECT_THAT(found({"--kind", "expense"}), ElementsAre("3", "1"));
  EXPECT_THAT(found({"--account", "4821", "--kind", "transfer"}), ElementsAre("4"));
  EXPECT_THAT(found({"--account", "482"}), IsEmpty());
}

TEST_F(ASearchOfTheBook, ChoosesForTheExportToo) {
  addFour();
  EXPECT_EQ(run({"export", "--format", "csv", "--kind", "expense", "--max", "100"}).output,
            "date,kind,amount,currency,description,category,account,reference,id\n"
            "2026-11-02,expense,20.00,USD,Shop 1189,Shopping,4821,,3\n");
}

TEST_F(ASearchOfTheBook, RefusesAWordThatIsNoFilterAndRepeatsIt) {
  const std::vector<std::pair<std::string, std::string>> wrong = {
      {"--kind", "gift"}, {"--kind", ""},     {"--account", ""},
      {"--min", "cheap"}, {"--min", "-5"},    {"--min", "EGP 5"},
      {"--max", "1,18"},  {"--max", "1.2.3"}, {"--max", ""}};
  for (const char* command : {"list", "export"}) {
    for (const auto& [option, value] : wrong) {
      std::vector<std::string> arguments = {command, option + "=" + value};
      if (arguments.front() == "export") arguments.insert(arguments.end(), {"--format", "csv"});
      const ProgramResult refused = run(arguments);
      EXPECT_EQ(refused.status, 64) << option << value;
      EXPECT_EQ(refused.output, "");
      EXPECT_THAT(refused.errors,
                  HasSubstr("kivo-ledger: invalid " + option + " \"" + value + "\": it must be "));
    }
  }
}

TEST_F(ASearchOfTheBook, EndsWithTheSumsOfEachKindAndCurrencyOnATerminal) {
  addFour();
  add("0.50", "EGP", "expense", "Zed Corner", "4821");
  EXPECT_THAT(onTerminal(""), EndsWith("\n\n5 payments\n"
                                       "Spent         1190.00 EGP\n"
                                       "Received     18500.00 EGP\n"
                                       "Transferred    300.00 EGP\n"
                                       "Spent           20.00 USD\n"));
  EXPECT_THAT(onTerminal("--search horizon"), EndsWith("\n1 payment\nReceived     18500.00 EGP\n"));
  std::istringstream lines(onTerminal(""));
  for (std::string line; std::getline(lines, line);) EXPECT_LE(columnsOf(line), 40U) << line;
}

TEST_F(ASearchOfTheBook, ShowsSumsOnATerminalAlone) {
  addFour();
  EXPECT_THAT(onTerminal("--json"), Not(HasSubstr("payment")));
  EXPECT_THAT(run({"list"}).output, Not(HasSubstr("payment")));
  EXPECT_EQ(onTerminal("--search nothing"), "No transaction fits.\n");
}

TEST_F(ASearchOfTheBook, LeavesOutOfTheSumsWhatIsSetAside) {
  addFour();
  RawStore(ledger_.file())
      .run("UPDATE transactions SET state = 'set_aside', minor_units = -5 WHERE id = 1");
  const std::string list = onTerminal("--account 4821 --kind expense");
  EXPECT_THAT(list, HasSubstr("since a value of each cannot be: 1;"));
  EXPECT_THAT(list, EndsWith("\n1 payment\nSpent        20.00 USD\n"));
}

TEST_F(ASearchOfTheBook, SaysWhenASumIsTooLarge) {
  addFour();
  RawStore(ledger_.file())
      .run(
          "WITH RECURSIVE n (i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 1100) "
          "INSERT INTO transactions (user, key, date, kind, minor_units, currency, description, "
          "category, payee, folded_payee, account, reference, state) SELECT 'u', 'k' || i, "
          "'2026-11-02', 'expense', 9007199254740992, 'EGP', '', '', '', '', '', '', 'booked' "
          "FROM n");
  EXPECT_THAT(onTerminal("--kind expense"), EndsWith("\n1102 payments\n"
                                                     "Spent        too large EGP\n"
                                                     "Spent            20.00 USD\n"));
}

}  // namespace
}  // namespace kivo::testkit
