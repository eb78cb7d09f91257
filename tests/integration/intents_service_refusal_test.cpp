// The calls that the intents service refuses without any effect.
#include "served_intents.h"
#include "testkit/extension_program.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using linux_platform::runProgram;
using testing::HasSubstr;
using testing::Not;
using testkit::replyWith;

class ARefusedCall : public testkit::ServedIntents {
 protected:
  ARefusedCall() { signIn(backend.url()); }

  void expectRefused(const std::string& intent, const std::string& parameters,
                     const std::string& error, const std::string& words) {
    const ProgramResult result = perform(intent, parameters);
    EXPECT_NE(result.status, 0) << parameters;
    EXPECT_EQ(result.output, "") << parameters;
    EXPECT_EQ(result.errors,
              "Error: GDBus.Error:app.kivo.Intents1.Error." + error + ": " + words + "\n");
  }
  void expectNothingDone() {
    EXPECT_THAT(backend.requests(), testing::IsEmpty());
    EXPECT_THAT(queue(), testing::IsEmpty());
    EXPECT_EQ(store().readText(StoreKeys::pendingSmsQueueCount), std::nullopt);
  }

  testkit::ToldBackend backend;
};

TEST_F(ARefusedCall, ReportsAnUnknownIntent) {
  for (const char* const intent : {"Paid 150 at Cafe", "", "processsmsintent", "ProcessSMS"}) {
    expectRefused(intent, "{'smsText': <'Paid 150'>}", "UnknownIntent",
                  "unknown intent; the intents are: AddExpenseIntent, ProcessSMSIntent");
  }
  expectNothingDone();
}

TEST_F(ARefusedCall, ReportsAnUnknownParameter) {
  expectRefused("ProcessSMSIntent", "{'smsText': <'Paid 150'>, 'Paid 7': <'x'>}",
                "UnknownParameter", "unknown parameter; the parameters are: smsText");
  expectRefused("AddExpenseIntent", "{'smsText': <'Paid 150'>}", "UnknownParameter",
                "unknown parameter; the parameters are: amount, merchant");
  expectNothingDone();
}

TEST_F(ARefusedCall, ReportsAMissingParameter) {
  expectRefused("ProcessSMSIntent", "@a{sv} {}", "MissingParameter", "smsText is missing");
  expectRefused("AddExpenseIntent", "{'amount': <1.5>}", "MissingParameter", "merchant is missing");
  expectRefused("AddExpenseIntent", "{'merchant': <'Cafe'>}", "MissingParameter",
                "amount is missing");
  expectNothingDone();
}

TEST_F(ARefusedCall, ReportsAValueOfTheWrongType) {
  for (const char* const value :
       {"<150.0>", "<150>", "<true>", "<['Paid']>", "<b'Paid'>", "<objectpath '/Paid'>",
        "<signature 's'>", "<<'Paid'>>", "<{'Paid': <'x'>}>"}) {
    expectRefused("ProcessSMSIntent", std::string("{'smsText': ") + value + "}", "InvalidParameter",
                  "smsText must be a text (s)");
  }
  for (const char* const value : {"<150>", "<'150'>", "<uint32 150>", "<int64 150>", "<true>",
                                  "<byte 0x01>", "<[1.5]>", "<(1.5,)>", "<<1.5>>"}) {
    expectRefused("AddExpenseIntent",
                  std::string("{'merchant': <'Cafe'>, 'amount': ") + value + "}",
                  "InvalidParameter", "amount must be a finite number (d)");
  }
  expectNothingDone();
}

TEST_F(ARefusedCall, ReportsANumberThatIsNotFinite) {
  for (const char* const number : {"inf", "-inf", "nan"}) {
    const ProgramResult result =
        runProgram(client("call_intents.py", {"perform", "AddExpenseIntent", "amount", "number",
                                              number, "merchant", "text", "Cafe"}));
    EXPECT_EQ(result.output, "app.kivo.Intents1.Error.InvalidParameter\n") << result.errors;
  }
  expectNothingDone();
}

TEST_F(ARefusedCall, HasTheSameErrorNamesInPython) {
  EXPECT_EQ(runProgram(client("call_intents.py", {"perform", "Nothing"})).output,
            "app.kivo.Intents1.Error.UnknownIntent\n");
  EXPECT_EQ(runProgram(client("call_intents.py", {"perform", "ProcessSMSIntent"})).output,
            "app.kivo.Intents1.Error.MissingParameter\n");
}

TEST_F(ARefusedCall, IsReadableInBusctl) {
  const ProgramResult result = runProgram(
      {.program = "busctl",
       .arguments = {"--user", "call", testkit::intentsName, "/app/kivo/expenses/Intents",
                     "app.kivo.Intents1", "Perform", "sa{sv}", "ProcessSMSIntent", "0"}});
  EXPECT_NE(result.status, 0);
  EXPECT_THAT(result.errors, HasSubstr("smsText is missing"));
}

TEST_F(ARefusedCall, ReachesNoIntentWithAWrongSignature) {
  const auto call = [this](const char* method, std::vector<std::string> arguments) {
    return phone
        .call(testkit::intentsName, "/app/kivo/expenses/Intents",
              std::string("app.kivo.Intents1.") + method, std::move(arguments))
        .errors;
  };
  EXPECT_THAT(call("Perform", {"ProcessSMSIntent"}), HasSubstr("InvalidArgs"));
  EXPECT_THAT(call("Catalog", {"1"}), HasSubstr("InvalidArgs"));
  EXPECT_THAT(call("Forget", {}), HasSubstr("UnknownMethod"));
  expectNothingDone();
}

TEST_F(ARefusedCall, WithInvalidUtf8IsDroppedByTheBus) {
  EXPECT_EQ(processSMS(" ").output, replyWith("No SMS text provided"));
  const pid_t process = service();
  EXPECT_EQ(runProgram(client("call_with_broken_text.py", {})).output, "dropped\n");
  expectNothingDone();
  EXPECT_EQ(runProgram(client("call_with_broken_text.py", {" "})).output, "answered\n");
  EXPECT_EQ(service(), process);
}

}  // namespace
}  // namespace kivo
