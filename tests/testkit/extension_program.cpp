#include "testkit/extension_program.h"

#include "platform/foundation/json_decoder.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::testkit {

using linux_platform::ProgramCall;
using linux_platform::ProgramResult;

std::string savedAnswer(const std::string& type, const std::string& category) {
  return R"({"saved":true,"transaction_type":")" + type +
         R"(","expense":{"id":"1","description":"Carrefour","amount":150.0,"category":")" +
         category + R"(","expense_date":"2026-01-31"}})";
}

std::string ExtensionProgram::programFile() const {
  return (linux_platform::programFolder() / calledProgram).string();
}

ProgramCall ExtensionProgram::call(std::vector<std::string> arguments, std::string input) const {
  return {.program = programFile(), .arguments = std::move(arguments), .input = std::move(input)};
}

ProgramResult ExtensionProgram::run(std::vector<std::string> arguments, std::string input) const {
  return linux_platform::runProgram(call(std::move(arguments), std::move(input)));
}

ProgramResult ExtensionProgram::onTerminal(const std::string& arguments,
                                           const std::string& typed) const {
  return linux_platform::runProgram({.program = "script",
                                     .arguments = {"--quiet", "--return", "--command",
                                                   programFile() + " " + arguments, "/dev/null"},
                                     .input = typed});
}

void ExtensionProgram::expectHelpInsteadOfCommand(const std::vector<std::string>& arguments,
                                                  const std::string& line) const {
  SCOPED_TRACE(line);
  const ProgramResult result = run(arguments);
  EXPECT_EQ(result.status, linux_platform::exitBadUsage);
  EXPECT_EQ(result.output, "");
  EXPECT_THAT(result.errors, ::testing::HasSubstr(line));
}

void ExtensionProgram::expectUsageError(const std::vector<std::string>& arguments,
                                        const std::string& error, const std::string& input) {
  SCOPED_TRACE(error);
  signIn();
  const ProgramResult result = run(arguments, input);
  EXPECT_EQ(result.status, linux_platform::exitBadUsage);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors, "kivo-intents: " + error + "\n");
  expectNothingSentOrStored();
}

void ExtensionProgram::expectNothingSentOrStored() {
  EXPECT_THAT(backend.requests(), ::testing::IsEmpty());
  EXPECT_THAT(queue(), ::testing::IsEmpty());
  EXPECT_EQ(text(StoreKeys::todayTotal), "-");
}

void ExtensionProgram::expectAnswered(const ProgramResult& result, const std::string& output) {
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.output, output + "\n");
  EXPECT_EQ(result.errors, "");
}

std::vector<std::string> ExtensionProgram::sent(const std::string& key) const {
  std::vector<std::string> texts;
  for (const auto& request : backend.requests()) {
    texts.push_back(platform::JSONDecoder::object(request.body).decodeString(key));
  }
  return texts;
}

std::string ExtensionProgram::text(StoreKey key) const {
  return store().readText(key).value_or("-");
}

ProgramResult ExtensionProgram::processSMS(const std::string& text) const {
  return run({"perform", "ProcessSMSIntent", "--smsText", "-"}, text);
}

SharedStore ExtensionProgram::store() const {
  auto opened = SharedStore::open(appGroup);
  if (!opened) throw std::runtime_error("the store cannot be opened");
  return std::move(*opened);
}

void ExtensionProgram::signIn(const std::string& url) {
  SharedStore opened = store();
  opened.writeText(StoreKeys::userId, "user-1");
  opened.writeText(StoreKeys::supabaseUrl, url);
  opened.synchronize();
}

std::vector<PendingSmsItem> ExtensionProgram::queue() const {
  return PendingSmsQueue::load(store());
}

}  // namespace kivo::testkit
