// The widget of the real program kivo-phone: in a pipe, on terminals of all kinds, and in a window.
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "phone_program.h"
#include "platform/linux/process/child_process.h"
#include "store/shared_store.h"
#include "testkit/private_folders.h"
#include "testkit/private_phone.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using linux_platform::runProgram;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class AWidgetProgram : public testing::Test {
 protected:
  AWidgetProgram() {
    SharedStore store = SharedStore::open(appGroup).value();
    store.writeText(StoreKeys::currency, "USD");
    store.synchronize();
  }

  static ProgramResult run(std::vector<std::string> arguments) {
    return runProgram({.program = phoneProgram(), .arguments = std::move(arguments)});
  }

  // The output of the program on a terminal with these variables.
  static std::string shown(const std::optional<std::string>& terminal,
                           const std::optional<std::string>& noColour = std::nullopt) {
    return runProgram(
               {.program = "script",
                .arguments = {"--quiet", "--return", "--command",
                              "exec " + phoneProgram() + " widget", "/dev/null"},
                .environment = {{"SHELL", "/bin/sh"}, {"TERM", terminal}, {"NO_COLOR", noColour}}})
        .output;
  }

  testkit::PrivateFolders folders_;
};

TEST_F(AWidgetProgram, PrintsLinesOfNamesAndValuesToAPipe) {
  EXPECT_EQ(run({"widget"}).output,
            "Today          $0.00\nExpenses       0\nRunning total  $0.00\n"
            "Waiting        0\nSigned in      no\n");
}

TEST_F(AWidgetProgram, ShowsAFrameWithBoldFiguresOnATerminal) {
  EXPECT_THAT(shown("xterm"), HasSubstr("│ Running total  \x1b[1m$0.00\x1b[0m      │\r\n"));
  EXPECT_THAT(shown("xterm", ""), HasSubstr("\x1b[1m$0.00\x1b[0m"));
}

TEST_F(AWidgetProgram, PrintsNoBoldWithNoColorOrADumbTerminal) {
  for (const std::string& plain :
       {shown("xterm", "1"), shown("dumb"), shown(""), shown(std::nullopt)}) {
    EXPECT_THAT(plain, HasSubstr("│ Running total  $0.00      │\r\n"));
    EXPECT_THAT(plain, Not(HasSubstr("\x1b")));
  }
}

// A PATH with only a terminal, which records the command that it is to run.
class AWidgetWindow : public AWidgetProgram {
 protected:
  void haveTerminal() {
    std::filesystem::create_directories(programs());
    const auto terminal = programs() / "xdg-terminal-exec";
    std::ofstream(terminal) << "#!/bin/sh\nshift 3\nprintf '%s\\n' \"$@\" > '" << noted().string()
                            << ".new'\n/bin/mv '" << noted().string() << ".new' '"
                            << noted().string() << "'\n";
    std::filesystem::permissions(terminal, std::filesystem::perms::owner_all);
  }
  [[nodiscard]] std::filesystem::path programs() const { return folders_.home() / "programs"; }
  [[nodiscard]] std::filesystem::path noted() const { return folders_.home() / "noted"; }

  ProgramResult open(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "open");
    return runProgram({.program = phoneProgram(),
                       .arguments = std::move(arguments),
                       .environment = {{"PATH", programs().string()}, {"TERMINAL", std::nullopt}}});
  }
  // The arguments of the command that the terminal was to run; clears the record.
  std::vector<std::string> called() {
    testkit::eventually([this] { return std::filesystem::exists(noted()); });
    std::vector<std::string> words;
    std::ifstream in(noted());
    for (std::string word; std::getline(in, word);) words.push_back(word);
    std::filesystem::remove(noted());
    return words;
  }
};

TEST_F(AWidgetWindow, ShowsTheWidgetAndWatchesIt) {
  haveTerminal();
  const ProgramResult result = open({});
  EXPECT_EQ(result.status, 0) << result.errors;
  EXPECT_THAT(called(), ElementsAre(phoneProgram(), "widget", "--watch"));
}

TEST_F(AWidgetWindow, OpensForEveryKivoLink) {
  haveTerminal();
  for (const char* const link : {"kivo-expenses://", "kivo-expenses:", "kivo-expenses:--help",
                                 "kivo-expenses://x --version\n$(reboot)"}) {
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{link}, std::vector<std::string>{"--", link}}) {
      const ProgramResult result = open(arguments);
      EXPECT_EQ(result.status, 0) << result.errors;
      EXPECT_THAT(called(), ElementsAre(phoneProgram(), "widget", "--watch")) << link;
    }
  }
}

TEST_F(AWidgetWindow, OpensWithoutALinkForADesktopMenu) {
  haveTerminal();
  EXPECT_EQ(open({"--"}).status, 0);
  EXPECT_THAT(called(), ElementsAre(phoneProgram(), "widget", "--watch"));
}

TEST_F(AWidgetWindow, RefusesOtherLinks) {
  haveTerminal();
  for (const char* const link : {"https://kivo.example", "file:///etc/passwd", "--watch", ""}) {
    const ProgramResult result = open({"--", link});
    EXPECT_EQ(result.status, 64);
    EXPECT_EQ(result.errors, "kivo-phone: invalid LINK \"" + std::string(link) +
                                 "\": it must begin with kivo-expenses:\n");
  }
  EXPECT_FALSE(std::filesystem::exists(noted()));
}

TEST_F(AWidgetWindow, ReportsThatThereIsNoTerminal) {
  const ProgramResult result = open({});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors,
            "kivo-phone: no terminal can be opened; the variable TERMINAL can name one\n");
}

}  // namespace
}  // namespace kivo
