#include "watched_phone.h"

#include <csignal>
#include <fstream>
#include <stdexcept>
#include <utility>

#include "platform/foundation/date.h"
#include "platform/foundation/iso8601_date_formatter.h"
#include "sms_watcher/senders_file.h"
#include "store/shared_store.h"

namespace kivo::testkit {

using linux_platform::ChildProcess;
using linux_platform::ProgramCall;
using linux_platform::ProgramResult;

namespace {

constexpr const char* modemManagerName = "org.freedesktop.ModemManager1";
constexpr const char* intentsName = "app.kivo.expenses.Intents";

std::string withCommas(const std::vector<std::string>& objects) {
  std::string text;
  for (const std::string& object : objects) text += (text.empty() ? "{" : ",{") + object + "}";
  return text;
}

}  // namespace

std::string message(const std::string& path, const std::string& text, const std::string& number,
                    const std::string& properties) {
  // Of two members of one name the last one counts.
  return R"("path":")" + path + R"(","Text":")" + text + R"(","Number":")" + number +
         R"(","State":3,"PduType":1,)" + sent(std::chrono::seconds(1)) +
         (properties.empty() ? "" : "," + properties);
}

std::string timeAgo(std::chrono::seconds ago) {
  return platform::ISO8601DateFormatter::string(platform::Date::now() - ago);
}

WatchedPhone::WatchedPhone()
    : WatchedPhone(std::filesystem::temp_directory_path() / "no-services") {}

WatchedPhone::WatchedPhone(const std::filesystem::path& services)
    : phone(services), systemAddress("DBUS_SYSTEM_BUS_ADDRESS", systemBus.address()) {
  signIn("http://127.0.0.1:9");
  writeSettings(R"(senders = ["MyBank"])");
  intentsDo("answer");
}

WatchedPhone::~WatchedPhone() = default;

std::unique_ptr<ChildProcess> WatchedPhone::startClient(const std::string& script,
                                                        std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), std::string(KIVO_CLIENTS_FOLDER "/") + script);
  return std::make_unique<ChildProcess>(
      ProgramCall{.program = "/usr/bin/python3", .arguments = std::move(arguments)});
}

ProgramResult WatchedPhone::onSystemBus(const std::string& service, const std::string& path,
                                        const std::string& method, const std::string& argument) {
  return linux_platform::runProgram(
      {.program = "gdbus",
       .arguments = {"call", "--address", systemBus.address(), "--dest", service, "--object-path",
                     path, "--method", method, argument}});
}

void WatchedPhone::startModemManager(const std::vector<std::string>& messages) {
  modemManager = startClient("modem_manager.py", {R"({"0":[)" + withCommas(messages) + "]}"});
  if (!eventually([this] { return hasModemManager(); }, std::chrono::seconds(60))) {
    throw std::runtime_error("no ModemManager");
  }
}

bool WatchedPhone::hasModemManager() {
  return onSystemBus("org.freedesktop.DBus", "/", "org.freedesktop.DBus.GetNameOwner",
                     modemManagerName)
             .status == 0;
}

void WatchedPhone::endModemManager() {
  modemManager.reset();
  if (!eventually([this] { return !hasModemManager(); }, std::chrono::seconds(60))) {
    throw std::runtime_error("ModemManager does not end");
  }
}

std::string WatchedPhone::modem(const std::string& command) {
  const ProgramResult result =
      onSystemBus(modemManagerName, "/test", "test.Test.Do", "{" + command + "}");
  EXPECT_EQ(result.status, 0) << result.errors;
  return result.output;
}

void WatchedPhone::startIntents() {
  intents.reset();
  intents = startClient("intents_recorder.py", {notes().string(), behaviour().string()});
  const auto isThere = [this] { return phone.processOf(intentsName) == intents->id(); };
  if (!eventually(isThere, std::chrono::seconds(60))) {
    throw std::runtime_error("no service of the intents");
  }
}

void WatchedPhone::intentsDo(const std::string& does) {
  const std::filesystem::path fresh = behaviour().string() + ".new";
  std::ofstream(fresh) << does;
  std::filesystem::rename(fresh, behaviour());
}

void WatchedPhone::startWatcher(std::chrono::milliseconds performTimeout,
                                std::chrono::milliseconds modemTimeout) {
  watcher = std::make_unique<ChildProcess>(ProgramCall{
      .program = linux_platform::programFolder() / "kivo-short-timeout-sms-watcher",
      .arguments = {std::to_string(performTimeout.count()), std::to_string(modemTimeout.count())}});
  const auto isThere = [this] { return phone.processOf(watcherName) == watcher->id(); };
  if (!eventually(isThere, std::chrono::seconds(60))) {
    throw std::runtime_error("no watcher: " + watcher->wait(std::chrono::seconds(1)).errors);
  }
}

ProgramResult WatchedPhone::endWatcher() {
  watcher->signal(SIGTERM);
  ProgramResult result = watcher->wait(std::chrono::seconds(20));
  watcher.reset();
  return result;
}

void WatchedPhone::killWatcher() {
  watcher.reset();
  eventually([this] { return !phone.processOf(watcherName); });
}

ProgramResult WatchedPhone::watch(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "watch");
  return linux_platform::runProgram({.program = linux_platform::programFolder() / "kivo-phone",
                                     .arguments = std::move(arguments)});
}

std::filesystem::path WatchedPhone::settingsFile() { return SendersFile::place().value(); }

void WatchedPhone::writeSettings(const std::string& text) {
  const std::filesystem::path file = settingsFile();
  std::filesystem::create_directories(file.parent_path());
  const std::filesystem::path fresh = file.string() + ".new";
  std::ofstream(fresh) << text;
  std::filesystem::rename(fresh, file);
}

void WatchedPhone::signIn(const std::string& url) {
  SharedStore store = SharedStore::open(appGroup).value();
  store.writeText(StoreKeys::userId, "user-1");
  store.writeText(StoreKeys::supabaseUrl, url);
  store.synchronize();
}

std::vector<std::string> WatchedPhone::handedOn() {
  const std::string before = R"(begin ProcessSMSIntent {"smsText": ")";
  const std::string after = "\"}";
  std::vector<std::string> texts;
  std::ifstream in(notes());
  bool underWay = false;
  for (std::string line; std::getline(in, line);) {
    if (line == "end") {
      underWay = false;
      continue;
    }
    const bool fits = line.starts_with(before) && line.ends_with(after) && !underWay;
    const std::size_t length = line.size() - before.size() - after.size();
    texts.push_back(fits ? line.substr(before.size(), length) : "X");
    underWay = true;
  }
  return texts;
}

bool WatchedPhone::lastIsAnswered() {
  std::ifstream in(notes());
  std::string last;
  for (std::string line; std::getline(in, line);) last = line;
  return last == "end";
}

std::vector<std::string> WatchedPhone::waitForHandedOn(std::size_t count) {
  eventually([&] { return handedOn().size() >= count; }, std::chrono::seconds(60));
  return handedOn();
}

std::vector<std::string> WatchedPhone::handedOnBeforeOneMore() {
  receive(message("9999", "One more", "MyBank", sent(std::chrono::seconds(-60))));
  eventually(
      [&] {
        const auto texts = handedOn();
        return !texts.empty() && texts.back() == "One more";
      },
      std::chrono::seconds(60));
  auto texts = handedOn();
  EXPECT_EQ(texts.empty() ? "" : texts.back(), "One more");
  if (!texts.empty()) texts.pop_back();
  return texts;
}

}  // namespace kivo::testkit
