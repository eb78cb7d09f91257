// A failing run prints nothing of the message.
#include <csignal>

#include "testkit/extension_program.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using testing::HasSubstr;
using testing::Not;

constexpr const char* message = "Marktext 7731.19 at Markmerchant";

class AFailingRun : public testkit::ExtensionProgram {
 protected:
  AFailingRun() {
    SharedStore opened = store();
    opened.writeText(StoreKeys::userId, "Markuser");
    opened.writeText(StoreKeys::supabaseUrl, backend.url());
    opened.synchronize();
  }

  void expectDiscreet(const ProgramResult& result) {
    for (const char* marker : {"Mark", "mark", "7731"}) {
      EXPECT_THAT(result.output, Not(HasSubstr(marker)));
      EXPECT_THAT(result.errors, Not(HasSubstr(marker)));
    }
    EXPECT_NE(result.output + result.errors, "");
  }
  void expectDiscreetAbout(int status, const std::string& body) {
    backend.answers(status, body);
    const ProgramResult result = processSMS(message);
    EXPECT_THAT(result.output, HasSubstr("ProcessSMSIntent error: "));
    expectDiscreet(result);
  }
  // The run inside a shell that first does `preparation`.
  [[nodiscard]] ProgramResult after(const std::string& preparation, const std::string& text) const {
    return linux_platform::runProgram(
        {.program = "sh",
         .arguments = {"-c", preparation + "; exec \"$0\" perform ProcessSMSIntent --smsText -",
                       call({}).program.string()},
         .input = text});
  }
};

TEST_F(AFailingRun, RevealsNothingOfTheMessageForAnyStatus) {
  for (const int status : {201, 204, 301, 400, 401, 404, 429, 500, 503}) {
    expectDiscreetAbout(status, R"({"error":"Marktext 7731.19 Markuser"})");
  }
}

TEST_F(AFailingRun, RevealsNothingOfTheMessageForAnInvalidAnswer) {
  const std::string rest = R"("description":"Markmerchant","category":"Mark","expense_date":"")";
  for (const std::string& body : {
           std::string("Marktext 7731.19"),
           std::string(R"(["Marktext"])"),
           std::string(R"({"Marktext":7731.19})"),
           std::string(R"({"saved":"Marktext"})"),
           std::string(R"({"saved":7731.19})"),
           std::string(R"({"saved":true,"reason":7731.19})"),
           R"({"saved":true,"expense":{"id":7731,"amount":1,)" + rest + "}}",
           R"({"saved":true,"expense":{"id":"1","amount":"7731.19",)" + rest + "}}",
           R"({"saved":true,"expense":{"id":"1","amount":7731.19e999,)" + rest + "}}",
           R"({"saved":true,"expense":{"id":"1","amount":null,)" + rest + "}}",
           std::string(R"({"saved":true,"reason":"Marktext)"),
           std::string("{\"saved\":true,\"reason\":\"Mark\xff\"}"),
       }) {
    expectDiscreetAbout(200, body);
  }
}

TEST_F(AFailingRun, RevealsNothingOfTheMessageWithoutABackend) {
  backend.goAway();
  expectDiscreet(processSMS(message));
}

TEST_F(AFailingRun, RevealsNothingOfTheMessageWhenTheURLIsInvalid) {
  signIn("http://Markuser 7731.19");
  const ProgramResult result = processSMS(message);
  EXPECT_EQ(result.status, 128 + SIGABRT);
  expectDiscreet(result);
}

TEST_F(AFailingRun, RevealsNothingOfTheMessageWhenTheStoreFails) {
  backend.goAway();
  const ProgramResult result = after("ulimit -f 200", message + std::string(300'000, '.'));
  EXPECT_THAT(result.output, HasSubstr("Saved offline - will process when connected"));
  EXPECT_NE(result.errors, "");
  expectDiscreet(result);
}

TEST_F(AFailingRun, RevealsNothingOfTheMessageOnAUsageError) {
  expectDiscreet(
      run({"perform", "ProcessSMSIntent", "--smsText", "Marktext", "7731.19", "Markmerchant"}));
  expectDiscreet(run({"perform", "ProcessSMSIntent", "Marktext 7731.19 Markmerchant"}));
  expectDiscreet(run({"perform", "Marktext 7731.19"}));
  expectDiscreet(run({"Marktext 7731.19"}));
  expectDiscreet(
      run({"perform", "ProcessSMSIntent", "--smsText", "Marktext", "--smsText", "7731.19"}));
}

}  // namespace
}  // namespace kivo
