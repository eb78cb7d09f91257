#include "sms_watcher/senders_file.h"

#include <sstream>
#include <utility>

#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/store/settings_toml.h"
#include "sms_watcher/sender_pattern.h"

namespace kivo::SendersFile {
namespace {

constexpr const char* sendersKey = "senders";
constexpr const char* introduction =
    "# The senders whose messages are handed to Kivo: exact, or with * for any characters.\n"
    "# `kivo-phone watch add` and `remove` rewrite this file without other comments.\n";

std::string atLine(const toml::source_position& position) {
  return "line " + std::to_string(position.line) + ": ";
}

// Parses the file; the result has either the senders or the error.
Content parsed(const std::string& bytes) {
  linux_platform::SettingsTable settings = linux_platform::settingsTable(bytes);
  if (settings.error) return {.error = std::move(settings.error)};
  Content content;
  for (const auto& [key, value] : settings.table) {
    const std::string line = atLine(value.source().begin);
    if (key.str() != sendersKey) return {.error = line + "unknown key; the only one is senders"};
    const toml::array* const senders = value.as_array();
    if (senders == nullptr) return {.error = line + "senders must be a list of texts in quotes"};
    for (const toml::node& sender : *senders) {
      const auto text = sender.value_exact<std::string>();
      if (!text)
        return {.error = atLine(sender.source().begin) + "a sender must be a text in quotes"};
      content.senders.push_back(*text);
    }
  }
  return content;
}

std::string textOf(const std::vector<std::string>& senders) {
  toml::array array;
  for (const std::string& sender : senders) array.push_back(sender);
  std::ostringstream out;
  out << introduction << toml::table{{sendersKey, std::move(array)}} << '\n';
  return out.str();
}

}  // namespace

std::optional<std::filesystem::path> place() {
  const auto home = linux_platform::configHome();
  if (!home) return std::nullopt;
  return *home / "kivo" / "sms-watcher.toml";
}

Content read() {
  const auto path = place();
  if (!path) return {};
  linux_platform::SettingsFile file = linux_platform::readSettingsFile(*path);
  Content content = file.error ? Content{.error = std::move(file.error)} : parsed(file.text);
  if (content.error) content.error = path->string() + ": " + *content.error;
  content.changed = file.changed;
  return content;
}

linux_platform::SettingsLock lock() { return linux_platform::SettingsLock(place().value_or("")); }

Content readValid() {
  Content content = read();
  for (const std::string& sender : content.senders) {
    if (const auto objection = SenderPattern::objectionTo(sender)) {
      content.error = place()->string() + ": a sender " + *objection;
    }
  }
  if (content.error) content.senders.clear();
  return content;
}

bool write(const std::vector<std::string>& senders) {
  const auto path = place();
  return path && linux_platform::replaceSettingsFile(*path, textOf(senders));
}

}  // namespace kivo::SendersFile
