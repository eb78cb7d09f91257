// The intents on the session bus, called by standard clients.
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <thread>

#include "served_intents.h"
#include "testkit/extension_program.h"
#include "testkit/scripted_server.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using linux_platform::ChildProcess;
using linux_platform::ProgramResult;
using linux_platform::runProgram;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testkit::eventually;
using testkit::intentsName;
using testkit::replyWith;

class AnIntentsService : public testkit::ServedIntents {
 protected:
  ProgramResult busctl(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--user", "call", intentsName,
                                         "/app/kivo/expenses/Intents", "app.kivo.Intents1"});
    return runProgram({.program = "busctl", .arguments = std::move(arguments)});
  }

  testkit::ToldBackend backend;
};

// The processor time of all threads of the process.
std::chrono::nanoseconds processorTime(pid_t process) {
  std::int64_t sum = 0;
  for (const auto& thread :
       std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
    std::int64_t used = -1;
    std::ifstream(thread.path() / "schedstat") >> used;
    EXPECT_GE(used, 0) << thread.path();
    sum += used;
  }
  return std::chrono::nanoseconds(sum);
}

TEST_F(AnIntentsService, IsStartedByTheBusWhenGdbusCalls) {
  signIn(backend.url());
  backend.answers(200, testkit::savedAnswer("expense"));
  const ProgramResult result = processSMS("Paid 150");
  EXPECT_EQ(result.errors, "");
  EXPECT_THAT(result.output, testing::StartsWith("('Tracked "));
  EXPECT_THAT(result.output, testing::EndsWith(" at Carrefour',)\n"));
  EXPECT_THAT(backend.requests(), SizeIs(1));
  EXPECT_EQ(store().readText(StoreKeys::todayTotal), "150.0");
}

TEST_F(AnIntentsService, AnswersAPythonClient) {
  signIn(backend.url());
  backend.answers(200, testkit::savedAnswer("expense"));
  const ProgramResult result =
      runProgram(client("call_intents.py", {"perform", "AddExpenseIntent", "amount", "number",
                                            "12.5", "merchant", "text", "Café"}));
  EXPECT_THAT(result.output, testing::StartsWith("Tracked ")) << result.errors;
  ASSERT_THAT(backend.requests(), SizeIs(1));
  EXPECT_THAT(backend.requests()[0].body, HasSubstr("Paid 12.5 EGP at Café"));
}

TEST_F(AnIntentsService, AnswersBusctl) {
  signIn(backend.url());
  const ProgramResult result =
      busctl({"Perform", "sa{sv}", "ProcessSMSIntent", "1", "smsText", "s", "Code 1234"});
  EXPECT_EQ(result.output, "s \"SMS ignored - not a transaction\"\n") << result.errors;
}

TEST_F(AnIntentsService, ReturnsTheSameCatalogAsTheCommand) {
  const ProgramResult command =
      runProgram({.program = linux_platform::programFolder() / "kivo-intents",
                  .arguments = {"catalog", "--json"}});
  EXPECT_EQ(runProgram(client("call_intents.py", {"catalog"})).output, command.output);
  EXPECT_THAT(command.output, HasSubstr("ProcessSMSIntent"));
}

TEST_F(AnIntentsService, SupportsIntrospection) {
  const std::string described = phone
                                    .call(intentsName, "/app/kivo/expenses/Intents",
                                          "org.freedesktop.DBus.Introspectable.Introspect")
                                    .output;
  EXPECT_THAT(described, HasSubstr(R"(<arg type="a{sv}" name="parameters" direction="in"/>)"));
  EXPECT_THAT(described, HasSubstr(R"(<arg type="s" name="dialog" direction="out"/>)"));
  EXPECT_THAT(described, HasSubstr(R"(<arg type="s" name="json" direction="out"/>)"));
}

TEST_F(AnIntentsService, AnswersACallWithoutAnInterface) {
  const ProgramResult called = runProgram(
      {.program = "/usr/bin/python3",
       .arguments = {"-c",
                     "import dbus, dbus.lowlevel\n"
                     "b = dbus.SessionBus()\n"
                     "for member in 'Catalog', 'Introspect':\n"
                     " m = dbus.lowlevel.MethodCallMessage('app.kivo.expenses.Intents', "
                     "'/app/kivo/expenses/Intents', None, member)\n"
                     " print(b.send_message_with_reply_and_block(m).get_args_list()[0])\n"}});
  EXPECT_EQ(called.status, 0) << called.errors;
  EXPECT_THAT(called.output, HasSubstr("ProcessSMSIntent"));
  EXPECT_THAT(called.output, HasSubstr(R"(<interface name="app.kivo.Intents1">)"));
}

TEST_F(AnIntentsService, UsesNoCpuWhileIdle) {
  signIn("http://127.0.0.1:1");  // so that both of its connections were in use
  EXPECT_EQ(processSMS("Paid").output, replyWith("Saved offline - will process when connected"));
  const auto before = processorTime(service());
  std::this_thread::sleep_for(1s);
  EXPECT_LT(processorTime(service()) - before, 100ms);
}

TEST_F(AnIntentsService, AcceptsATextOfOneMebibyte) {
  signIn("http://127.0.0.1:1");
  const std::string text(1 << 20, 'x');
  // Past what a command line holds: from a file of python's.
  const ProgramResult result =
      runProgram({.program = "/usr/bin/python3",
                  .arguments = {"-c",
                                "import dbus, sys; print(dbus.SessionBus().call_blocking("
                                "'app.kivo.expenses.Intents', '/app/kivo/expenses/Intents', "
                                "'app.kivo.Intents1', 'Perform', 'sa{sv}', "
                                "('ProcessSMSIntent', {'smsText': sys.stdin.read()})))"},
                  .input = text});
  EXPECT_EQ(result.output, "Saved offline - will process when connected\n") << result.errors;
  ASSERT_THAT(queue(), SizeIs(1));
  EXPECT_EQ(queue()[0].smsText, text);
}

TEST_F(AnIntentsService, ReplacesCharactersThatAreInvalidOnTheBus) {
  signIn(backend.url());
  backend.answers(200, R"({"saved":true,"transaction_type":"expense","expense":{"id":"1",)"
                       R"("description":"a\u0000b\ufffez","amount":1.0,"category":"C",)"
                       R"("expense_date":""}})");
  EXPECT_THAT(runProgram(client("call_intents.py",
                                {"perform", "ProcessSMSIntent", "smsText", "text", "Paid 1"}))
                  .output,
              testing::EndsWith(" at a\uFFFDb\uFFFDz\n"));
}

TEST_F(AnIntentsService, AnswersALaterCallWhileAnEarlierOneWaits) {
  const testkit::ScriptedServer server([](testkit::ServerConnection& connection) {
    if (connection.readRequest().find("slow") != std::string::npos) connection.idle(10s);
    connection.write(testkit::httpAnswer(200, R"({"saved":false})"));
  });
  signIn(server.url());
  ChildProcess slow(
      client("call_intents.py", {"perform", "ProcessSMSIntent", "smsText", "text", "slow"}));
  ASSERT_TRUE(server.waitForRequests(1));
  EXPECT_EQ(processSMS("quick").output, replyWith("SMS ignored - not a transaction"));
  EXPECT_EQ(slow.outputSoFar(), "");
}

TEST_F(AnIntentsService, FinishesTheRunWhenItsCallerDisappears) {
  const testkit::ScriptedServer server([](testkit::ServerConnection& connection) {
    connection.readRequest();
    connection.idle(300ms);
    connection.write(testkit::httpAnswer(200, testkit::savedAnswer("expense")));
  });
  signIn(server.url());
  ChildProcess caller(
      client("call_intents.py", {"perform", "ProcessSMSIntent", "smsText", "text", "Paid 150"}));
  ASSERT_TRUE(server.waitForRequests(1));
  caller.signal(SIGKILL);
  EXPECT_TRUE(eventually([] { return store().readText(StoreKeys::todayTotal) == "150.0"; }));
  const pid_t process = service();
  EXPECT_EQ(processSMS(" ").output, replyWith("No SMS text provided"));
  EXPECT_EQ(service(), process);
}

TEST_F(AnIntentsService, PerformsACallThatExpectsNoReply) {
  signIn("http://127.0.0.1:1");
  // The bus starts no service for a caller that has disconnected.
  EXPECT_EQ(processSMS(" ").output, replyWith("No SMS text provided"));
  const ProgramResult sent = runProgram(
      {.program = "/usr/bin/python3",
       .arguments = {"-c",
                     "import dbus, dbus.lowlevel\n"
                     "m = dbus.lowlevel.MethodCallMessage('app.kivo.expenses.Intents', "
                     "'/app/kivo/expenses/Intents', 'app.kivo.Intents1', 'Perform')\n"
                     "m.set_no_reply(True)\n"
                     "m.append('ProcessSMSIntent', {'smsText': 'Paid 1'}, signature='sa{sv}')\n"
                     "b = dbus.SessionBus()\nb.send_message(m)\nb.flush()\n"}});
  EXPECT_EQ(sent.status, 0) << sent.errors;
  EXPECT_TRUE(eventually([] { return queue().size() == 1; }));
  EXPECT_EQ(processSMS(" ").output, replyWith("No SMS text provided"));
}

TEST_F(AnIntentsService, WaitsASecondPerRunForAHangingCenter) {
  signIn("http://127.0.0.1:1");
  EXPECT_EQ(processSMS(" ").output, replyWith("No SMS text provided"));
  const pid_t center = phone.startCenter();
  kill(center, SIGSTOP);
  for (int run = 0; run < 2; ++run) {
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(processSMS("Paid").output, replyWith("Saved offline - will process when connected"));
    const auto took = std::chrono::steady_clock::now() - before;
    EXPECT_GE(took, 900ms);
    EXPECT_LE(took, 1800ms);
  }
  kill(center, SIGKILL);
}

TEST_F(AnIntentsService, ExitsWhenAnotherOwnsTheBusName) {
  EXPECT_EQ(processSMS(" ").output, replyWith("No SMS text provided"));
  const pid_t first = service();
  const ProgramResult second = runProgram(serving());
  EXPECT_EQ(second.status, 1);
  EXPECT_EQ(second.output, "");
  EXPECT_EQ(second.errors, "kivo-intents: another program is app.kivo.expenses.Intents\n");
  EXPECT_EQ(service(), first);
}

TEST_F(AnIntentsService, EndsWhenTheBusEnds) {
  ChildProcess program(serving());
  ASSERT_TRUE(isServed());
  phone.endBus();
  EXPECT_EQ(program.wait(10s).status, 0);
}

TEST_F(AnIntentsService, KeepsTheTextsOfItsRunsWhenTheBusEnds) {
  const testkit::ScriptedServer server([](testkit::ServerConnection& connection) {
    connection.readRequest();
    connection.idle();
  });
  signIn(server.url());
  ChildProcess program(serving());
  ASSERT_TRUE(isServed());
  ChildProcess caller(
      client("call_intents.py", {"perform", "ProcessSMSIntent", "smsText", "text", "Paid 150"}));
  ASSERT_TRUE(server.waitForRequests(1));
  phone.daemon().signal(SIGKILL);
  const ProgramResult result = program.wait(10s);
  EXPECT_EQ(result.status, 0) << result.errors;
  ASSERT_THAT(queue(), SizeIs(1));
  EXPECT_EQ(queue()[0].smsText, "Paid 150");
}

TEST(WithoutASessionBus, TheServiceExitsWithOneLine) {
  const testkit::PrivateFolders folders;
  const ProgramResult result = runProgram(
      {.program = linux_platform::programFolder() / "kivo-intents", .arguments = {"serve"}});
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.errors, "kivo-intents: there is no session bus\n");
}

}  // namespace
}  // namespace kivo
