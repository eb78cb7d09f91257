// The lists of kivo-ledger on terminals of several widths.
#include <csignal>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "platform/linux/process/child_process.h"
#include "platform/linux/terminal/text_columns.h"
#include "testkit/private_ledger.h"

namespace kivo::testkit {
namespace {

using linux_platform::columnsOf;
using testing::Each;
using testing::HasSubstr;
using testing::Le;
using testing::Not;
using testing::ResultOf;

class ALedgersTerminal : public testing::Test {
 protected:
  // The output of `command` on a terminal of `columns`, without the carriage returns.
  static std::string shown(const std::string& command, int columns) {
    const std::string program = linux_platform::programFolder() / "kivo-ledger";
    std::string output =
        linux_platform::runProgram({.program = "script",
                                    .arguments = {"--quiet", "--return", "--command",
                                                  "stty cols " + std::to_string(columns) +
                                                      "; exec " + program + " " + command,
                                                  "/dev/null"},
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
  // Sends the messages to a service that ends again.
  void receive(const std::vector<std::string>& messages) {
    const auto server = ledger_.start();
    for (std::size_t number = 0; number < messages.size(); ++number) {
      const std::string key = "KEY-" + std::to_string(number);
      EXPECT_EQ(ledger_.post(key, messages[number]).status(), 200);
    }
    server->signal(SIGTERM);
    EXPECT_EQ(server->wait().status, 0);
  }

  PrivateLedger ledger_;
};

TEST_F(ALedgersTerminal, ShowsTheListInFortyColumns) {
  receive(
      {purchase, purchase, "تم خصم 18500.00 ج.م من بطاقتك لدى مطعم أبو طارق",
       "Your card was charged EGP 1234567.89 at The Grand Extraordinary Bookstore of Old Cairo",
       "Salary of EGP 18,500.00 was credited to your account 4821 from Horizon Trading Company"});
  EXPECT_EQ(shown("list --search carrefour", 40),
            "ID  DATE            AMOUNT\n"
            "2   2026-11-21  150.00 EGP\n"
            "    Carrefour City  Groceries\n"
            "    looks like 1\n"
            "1   2026-11-21  150.00 EGP\n"
            "    Carrefour City  Groceries\n"
            "\n"
            "2 payments\n"
            "Spent        300.00 EGP\n");
  const std::string all = shown("list", 40);
  EXPECT_THAT(linesOf(all), Each(ResultOf(columnsOf, Le(40U))));
  EXPECT_THAT(all, HasSubstr("1234567.89 EGP\n"));
  EXPECT_THAT(all, HasSubstr(", income\n"));
  EXPECT_THAT(all, HasSubstr("مطعم أبو طارق"));
}

TEST_F(ALedgersTerminal, ShowsTheCommandsUnderHeadingsInEightyColumns) {
  const std::string help = shown("--help", 80);
  std::vector<std::string> headings;
  for (const std::string& line : linesOf(help)) {
    if (!line.empty() && line.front() != ' ' && line.back() == ':') headings.push_back(line);
  }
  EXPECT_THAT(headings, testing::ElementsAre("Options:", "Look:", "Correct:", "Teach:",
                                             "Old and other data:", "Service:"));
  EXPECT_THAT(linesOf(help), Each(ResultOf(columnsOf, Le(80U))));
  EXPECT_THAT(help, testing::ContainsRegex("\nLook:\n  list "));
  EXPECT_THAT(help, testing::ContainsRegex("\nService:\n  serve "));
}

TEST_F(ALedgersTerminal, ShowsTheReviewInFortyColumns) {
  receive({"Your card ending 4821 was charged USD 20.00 at Netflix.",
           "Purchase EGP 10.00 EGP 20.00 at The Grand Extraordinary Bookstore of Old Cairo"});
  const std::string review = shown("review", 40);
  EXPECT_THAT(linesOf(review), Each(ResultOf(columnsOf, Le(40U))));
  EXPECT_THAT(review, HasSubstr("\n1   2026-11-21  20.00 USD\n    Netflix"));
  EXPECT_THAT(review, HasSubstr("…"));
}

TEST_F(ALedgersTerminal, ShowsATableWhereItHasRoom) {
  receive({purchase, purchase});
  for (const int columns : {80, 200}) {
    const std::string list = shown("list", columns);
    EXPECT_THAT(linesOf(list), Each(ResultOf(columnsOf, Le(static_cast<std::size_t>(columns)))));
    EXPECT_THAT(list, HasSubstr("  Groceries (looks like 1)\n"));
    EXPECT_THAT(list, Not(HasSubstr("\n    ")));
  }
}

TEST_F(ALedgersTerminal, KeepsTheListWholeInAPipe) {
  receive({"Your card was charged EGP 5.00 at The Grand Extraordinary Bookstore of Old Cairo"});
  EXPECT_THAT(
      linux_platform::runProgram(
          {.program = linux_platform::programFolder() / "kivo-ledger", .arguments = {"list"}})
          .output,
      HasSubstr("expense  5.00 EGP  The Grand Extraordinary Bookstore of Old Cairo"));
}

}  // namespace
}  // namespace kivo::testkit
