// What `kivo-phone status` says about the watcher and its senders.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>

#include "watched_phone.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

class AWatchersStatus : public testkit::WatchedPhone {
 protected:
  // A systemctl that does this. It comes first in PATH.
  void manage(const std::string& script) {
    const auto program = phone.folders().home() / "programs" / "systemctl";
    std::ofstream(program) << "#!/bin/sh\necho \"$@\" >\"$HOME/asked\"\n" << script << '\n';
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  }
  void haveUnit(const std::string& active, const std::string& sub, const std::string& restarts) {
    manage("printf 'LoadState=loaded\\nActiveState=" + active + "\\nSubState=" + sub +
           "\\nNRestarts=" + restarts + "\\n'");
  }
  static std::string status() {
    const auto result = linux_platform::runProgram(
        {.program = linux_platform::programFolder() / "kivo-phone", .arguments = {"status"}});
    EXPECT_EQ(result.status, 0);
    return result.output;
  }
  bool managerWasAsked() { return std::filesystem::exists(phone.folders().home() / "asked"); }
};

TEST_F(AWatchersStatus, ShowsThatNoSenderIsNamed) {
  manage("exit 1");
  writeSettings("senders = []");
  EXPECT_THAT(status(), HasSubstr("\nSenders        none for kivo-sms-watcher; "
                                  "kivo-phone watch add names one\n"));
  EXPECT_FALSE(managerWasAsked());
}

TEST_F(AWatchersStatus, ShowsThatTheWatcherRuns) {
  haveUnit("activating", "auto-restart", "7");
  startWatcher();
  EXPECT_THAT(status(), HasSubstr("\nSenders        1, watched by kivo-sms-watcher\n"));
  EXPECT_FALSE(managerWasAsked());
}

TEST_F(AWatchersStatus, ShowsHowToStartAWatcherThatDoesNotRun) {
  haveUnit("inactive", "dead", "0");
  writeSettings(R"(senders = ["MyBank", "Other*"])");
  EXPECT_THAT(status(), HasSubstr("\nSenders        2, but kivo-sms-watcher does not run; "
                                  "systemctl --user start kivo-sms-watcher starts it\n"));
}

TEST_F(AWatchersStatus, ShowsThatTheWatcherIsMasked) {
  manage("printf 'LoadState=masked\\nActiveState=inactive\\nSubState=dead\\nNRestarts=0\\n'");
  EXPECT_THAT(status(), HasSubstr("1, but kivo-sms-watcher is masked, so it does not run\n"));
}

TEST_F(AWatchersStatus, ShowsThatTheWatcherKeepsFailing) {
  for (const auto& [active, sub, restarts] :
       {std::tuple("activating", "auto-restart", "3"), std::tuple("active", "running", "3"),
        std::tuple("failed", "failed", "0")}) {
    haveUnit(active, sub, restarts);
    EXPECT_THAT(status(), HasSubstr("\nSenders        1, but kivo-sms-watcher keeps failing; "
                                    "journalctl --user -u kivo-sms-watcher says why\n"));
  }
}

TEST_F(AWatchersStatus, ShowsHowToStartAWatcherWithoutAServiceManager) {
  const std::string byHand =
      "\nSenders        1, but kivo-sms-watcher does not run; start it in your session\n";
  manage("echo 'Failed to connect to bus: No medium found' >&2; exit 1");
  EXPECT_THAT(status(), HasSubstr(byHand));
  manage("printf 'LoadState=not-found\\nActiveState=inactive\\nSubState=dead\\n'");
  EXPECT_THAT(status(), HasSubstr(byHand));
  const testkit::ScopedVariable path("PATH", (phone.folders().home() / "no-programs").string());
  EXPECT_THAT(status(), HasSubstr(byHand));
}

TEST_F(AWatchersStatus, WaitsForNoServiceManagerThatHangs) {
  manage("exec sleep 60");
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_THAT(status(), HasSubstr("1, but kivo-sms-watcher does not run"));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 20s);
}

TEST_F(AWatchersStatus, ShowsWhyTheSendersCannotBeRead) {
  writeSettings("senders = [\n");
  EXPECT_THAT(status(), HasSubstr("\nSenders        unknown, so no message is handed on: " +
                                  settingsFile().string() + ": line "));
  writeSettings(R"(senders = ["*"])");
  EXPECT_THAT(status(), HasSubstr("sms-watcher.toml: a sender "));
}

}  // namespace
}  // namespace kivo
