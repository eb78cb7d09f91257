// kivo-phone where the person is signed in to the ledger on this machine.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gmock/gmock.h>

#include "feedback/widget_stats.h"
#include "platform/linux/http/http_endpoint.h"
#include "platform/linux/process/child_process.h"
#include "store/shared_store.h"
#include "testkit/private_ledger.h"
#include "testkit/private_phone.h"
#include "testkit/raw_store.h"

namespace kivo::testkit {
namespace {

using linux_platform::ChildProcess;
using linux_platform::ProgramCall;
using linux_platform::ProgramResult;
using linux_platform::runProgram;
using testing::HasSubstr;
using testing::Not;
using namespace std::chrono_literals;

void signInLocally(const std::filesystem::path& runtimeFolder) {
  SharedStore store = SharedStore::open(appGroup).value();
  store.writeText(StoreKeys::userId, "local");
  store.writeText(StoreKeys::supabaseUrl,
                  linux_platform::urlOfSocket((runtimeFolder / "kivo/ledger.sock").string()));
  store.writeText(StoreKeys::currency, "USD");
  WidgetStats::recordExpense(store, 1205.5);
}

void writeProgram(const std::filesystem::path& file, const std::string& script) {
  std::filesystem::create_directories(file.parent_path());
  std::ofstream(file) << "#!/bin/sh\n" << script;
  std::filesystem::permissions(file, std::filesystem::perms::owner_all);
}

std::string contentOf(const std::filesystem::path& file) {
  std::ostringstream content;
  content << std::ifstream(file).rdbuf();
  return content.str();
}

class APhoneWithALedger : public testing::Test {
 protected:
  APhoneWithALedger() { signInLocally(ledger_.folders().home() / "run"); }
  static std::string run(const char* command) {
    return runProgram(
               {.program = linux_platform::programFolder() / "kivo-phone", .arguments = {command}})
        .output;
  }

  PrivateLedger ledger_;
};

TEST_F(APhoneWithALedger, ShowsTheFiguresOfTheBookBesideTheRunningTotal) {
  const auto server = ledger_.start();
  const auto process = [](const char* text) {
    EXPECT_EQ(runProgram({.program = linux_platform::programFolder() / "kivo-intents",
                          .arguments = {"perform", "ProcessSMSIntent", "--smsText", "-"},
                          .input = text})
                  .status,
              0);
  };
  process("Your card was charged USD 20.10 at Cafe");
  process("Your card was charged EUR 7.00 at Netflix");  // has no rate
  EXPECT_EQ(run("widget"),
            "Today          $20.10\nExpenses       1\nRunning total  $1,225.60\n"
            "Waiting        0\nSigned in      yes\nThis month     $20.10\nTo review      1\n");
  EXPECT_THAT(run("status"),
              HasSubstr("This month     $20.10\nRunning total  $1,225.60\n"
                        "To review      1; kivo-ledger review shows what needs a look\n"));
}

TEST_F(APhoneWithALedger, NamesAnEntryThatNoSumCounts) {
  const auto server = ledger_.start();
  runProgram({.program = linux_platform::programFolder() / "kivo-intents",
              .arguments = {"perform", "ProcessSMSIntent", "--smsText", "-"},
              .input = "Your card was charged USD 20.10 at Cafe"});
  RawStore(ledger_.file())
      .run(
          "PRAGMA ignore_check_constraints = ON;"
          "UPDATE transactions SET minor_units = 9223372036854775807");
  EXPECT_THAT(run("status"), HasSubstr("This month     $0.00; left out of sums: 1\n"));
  EXPECT_THAT(run("widget"), HasSubstr("This month     $0.00\n"));
}

TEST_F(APhoneWithALedger, AsksAlsoWhileTheServiceIsNotRunning) {
  EXPECT_THAT(run("widget"), HasSubstr("This month     $0.00\nTo review      0\n"));
  EXPECT_THAT(run("status"), HasSubstr("This month     $0.00\nRunning total  $1,205.50\n"
                                       "To review      0\n"));
}

TEST_F(APhoneWithALedger, LeavesOutABookThatCannotBeRead) {
  std::filesystem::create_directories(ledger_.file().parent_path());
  std::ofstream(ledger_.file()) << "no database, but a text that is long enough for one";
  EXPECT_EQ(run("widget"),
            "Today          unknown\nExpenses       unknown\nRunning total  $1,205.50\n"
            "Waiting        0\nSigned in      yes\n");
  EXPECT_THAT(run("status"), HasSubstr("This month     unknown; kivo-ledger summary says why\n"));
}

TEST_F(APhoneWithALedger, DoesNotAskItWhileSignedInElsewhere) {
  SharedStore store = SharedStore::open(appGroup).value();
  store.writeText(StoreKeys::supabaseUrl, "http://127.0.0.1:1");
  ASSERT_TRUE(store.synchronize());
  EXPECT_THAT(run("widget"), testing::StartsWith("Today          $1,205.50\nExpenses       1\n"));
  EXPECT_THAT(run("widget"), Not(HasSubstr("This month")));
  EXPECT_THAT(run("status"), Not(HasSubstr("This month")));
  EXPECT_FALSE(std::filesystem::exists(ledger_.file()));
}

// The real kivo-phone beside another program that is called kivo-ledger.
class APhoneWithAnotherLedger : public testing::Test {
 protected:
  APhoneWithAnotherLedger() {
    signInLocally(home() / "run");
    std::filesystem::create_directories(programs());
    const auto program = linux_platform::programFolder() / "kivo-phone";
    std::error_code otherDisk;
    std::filesystem::create_hard_link(program, programs() / "kivo-phone", otherDisk);
    if (otherDisk) std::filesystem::copy_file(program, programs() / "kivo-phone");
    writeProgram(programs() / "xdg-terminal-exec", "shift 3; echo \"$@\" >>\"$HOME/shown\"\n");
  }

  [[nodiscard]] std::filesystem::path home() { return phone_.folders().home(); }
  [[nodiscard]] std::filesystem::path programs() { return home() / "beside"; }
  void haveLedger(const std::string& script) { writeProgram(programs() / "kivo-ledger", script); }
  // What `summary --json` of that ledger prints from now on.
  void haveMonth(const std::string& expense) {
    std::ofstream(home() / "summary")
        << R"({"currency":"USD","expense":")" << expense
        << R"(","review":"0","today":{"expense":"1.00","expenses":"1"}})";
  }

  ProgramCall call(std::vector<std::string> arguments) {
    return {.program = programs() / "kivo-phone",
            .arguments = std::move(arguments),
            .environment = {{"PATH", programs().string() + ":/usr/bin:/bin"},
                            {"TERMINAL", std::nullopt}}};
  }
  ProgramResult run(std::vector<std::string> arguments) {
    return runProgram(call(std::move(arguments)));
  }
  // Opens Kivo, and expects the widget in a terminal.
  void expectWidget(std::vector<std::string> arguments = {"open"}) {
    const ProgramResult result = run(std::move(arguments));
    EXPECT_EQ(result.status, 0) << result.errors;
    const std::string widget = (programs() / "kivo-phone").string() + " widget --watch\n";
    EXPECT_TRUE(eventually([&] { return contentOf(home() / "shown") == widget; }));
  }

  PrivatePhone phone_;
};

TEST_F(APhoneWithAnotherLedger, OpensTheReportForEveryKivoLink) {
  haveLedger("echo \"$@\" >>\"$HOME/called\"\n");
  for (const char* const link :
       {"kivo-expenses://", "kivo-expenses:--help", "kivo-expenses://x --output /x\n$(reboot)"}) {
    const ProgramResult result = run({"open", "--", link});
    EXPECT_EQ(result.status, 0) << result.errors;
  }
  EXPECT_EQ(run({"open"}).status, 0);
  EXPECT_EQ(contentOf(home() / "called"), "report\nreport\nreport\nreport\n");
  EXPECT_FALSE(std::filesystem::exists(home() / "shown"));
}

TEST_F(APhoneWithAnotherLedger, OpensTheWidgetWhenNoReportCanBeMadeOrShown) {
  haveLedger("exit 1\n");
  expectWidget();
}

TEST_F(APhoneWithAnotherLedger, OpensTheWidgetWhenTheReportProgramCrashes) {
  haveLedger("kill -SEGV $$\n");
  expectWidget();
}

TEST_F(APhoneWithAnotherLedger, OpensTheWidgetWhenThereIsNoReportProgram) { expectWidget(); }

TEST_F(APhoneWithAnotherLedger, OpensTheWidgetWhileSignedInElsewhere) {
  haveLedger("echo \"$@\" >>\"$HOME/called\"\n");
  SharedStore store = SharedStore::open(appGroup).value();
  store.writeText(StoreKeys::supabaseUrl, "https://backend.example");
  ASSERT_TRUE(store.synchronize());
  expectWidget();
  EXPECT_EQ(contentOf(home() / "called"), "");
}

TEST_F(APhoneWithAnotherLedger, NoticesAFailureWhenItsCallerIgnoresEndedChildren) {
  haveLedger("exit 1\n");
  ProgramCall ignoring =
      call({"--ignore-signal=CHLD", (programs() / "kivo-phone").string(), "open"});
  ignoring.program = "env";
  EXPECT_EQ(runProgram(std::move(ignoring)).status, 0);
  EXPECT_TRUE(eventually([&] { return !contentOf(home() / "shown").empty(); }));
}

TEST_F(APhoneWithAnotherLedger, ShowsTheWidgetWithoutALedgerThatHangs) {
  haveLedger("exec sleep 60\n");
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_THAT(run({"widget"}).output, testing::EndsWith("Signed in      yes\n"));
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 10s);
}

TEST_F(APhoneWithAnotherLedger, RedrawsTheMonthOnAReload) {
  haveLedger("cat \"$HOME/summary\"\n");
  haveMonth("5.00");
  ChildProcess watching(call({"widget", "--watch"}));
  const auto shows = [&](const char* text) {
    return eventually([&] { return watching.outputSoFar().find(text) != std::string::npos; }, 5s);
  };
  ASSERT_TRUE(shows("This month     $5.00\n"));
  haveMonth("7.50");
  runProgram({.program = "gdbus",
              .arguments = {"emit", "--session", "--object-path", "/app/kivo/WidgetCenter",
                            "--signal", "app.kivo.WidgetCenter1.ReloadAllTimelines"}});
  EXPECT_TRUE(shows("This month     $7.50\n"));
}

}  // namespace
}  // namespace kivo::testkit
