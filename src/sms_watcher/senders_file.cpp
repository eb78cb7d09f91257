#include "sms_watcher/senders_file.h"

#include <sstream>
#include <utility>

#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/store/settings_toml.h"
#include "sms_watcher/sender_pattern.h"

namespace kivo::SendersFile {
namespace {

using linux_platform::Failure;

constexpr const char* sendersKey = "senders";
constexpr const char* introduction =
    "# The senders whose messages are handed to Kivo: exact, or with * for any characters.\n"
    "# `kivo-phone watch add` and `remove` rewrite this file without other comments.\n";

std::string atLine(const toml::source_position& position) {
  return "line " + std::to_string(position.line) + ": ";
}

std::vector<std::string> sendersIn(const std::string& bytes) {
  std::vector<std::string> senders;
  const toml::table settings = linux_platform::settingsTable(bytes);
  for (const auto& [key, value] : settings) {
    const std::string line = atLine(value.source().begin);
    if (key.str() != sendersKey) throw Failure(line + "unknown key; the only one is senders");
    const toml::array* const list = value.as_array();
    if (list == nullptr) throw Failure(line + "senders must be a list of texts in quotes");
    for (const toml::node& sender : *list) {
      const auto text = sender.value_exact<std::string>();
      if (!text) throw Failure(atLine(sender.source().begin) + "a sender must be a text in quotes");
      senders.push_back(*text);
    }
  }
  return senders;
}

std::string textOf(const std::vector<std::string>& senders) {
  toml::array array;
  for (const std::string& sender : senders) array.push_back(sender);
  std::ostringstream out;
  out << introduction << toml::table{{sendersKey, std::move(array)}} << '\n';
  return out.str();
}

// The content of the file, whose senders `senders` reads. Puts the path in front of a failure.
template <typename Senders>
Content contentOf(const Senders& senders) {
  const auto path = place();
  if (!path) return {};
  try {
    const linux_platform::SettingsFile file = linux_platform::readSettingsFile(*path);
    return {.senders = senders(file.text), .changed = file.changed};
  } catch (const Failure& failure) {
    throw Failure(path->string() + ": " + failure.what());
  }
}

}  // namespace

std::optional<std::filesystem::path> place() {
  const auto home = linux_platform::configHome();
  if (!home) return std::nullopt;
  return *home / "kivo" / "sms-watcher.toml";
}

Content read() { return contentOf(sendersIn); }

linux_platform::SettingsLock lock() { return linux_platform::SettingsLock(place().value_or("")); }

Content readValid() {
  return contentOf([](const std::string& bytes) {
    std::vector<std::string> senders = sendersIn(bytes);
    for (const std::string& sender : senders) SenderPattern::check(sender);
    return senders;
  });
}

void write(const std::vector<std::string>& senders) {
  const Failure failure("the settings file cannot be written");
  const auto path = place();
  if (!path) throw failure;
  try {
    linux_platform::replaceSettingsFile(*path, textOf(senders));
  } catch (const Failure&) {
    throw failure;
  }
}

}  // namespace kivo::SendersFile
