// `kivo-ledger undo` and `kivo-ledger history`.
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "book/current_day.h"
#include "testkit/ledger_command_test.h"
#include "testkit/raw_store.h"

// The banks, merchants and people below do not exist.

namespace kivo::testkit {
namespace {

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class AnUndo : public LedgerCommandTest {
 protected:
  // All that the commands show.
  static std::string everything() {
    std::string text;
    for (const char* const command : {"list", "review", "ignored"}) {
      text += shown({command, "--json"}) + "\n";
    }
    return text + shown({"rate"}) + shown({"export", "--format", "csv"});
  }
  [[nodiscard]] std::filesystem::path templateFile() const {
    return ledger_.folders().home() / "config" / "kivo" / "templates.toml";
  }
  [[nodiscard]] std::string templates() const {
    std::ostringstream text;
    text << std::ifstream(templateFile()).rdbuf();
    return text.str();
  }
};

TEST_F(AnUndo, TakesBackTheLastCommandWhicheverItWas) {
  const std::string today = book::currentDay().text();
  receive({purchase, "Purchase EGP 10.00 EGP 20.00 at Nile Cinema", unreadable}, today);
  for (const std::vector<std::string>& command : std::vector<std::vector<std::string>>{
           {"edit", "1", "--amount", "99", "--category", "Treats"},
           {"edit", "1", "2", "--date", "2026-11-01"},
           {"edit", "2", "--amount", "20"},
           {"rate", "USD", "48.5"},
           {"add", "--amount", "12", "--payee", "Cafe Nilo"},
           {"book", "1", "--kind", "expense", "--category", "Fun"},
           {"teach", "ignored:1", "--kind", "expense", "--amount", "640.00"},
           {"teach", "ignored:1", "--kind", "none"},
       }) {
    const std::string before = everything();
    shown(command);
    EXPECT_NE(everything(), before) << command[0];
    EXPECT_THAT(shown({"undo"}), HasSubstr("Undone: " + command[0] + " " + command[1]));
    EXPECT_EQ(everything(), before) << command[0];
  }
}

TEST_F(AnUndo, SaysWhatItTookBack) {
  receive({purchase, purchase});
  shown({"edit", "1", "2", "--category", "Night out", "--description", "Nilo's"});
  shown({"delete", "2", "--yes"});
  EXPECT_EQ(shown({"undo", "3"}),
            "Undone: delete 2 (1 transaction).\n"
            "  The texts of deleted messages stay erased.\n"
            "Undone: edit 1 2 --category \"Night out\" --description \"Nilo's\" "
            "(2 transactions, 1 rule).\n"
            "Undone 2 commands; there were no more.\n");
  EXPECT_FALSE(json({"show", "2"}).contains("text"));
  expectFailure({"undo"}, 1, "there is nothing to undo");
}

TEST_F(AnUndo, RefusesACountThatIsNone) {
  for (const char* const count : {"0", "-1", "x", "1.5", ""}) {
    expectFailure({"undo", "--", count}, 64,
                  "invalid COUNT \"" + std::string(count) +
                      "\": it must be the number of the last commands to undo, such as 3");
  }
}

TEST_F(AnUndo, LeavesForgottenTextsForgotten) {
  receive({purchase});
  shown({"forget-texts", "--yes"});
  EXPECT_EQ(shown({"undo"}), "forget-texts cannot be undone: forgotten texts stay forgotten.\n");
}

TEST_F(AnUndo, RemovesATemplateThatIsAsItWasTaught) {
  shown({"teach", "-", "--kind", "expense", "--amount", "640.00"}, unreadable);
  const std::string first = templates();
  shown({"teach", "-", "--kind", "none"}, unreadableToo);
  EXPECT_EQ(shown({"undo"}),
            "Undone: teach - --kind none (1 template).\n  Its template is removed "
            "from " +
                templateFile().string() + ".\n");
  EXPECT_EQ(templates(), first);
  std::ofstream(templateFile(), std::ios::app) << "category = \"Mine\"\n";
  const std::string changed = templates();
  EXPECT_EQ(shown({"undo"}),
            "Undone: teach - --amount 640.00 --kind expense (1 template).\n  Its template was "
            "changed since, and stays in " +
                templateFile().string() + ".\n");
  EXPECT_EQ(templates(), changed);
}

TEST_F(AnUndo, OfATemplateLeavesThoseBehindIt) {
  shown({"teach", "-", "--kind", "none"}, unreadable);
  std::ofstream(templateFile(), std::ios::app)
      << "\n[[template]]\ntext = \"Mine {amount}\"\nkind = \"expense\"\n";
  shown({"undo"});
  EXPECT_THAT(templates(), Not(HasSubstr("Tulip")));
  EXPECT_THAT(templates(), HasSubstr("Mine {amount}"));
  EXPECT_EQ(run({"teach", "-", "--kind", "none"}, unreadable).status, 0);
}

TEST_F(AnUndo, HasAHistoryWhoseLinesCountWhatItTakes) {
  shown({"add", "--amount", "12", "--payee", "Cafe Nilo"});
  shown({"rate", "USD", "48.5"});
  const std::string history = shown({"history"});
  EXPECT_THAT(history, StartsWith("UNDO  TIME              COMMAND\n1     " +
                                  book::currentDay().text() + " "));
  EXPECT_THAT(history, HasSubstr("  rate USD 48.5 (1 rate)\n2     "));
  EXPECT_THAT(history, EndsWith("  add --amount 12 --payee \"Cafe Nilo\" (1 transaction)\n"));
  const auto commands = json({"history"});
  ASSERT_THAT(commands, SizeIs(2));
  EXPECT_EQ(commands[0]["number"], "2");
  EXPECT_EQ(commands[0]["command"], "rate USD 48.5");
  EXPECT_EQ(commands[0]["rates"], 1);
  EXPECT_EQ(commands[1]["transactions"], 1);
  shown({"undo", "2"});
  EXPECT_EQ(shown({"history"}), "There is nothing to undo.\n");
}

TEST_F(AnUndo, ShowsNoControlCharactersOfWhatWasTyped) {
  shown({"add", "--amount", "12", "--payee", "Cafe\x1b[31m\nNilo"});
  EXPECT_THAT(shown({"history"}), Not(HasSubstr("\x1b")));
  EXPECT_THAT(shown({"undo"}), Not(HasSubstr("\x1b")));
}

}  // namespace
}  // namespace kivo::testkit
