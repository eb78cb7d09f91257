#include "demo/demo_phone.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <thread>
#include <utility>

#include <sys/socket.h>
#include <sys/un.h>

#include "platform/foundation/json_decoder.h"
#include "platform/linux/process/descriptor.h"

namespace kivo {
using linux_platform::ProgramResult;
using namespace std::chrono_literals;

namespace {

// The D-Bus service files: of the build tree when the program runs from there, else the installed
// ones.
std::filesystem::path serviceFolder() {
  const std::filesystem::path tree = linux_platform::programFolder().parent_path();
  const std::filesystem::path built = tree / "dbus-services";
  return std::filesystem::is_directory(built) ? built : tree / "share" / "dbus-1" / "services";
}

// Whether a server accepts connections on the socket at `path`. A path that is too long for
// sun_path is cut.
bool isAnswering(const std::filesystem::path& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.native().copy(address.sun_path, sizeof address.sun_path - 1);
  const linux_platform::Descriptor asking(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  return connect(asking.number(), generic, sizeof address) == 0;
}

std::string withoutLastBreak(std::string text) {
  if (text.ends_with('\n')) text.pop_back();
  return text;
}

}  // namespace

DemoPhone::Folder::Folder() {
  // The folder holds sockets, whose paths are limited to 107 bytes.
  constexpr std::size_t longestParent = 60;
  std::error_code none;
  std::filesystem::path parent = std::filesystem::temp_directory_path(none);
  if (none || parent.native().size() > longestParent) parent = "/tmp";
  std::string name = (parent / "kivo-demo-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("cannot make a temporary folder");
  path_ = name;
}

DemoPhone::Folder::~Folder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

DemoPhone::DemoPhone(const std::string& currency)
    : bus_(folder_.path(), {serviceFolder()}, environment()), display_(bus_.address()) {
  startLedger();
  phone({"sign-in", "--local", "--currency", currency});
  phone({"notifications", "authorized"});
}

DemoPhone::~DemoPhone() { stopLedger(); }

// The user's language and time zone are inherited: amounts and days are formatted with them.
DemoPhone::Environment DemoPhone::environment() const {
  const std::filesystem::path& home = folder_.path();
  return {{"HOME", home.string()},
          {"XDG_DATA_HOME", (home / "data").string()},
          {"XDG_CONFIG_HOME", (home / "config").string()},
          {"XDG_CACHE_HOME", (home / "cache").string()},
          {"XDG_STATE_HOME", (home / "state").string()},
          {"XDG_RUNTIME_DIR", (home / "run").string()}};
}

linux_platform::ProgramCall DemoPhone::call(const char* program, std::vector<std::string> arguments,
                                            std::string input) {
  Environment surroundings = environment();
  surroundings["DBUS_SESSION_BUS_ADDRESS"] = bus_.address();
  const std::filesystem::path file = linux_platform::programFolder() / program;
  if (!std::filesystem::exists(file)) {
    throw std::runtime_error(std::string(program) + " is missing beside kivo-demo");
  }
  return {.program = file,
          .arguments = std::move(arguments),
          .input = std::move(input),
          .environment = std::move(surroundings)};
}

ProgramResult DemoPhone::run(const char* program, std::vector<std::string> arguments,
                             std::string input) {
  ProgramResult result =
      linux_platform::runProgram(call(program, std::move(arguments), std::move(input)));
  if (result.status != 0) {
    throw std::runtime_error(std::string(program) + " ended with status " +
                             std::to_string(result.status));
  }
  return result;
}

std::string DemoPhone::phone(std::vector<std::string> arguments) {
  return withoutLastBreak(run("kivo-phone", std::move(arguments)).output);
}

IntentAnswer DemoPhone::processSms(const std::string& message) {
  return perform({"ProcessSMSIntent", "--smsText", "-"}, message);
}

IntentAnswer DemoPhone::addExpense(const std::string& amount, const std::string& merchant) {
  return perform({"AddExpenseIntent", "--amount", amount, "--merchant", "-"}, merchant);
}

IntentAnswer DemoPhone::perform(std::vector<std::string> arguments, const std::string& input) {
  arguments.insert(arguments.begin(), "perform");
  std::string output = withoutLastBreak(run("kivo-intents", std::move(arguments), input).output);
  const std::size_t lastBreak = output.rfind('\n');
  if (lastBreak == std::string::npos) return {.log = {}, .dialog = std::move(output)};
  return {.log = output.substr(0, lastBreak), .dialog = output.substr(lastBreak + 1)};
}

std::vector<ShownNotification> DemoPhone::nextNotifications(
    std::size_t count, const std::function<bool()>& keepsWaiting) {
  const auto deadline = std::chrono::steady_clock::now() + 5s;
  const std::size_t expected = returnedNotifications_ + count;
  std::vector<ShownNotification> shown = display_.shown();
  while (shown.size() < expected && std::chrono::steady_clock::now() < deadline && keepsWaiting()) {
    shown = display_.waitForShown(expected, 100ms);
  }
  shown.erase(shown.begin(), shown.begin() + static_cast<std::ptrdiff_t>(returnedNotifications_));
  returnedNotifications_ += shown.size();
  return shown;
}

void DemoPhone::startLedger() {
  // The default path, to which `kivo-phone sign-in --local` connects.
  const std::filesystem::path socket = folder_.path() / "run" / "kivo" / "ledger.sock";
  ledger_ = std::make_unique<linux_platform::ChildProcess>(call("kivo-ledger", {"serve"}));
  for (auto waited = 0ms; !isAnswering(socket); waited += 5ms) {
    if (waited > 10s) throw std::runtime_error("kivo-ledger does not start");
    std::this_thread::sleep_for(5ms);
  }
}

void DemoPhone::stopLedger() {
  if (ledger_ == nullptr) return;
  ledger_->signal(SIGTERM);
  ledger_->wait(5s);
  ledger_.reset();
}

std::string DemoPhone::ledger(const std::string& command) {
  return withoutLastBreak(run("kivo-ledger", {command}).output);
}

std::vector<std::string> DemoPhone::descriptions(const std::string& command) {
  const std::string json = run("kivo-ledger", {command, "--json"}).output;
  std::vector<std::string> result;
  for (const auto& entry : platform::JSONDecoder::arrayOfObjects(json)) {
    result.push_back(entry.decodeString("description"));
  }
  return result;
}

std::string DemoPhone::queue() { return phone({"queue"}); }

std::string DemoPhone::widget() { return phone({"widget"}); }

std::string DemoPhone::stored(StoreKey key) {
  return phone({"store", "get", std::string(key.name)});
}

}  // namespace kivo
