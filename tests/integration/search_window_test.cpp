// The terminal window that opens for a search result: its command line and its use.
#include <fstream>
#include <sstream>

#include <sys/stat.h>
#include <unistd.h>

#include "served_intents.h"
#include "testkit/extension_program.h"
#include "testkit/scripted_server.h"

namespace kivo {
namespace {

using linux_platform::ChildProcess;
using linux_platform::ProgramCall;
using linux_platform::runProgram;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testkit::eventually;

std::string contentOf(const std::filesystem::path& file) {
  std::ostringstream content;
  content << std::ifstream(file).rdbuf();
  return content.str();
}

class ASearchWindow : public testkit::ServedIntents {
 protected:
  // The desktop's terminal is a script with these lines.
  void haveTerminal(const std::string& lines) {
    const auto file = home() / "programs" / "xdg-terminal-exec";
    std::ofstream(file) << "#!/bin/sh\n" << lines;
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  }
  [[nodiscard]] std::filesystem::path home() { return phone.folders().home(); }
  static void search(const std::vector<std::string>& arguments) {
    ProgramCall call = client("search_as_shell.py", arguments);
    call.environment["KIVO_SEARCH_PROVIDER"] = KIVO_SEARCH_PROVIDER;
    EXPECT_EQ(runProgram(call).output, "");
  }
  // The words that the terminal was called with but for the one that keeps it open.
  std::vector<std::string> called() {
    std::vector<std::string> words;
    eventually([this] { return std::filesystem::exists(home() / "called"); });
    std::ifstream in(home() / "called");
    for (std::string word; std::getline(in, word);) words.push_back(word);
    if (words.size() > 2) words.erase(words.begin() + 2);
    return words;
  }
  [[nodiscard]] std::string noting(const std::string& what) {
    const std::string file = (home() / "called").string();
    return what + " > '" + file + ".new'\nmv '" + file + ".new' '" + file + "'\n";
  }
};

constexpr const char* words = "for word in \"$@\"; do printf '%s\\n' \"$word\"; done";

TEST_F(ASearchWindow, PerformsTheChosenIntent) {
  haveTerminal(noting(words));
  search({"activate", "ProcessSMSIntent", "bank sms"});
  EXPECT_THAT(called(), ElementsAre("/bin/sh", "-c",
                                    (linux_platform::programFolder() / "kivo-intents").string(),
                                    "perform", "ProcessSMSIntent"));
}

TEST_F(ASearchWindow, ShowsTheCatalogForMoreResults) {
  haveTerminal(noting(words));
  search({"launch", "kivo 1234"});
  EXPECT_THAT(called(),
              ElementsAre("/bin/sh", "-c",
                          (linux_platform::programFolder() / "kivo-intents").string(), "catalog"));
}

TEST_F(ASearchWindow, RunsInItsOwnSession) {
  haveTerminal(noting("read -r one two three four five session rest < /proc/$$/stat\nprintf "
                      "'%s\\n' $$ $session") +
               "sleep 60\n");
  search({"activate", "AddExpenseIntent", "add"});
  const auto ids = called();
  ASSERT_THAT(ids, testing::SizeIs(2));
  EXPECT_EQ(ids[0], ids[1]) << "it leads a session";
  const pid_t window = std::stoi(ids[0]);
  const pid_t process = service();
  kill(process, SIGTERM);
  EXPECT_TRUE(testkit::PrivatePhone::hasEnded(process));
  EXPECT_EQ(kill(window, 0), 0) << "it goes on after the service";
  kill(-window, SIGKILL);
}

TEST_F(ASearchWindow, LeavesNoProcessWhenItIsClosed) {
  haveTerminal(noting(words));
  search({"activate", "AddExpenseIntent", "add"});
  called();
  const pid_t process = service();
  const auto children =
      "/proc/" + std::to_string(process) + "/task/" + std::to_string(process) + "/children";
  EXPECT_TRUE(eventually([&] { return contentOf(children).empty(); }));
  EXPECT_EQ(service(), process);
}

// A real pseudo-terminal, and a user who types into it.
class ARealSearchWindow : public ASearchWindow {
 protected:
  ARealSearchWindow() {
    signIn(backend.url());
    backend.answers(200, testkit::savedAnswer("expense"));
    mkfifo((home() / "typed").c_str(), 0600);
    haveTerminal("export KIVO_TYPED='" + (home() / "typed").string() + "' KIVO_SHOWN='" +
                 (home() / "shown").string() +
                 "'\nexec /usr/bin/python3 '" KIVO_CLIENTS_FOLDER "/terminal.py' \"$@\"\n");
  }
  void type(const std::string& keys) { std::ofstream(home() / "typed") << keys << std::flush; }
  [[nodiscard]] std::string shown() { return contentOf(home() / "shown"); }
  bool shows(const std::string& text) {
    return eventually([&] { return shown().find(text) != std::string::npos; },
                      std::chrono::seconds(30));
  }

  testkit::ToldBackend backend;
};

TEST_F(ARealSearchWindow, AsksForTheValuesAndWaitsForEnter) {
  search({"activate", "AddExpenseIntent", "Add expense in Kivo"});
  ASSERT_TRUE(shows("Amount (Transaction amount): ")) << shown();
  type("12.5\n");
  ASSERT_TRUE(shows("Merchant (Merchant name or description): ")) << shown();
  type("Cafe Nilo\n");
  ASSERT_TRUE(shows("\r\n\r\nPress Enter to close this window. ")) << shown();
  EXPECT_THAT(shown(), HasSubstr("Tracked "));
  ASSERT_THAT(backend.requests(), testing::SizeIs(1));
  EXPECT_THAT(backend.requests()[0].body, HasSubstr("Paid 12.5 EGP at Cafe Nilo"));
  EXPECT_THAT(shown(), Not(HasSubstr("closed")));
  type("\n");
  EXPECT_TRUE(shows("\nclosed\n"));
}

TEST_F(ARealSearchWindow, ShowsTheDialogOfAnInterruptedRun) {
  const testkit::ScriptedServer silent([](testkit::ServerConnection& connection) {
    connection.readRequest();
    connection.idle();
  });
  signIn(silent.url());
  search({"activate", "ProcessSMSIntent", "bank sms"});
  ASSERT_TRUE(shows("SMS Text (The bank SMS message text): ")) << shown();
  type("Paid 150\n");
  ASSERT_TRUE(silent.waitForRequests(1));
  type("\x03");
  ASSERT_TRUE(shows("Press Enter to close this window. ")) << shown();
  EXPECT_THAT(shown(), HasSubstr("Saved offline - will process when connected"));
  ASSERT_THAT(queue(), testing::SizeIs(1));
  EXPECT_EQ(queue()[0].smsText, "Paid 150");
  type("\n");
  EXPECT_TRUE(shows("\nclosed\n"));
}

}  // namespace
}  // namespace kivo
