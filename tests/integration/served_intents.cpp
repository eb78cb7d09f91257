#include "served_intents.h"

#include <fstream>
#include <stdexcept>
#include <utility>

#include "queue/pending_sms_queue.h"

namespace kivo::testkit {

using linux_platform::ProgramCall;
using linux_platform::ProgramResult;

ProgramResult ServedIntents::perform(const std::string& intent, const std::string& parameters) {
  return phone.call(intentsName, "/app/kivo/expenses/Intents", "app.kivo.Intents1.Perform",
                    {intent, parameters});
}

ProgramResult ServedIntents::processSMS(const std::string& text) {
  return perform("ProcessSMSIntent", "{'smsText': <'" + text + "'>}");
}

pid_t ServedIntents::service() { return phone.processOf(intentsName).value(); }

ProgramCall ServedIntents::client(const std::string& script, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), std::string(KIVO_CLIENTS_FOLDER "/") + script);
  return {.program = "/usr/bin/python3", .arguments = std::move(arguments)};
}

ProgramCall ServedIntents::serving() {
  return {.program = linux_platform::programFolder() / "kivo-intents", .arguments = {"serve"}};
}

bool ServedIntents::isServed() {
  return eventually([this] { return phone.processOf(intentsName).has_value(); });
}

SharedStore ServedIntents::store() {
  auto opened = SharedStore::open(appGroup);
  if (!opened) throw std::runtime_error("the store cannot be opened");
  return std::move(*opened);
}

void ServedIntents::signIn(const std::string& url) {
  SharedStore opened = store();
  opened.writeText(StoreKeys::userId, "user-1");
  opened.writeText(StoreKeys::supabaseUrl, url);
  opened.synchronize();
}

std::vector<PendingSmsItem> ServedIntents::queue() { return PendingSmsQueue::load(store()); }

std::string replyWith(const std::string& dialog) { return "('" + dialog + "',)\n"; }

long statusOf(pid_t process, const std::string& line) {
  std::ifstream in("/proc/" + std::to_string(process) + "/status");
  for (std::string each; std::getline(in, each);) {
    if (each.starts_with(line + ":")) return std::stol(each.substr(line.size() + 1));
  }
  return 0;
}

}  // namespace kivo::testkit
