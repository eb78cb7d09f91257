#include "platform/linux/terminal/terminal_window.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/process/child_process.h"
#include "testkit/private_folders.h"
#include "testkit/private_phone.h"

namespace kivo::linux_platform {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testkit::eventually;
using testkit::ScopedVariable;
using Call = std::vector<std::string>;

std::vector<std::string> beginnings(const std::vector<Call>& calls) {
  std::vector<std::string> texts;
  for (const Call& call : calls) {
    std::string text = call.front();
    if (call.at(1) != "/bin/sh") text += " " + call.at(1);
    texts.push_back(text);
  }
  return texts;
}

TEST(TerminalEmulators, AreTriedInOrderEachWithItsOwnOption) {
  const ScopedVariable none("TERMINAL", std::nullopt);
  EXPECT_THAT(
      beginnings(terminalCalls({"program"})),
      ElementsAre("xdg-terminal-exec", "x-terminal-emulator -e", "kgx --", "gnome-terminal --",
                  "konsole -e", "xfce4-terminal -x", "mate-terminal -x", "foot", "xterm -e"));
}

TEST(TerminalEmulators, TryTheTERMINALVariableAfterXdgTerminalExec) {
  for (const auto& [named, call] : std::map<std::string, std::string>{
           {"urxvt", "urxvt -e"},
           {"/opt/my terminal/bin/kgx", "/opt/my terminal/bin/kgx --"},
           {"foot", "foot"}}) {
    const ScopedVariable variable("TERMINAL", named);
    const auto calls = beginnings(terminalCalls({"program"}));
    EXPECT_EQ(calls.at(0), "xdg-terminal-exec");
    EXPECT_EQ(calls.at(1), call);
    EXPECT_EQ(calls.at(2), "x-terminal-emulator -e");
  }
  const ScopedVariable empty("TERMINAL", "");
  EXPECT_EQ(beginnings(terminalCalls({"program"})).at(1), "x-terminal-emulator -e");
}

TEST(TerminalEmulators, ReceiveTheCommandAsSeparateArguments) {
  for (const Call& call : terminalCalls({"/a b/program", "perform", "$(rm) \"'"})) {
    const Call last(call.end() - 3, call.end());
    EXPECT_THAT(last, ElementsAre("/a b/program", "perform", "$(rm) \"'"));
  }
}

// The output of the shell in the window when `program` has ended and the user presses Enter.
std::string endOf(const char* program, WindowEnd end) {
  const Call call = terminalCalls({program}, end).back();
  return runProgram(
             {.program = "/bin/sh", .arguments = Call(call.end() - 3, call.end()), .input = "\n"})
      .output;
}

TEST(TheShellInAWindow, WaitsForEnterUnlessItClosesOnSuccess) {
  const std::string question = "\nPress Enter to close this window. ";
  EXPECT_EQ(endOf("true", WindowEnd::atEnter), question);
  EXPECT_EQ(endOf("false", WindowEnd::atEnter), question);
  EXPECT_EQ(endOf("true", WindowEnd::atSuccess), "");
  EXPECT_EQ(endOf("false", WindowEnd::atSuccess), question);
}

// As `endOf`, when the terminal is a program that was called with `option` and first runs `other`;
// with its last word if it survives.
std::string endInTerminalWith(const std::string& option, WindowEnd end,
                              const std::string& other = ":") {
  const Call call = terminalCalls({"true"}, end).back();
  Call arguments{"-c", "shift; " + other + "; \"$@\"; printf survived", "terminal", option};
  arguments.insert(arguments.end(), call.end() - 4, call.end());
  return runProgram({.program = "/bin/sh", .arguments = arguments, .input = "\n"}).output;
}

TEST(TheShellInAWindow, EndsATerminalThatWasStartedForItAlone) {
  const std::string question = "\nPress Enter to close this window. ";
  const std::string own = "--gapplication-app-id=app.kivo.expenses.Terminal";
  EXPECT_EQ(endInTerminalWith(own, WindowEnd::atEnter), question);
  EXPECT_EQ(endInTerminalWith(own, WindowEnd::atSuccess), "");
  EXPECT_EQ(endInTerminalWith("--tab", WindowEnd::atEnter), question + "survived");
  EXPECT_EQ(endInTerminalWith("--tab", WindowEnd::atSuccess), "survived");
  EXPECT_EQ(endInTerminalWith(own, WindowEnd::atEnter, "sleep 2 >/dev/null 2>&1 & :"),
            question + "survived")
      << "another window's command runs in it";
}

// A folder as the whole PATH, in which fake programs record their arguments.
class AWindow : public testing::Test {
 protected:
  void installFake(const std::string& name, const std::string& more = "") {
    std::ofstream(folder_.path() / name)
        << "#!/bin/sh\nfor word in \"${0##*/}\" \"$@\"; do printf '%s\\n' \"$word\"; done > '"
        << (folder_.path() / "called").string() << ".new'\n"
        << "/bin/mv '" << (folder_.path() / "called").string() << ".new' '"
        << (folder_.path() / "called").string() << "'\n"
        << more << '\n';
    std::filesystem::permissions(folder_.path() / name, std::filesystem::perms::owner_all);
  }
  Call called() const {
    Call words;
    const auto file = folder_.path() / "called";
    eventually([&] { return std::filesystem::exists(file); });
    std::ifstream in(file);
    for (std::string word; std::getline(in, word);) words.push_back(word);
    return words;
  }

  testkit::TemporaryFolder folder_;
  ScopedVariable path_{"PATH", folder_.path().string()};
  ScopedVariable terminal_{"TERMINAL", std::nullopt};
  TerminalWindows windows_;
};

TEST_F(AWindow, IsNotOpenedWithoutATerminal) {
  EXPECT_FALSE(windows_.open({"program"}));
  std::ofstream(folder_.path() / "xterm") << "not to be executed";
  std::filesystem::create_directory(folder_.path() / "foot");
  EXPECT_FALSE(windows_.open({"program"}));
}

TEST_F(AWindow, IsOpenedByTheFirstInstalledTerminal) {
  installFake("xterm");
  installFake("konsole");
  ASSERT_TRUE(windows_.open({"program", "an argument"}));
  const Call call = called();
  EXPECT_THAT(call, ElementsAreArray(terminalCalls({"program", "an argument"}).at(4)));
}

// GNOME Console keeps the window of a command that has ended, so it has to be ended itself, and
// with it none of the person's windows.
TEST_F(AWindow, IsAGnomeConsoleOfKivosOwn) {
  installFake("kgx");
  std::filesystem::create_symlink(folder_.path() / "kgx", folder_.path() / "x-terminal-emulator");
  ASSERT_TRUE(windows_.open({"program"}));
  const Call call = called();
  ASSERT_GT(call.size(), 3U);
  const Call start(call.begin(), call.begin() + 4);
  EXPECT_THAT(start,
              ElementsAre("x-terminal-emulator", "--gapplication-app-id=app.kivo.expenses.Terminal",
                          "-e", "/bin/sh"));
}

TEST_F(AWindow, IsOpenedByTheNextTerminalWhenOneCannotStart) {
  std::ofstream(folder_.path() / "konsole") << "#!/no/such/interpreter\n";
  std::filesystem::permissions(folder_.path() / "konsole", std::filesystem::perms::owner_all);
  installFake("xterm");
  ASSERT_TRUE(windows_.open({"program"}));
  EXPECT_EQ(called().front(), "xterm");
}

TEST_F(AWindow, RunsAsItsOwnUnitWhenAServiceOpensIt) {
  installFake("xterm");
  installFake("systemd-run");
  const ScopedVariable service("SYSTEMD_EXEC_PID", std::to_string(getpid()));
  ASSERT_TRUE(windows_.open({"program", "$HOME and $$"}));
  const Call call = called();
  const Call unit(call.begin(), call.begin() + 8);
  EXPECT_THAT(unit, ElementsAre("systemd-run", "--user", "--property=ExitType=cgroup", "--collect",
                                "--quiet", "--", "xterm", "-e"));
  EXPECT_EQ(call.back(), "$$HOME and $$$$") << "the service manager makes one of two";
}

TEST_F(AWindow, RunsAsAPlainProcessWhenAChildOfAServiceOpensIt) {
  installFake("xterm");
  installFake("systemd-run");
  const ScopedVariable service("SYSTEMD_EXEC_PID", std::to_string(getppid()));
  ASSERT_TRUE(windows_.open({"program"}));
  EXPECT_EQ(called().front(), "xterm");
}

TEST_F(AWindow, LeavesNoProcessWhenItIsClosed) {
  EXPECT_FALSE(windows_.reapEnded());
  installFake("xterm", "read -r line < '" + (folder_.path() / "close").string() + "'");
  ASSERT_EQ(mkfifo((folder_.path() / "close").c_str(), 0600), 0);
  ASSERT_TRUE(windows_.open({"program"}));
  called();
  EXPECT_TRUE(windows_.reapEnded());
  std::ofstream(folder_.path() / "close") << "now\n";
  EXPECT_TRUE(eventually([this] { return !windows_.reapEnded(); }));
}

}  // namespace
}  // namespace kivo::linux_platform
