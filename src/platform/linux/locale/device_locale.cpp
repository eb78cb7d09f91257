#include "platform/linux/locale/device_locale.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>
#include <utility>

namespace kivo::linux_platform {
namespace {

std::string_view environmentLocale(const char* category) {
  for (const char* const variable : {"LC_ALL", category, "LANG"}) {
    const char* const value = std::getenv(variable);
    if (value != nullptr && *value != '\0') return value;
  }
  return "C";
}

std::string_view scriptOf(std::string_view modifier) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 3> scripts = {{
      {"@cyrillic", "_Cyrl"},
      {"@devanagari", "_Deva"},
      {"@latin", "_Latn"},
  }};
  for (const auto& [name, script] : scripts) {
    if (modifier == name) return script;
  }
  return "";
}

}  // namespace

std::string deviceLocale(const char* category) {
  const std::string_view whole = environmentLocale(category);
  const std::string_view modifier = whole.substr(std::min(whole.find('@'), whole.size()));
  const std::string_view name = whole.substr(0, whole.find_first_of(".@"));
  if (name == "C" || name == "POSIX") return "en_US_POSIX";

  const std::string_view language = name.substr(0, name.find('_'));
  const std::string_view region = name.substr(language.size());
  return std::string(language) + std::string(scriptOf(modifier)) + std::string(region);
}

}  // namespace kivo::linux_platform
