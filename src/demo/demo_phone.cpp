#include "demo/demo_phone.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <utility>

namespace kivo {
using linux_platform::ProgramResult;
using namespace std::chrono_literals;

namespace {

// Beside the programs in the build tree; an installation has them where all services are.
std::filesystem::path serviceFolder() {
  const std::filesystem::path tree = linux_platform::programFolder().parent_path();
  const std::filesystem::path built = tree / "dbus-services";
  return std::filesystem::is_directory(built) ? built : tree / "share" / "dbus-1" / "services";
}

std::string withoutLastBreak(std::string text) {
  if (text.ends_with('\n')) text.pop_back();
  return text;
}

}  // namespace

DemoPhone::Folder::Folder() {
  // The bus's socket lies in it, and a socket's path is short.
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
    : backend_(currency),
      server_([this](const HttpRequest& request) -> HttpAnswer {
        auto answer = backend_.answer(
            {.method = request.method, .target = request.target, .body = request.body});
        return {.status = answer.status, .body = std::move(answer.body)};
      }),
      bus_(folder_.path(), {serviceFolder()}, environment()),
      display_(bus_.address()) {
  phone({"sign-in", "--user-id", "demo-user", "--url", server_.url(), "--currency", currency});
  phone({"notifications", "authorized"});
}

DemoPhone::~DemoPhone() = default;

// The person's language and time zone stay: they decide how amounts and days read.
DemoPhone::Environment DemoPhone::environment() const {
  const std::filesystem::path& home = folder_.path();
  return {{"HOME", home.string()},
          {"XDG_DATA_HOME", (home / "data").string()},
          {"XDG_CONFIG_HOME", (home / "config").string()},
          {"XDG_CACHE_HOME", (home / "cache").string()},
          {"XDG_STATE_HOME", (home / "state").string()},
          {"XDG_RUNTIME_DIR", (home / "run").string()}};
}

ProgramResult DemoPhone::run(const char* program, std::vector<std::string> arguments,
                             std::string input) {
  Environment surroundings = environment();
  surroundings["DBUS_SESSION_BUS_ADDRESS"] = bus_.address();
  const std::filesystem::path file = linux_platform::programFolder() / program;
  if (!std::filesystem::exists(file)) {
    throw std::runtime_error(std::string(program) + " is missing beside kivo-demo");
  }
  ProgramResult result = linux_platform::runProgram({.program = file,
                                                     .arguments = std::move(arguments),
                                                     .input = std::move(input),
                                                     .environment = std::move(surroundings)});
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
  const std::size_t expected = toldNotifications_ + count;
  std::vector<ShownNotification> shown = display_.shown();
  while (shown.size() < expected && std::chrono::steady_clock::now() < deadline && keepsWaiting()) {
    shown = display_.waitForShown(expected, 100ms);
  }
  shown.erase(shown.begin(), shown.begin() + static_cast<std::ptrdiff_t>(toldNotifications_));
  toldNotifications_ += shown.size();
  return shown;
}

std::string DemoPhone::queue() { return phone({"queue"}); }

std::string DemoPhone::widget() { return phone({"widget"}); }

std::string DemoPhone::stored(StoreKey key) {
  return phone({"store", "get", std::string(key.name)});
}

}  // namespace kivo
