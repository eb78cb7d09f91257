#include "extension_program.h"

namespace kivo::testkit {

using linux_platform::ProgramCall;
using linux_platform::ProgramResult;

std::string savedAnswer(const std::string& type, const std::string& category) {
  return R"({"saved":true,"transaction_type":")" + type +
         R"(","expense":{"id":"1","description":"Carrefour","amount":150.0,"category":")" +
         category + R"(","expense_date":"2026-01-31"}})";
}

ProgramCall ExtensionProgram::call(std::vector<std::string> arguments, std::string input) const {
  return {.program = linux_platform::programFolder() / "kivo-intents",
          .arguments = std::move(arguments),
          .input = std::move(input)};
}

ProgramResult ExtensionProgram::run(std::vector<std::string> arguments, std::string input) const {
  return linux_platform::runProgram(call(std::move(arguments), std::move(input)));
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
