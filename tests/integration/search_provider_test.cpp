// The shortcuts in the search of the desktop shell: the results, and the lifetime of the service.
#include "served_intents.h"
#include "testkit/extension_program.h"

namespace kivo {
namespace {

using namespace std::chrono_literals;
using linux_platform::ChildProcess;
using linux_platform::ProgramCall;
using linux_platform::ProgramResult;
using linux_platform::runProgram;

class ASearchOnTheBus : public testkit::ServedIntents {
 protected:
  // The output of a client that calls as the shell does.
  static std::string search(const std::vector<std::string>& arguments) {
    ProgramCall call = client("search_as_shell.py", arguments);
    call.environment["KIVO_SEARCH_PROVIDER"] = KIVO_SEARCH_PROVIDER;
    const ProgramResult result = runProgram(call);
    EXPECT_EQ(result.errors, "");
    return result.output;
  }
};

TEST_F(ASearchOnTheBus, StartsTheServiceAndFindsTheIntentByItsPhrase) {
  EXPECT_EQ(search({"initial", "Add expense in Kivo"}), "AddExpenseIntent\n");
  EXPECT_EQ(search({"initial", "process bank sms in kivo"}), "ProcessSMSIntent\n");
  EXPECT_EQ(search({"initial", "kivo EXPENSE ad"}), "AddExpenseIntent\n");
  EXPECT_EQ(search({"initial", "track"}), "AddExpenseIntent\nProcessSMSIntent\n");
  EXPECT_EQ(search({"initial", "weather"}), "\n");
  EXPECT_EQ(search({"initial", ""}), "\n");
}

TEST_F(ASearchOnTheBus, NarrowsItsResults) {
  const std::string both = "AddExpenseIntent,ProcessSMSIntent";
  EXPECT_EQ(search({"further", both, "track sms"}), "ProcessSMSIntent\n");
  EXPECT_EQ(search({"further", both, "track"}), "AddExpenseIntent\nProcessSMSIntent\n");
  EXPECT_EQ(search({"further", "ProcessSMSIntent,Other", "track"}), "ProcessSMSIntent\n");
  EXPECT_EQ(search({"further", "ProcessSMSIntent", "track p"}), "\n");
}

TEST_F(ASearchOnTheBus, ShowsTitlePhraseAndIcon) {
  EXPECT_EQ(search({"metas", "AddExpenseIntent", "Other", "ProcessSMSIntent"}),
            "AddExpenseIntent | Add Expense | Add expense in Kivo | "
            "app.kivo.expenses.dollarsign.circle,app.kivo.expenses\n"
            "ProcessSMSIntent | Process Bank SMS | Process bank SMS in Kivo | "
            "app.kivo.expenses.message.fill,app.kivo.expenses\n");
}

TEST_F(ASearchOnTheBus, RefusesToOpenAnUnknownResult) {
  EXPECT_THAT(
      search({"activate", "Other", "track"}),
      testing::HasSubstr("org.freedesktop.DBus.Error.InvalidArgs: there is no such result"));
}

TEST_F(ASearchOnTheBus, ReportsThatThereIsNoTerminal) {
  ProgramCall withoutTerminal = serving();
  withoutTerminal.environment = {{"PATH", "/no/such/folder"}, {"TERMINAL", std::nullopt}};
  ChildProcess program(withoutTerminal);
  ASSERT_TRUE(isServed());
  const std::string complaint = "no terminal can be opened; the variable TERMINAL can name one";
  EXPECT_THAT(search({"activate", "AddExpenseIntent", "add"}),
              testing::HasSubstr("org.freedesktop.DBus.Error.Failed: " + complaint));
  program.signal(SIGTERM);
  EXPECT_EQ(program.wait(10s).errors, "kivo-intents: " + complaint + "\n");
}

// Any of the calls keeps a service with an idle time of 4 s alive for another 4 s.
class ASearchCall : public ASearchOnTheBus,
                    public testing::WithParamInterface<std::vector<std::string>> {};

TEST_P(ASearchCall, KeepsTheServiceAlive) {
  ChildProcess program({.program = linux_platform::programFolder() / "kivo-short-lived-intents",
                        .arguments = {"4000"},
                        .environment = {{"PATH", "/no/such/folder"}, {"TERMINAL", std::nullopt}}});
  ASSERT_TRUE(isServed());
  const pid_t before = service();
  std::this_thread::sleep_for(1s);
  const auto called = std::chrono::steady_clock::now();
  search(GetParam());
  ASSERT_EQ(service(), before);
  EXPECT_EQ(program.wait(30s).status, 0);
  EXPECT_GE(std::chrono::steady_clock::now() - called, 3900ms);
}

INSTANTIATE_TEST_SUITE_P(OfEachKind, ASearchCall,
                         testing::Values(std::vector<std::string>{"initial", "track"},
                                         std::vector<std::string>{"further", "Other", "track"},
                                         std::vector<std::string>{"metas", "AddExpenseIntent"},
                                         std::vector<std::string>{"activate", "Other", "track"},
                                         std::vector<std::string>{"launch", "track"}),
                         [](const auto& kind) { return kind.param.front(); });

}  // namespace
}  // namespace kivo
