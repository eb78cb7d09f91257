#include "platform/linux/app_intents/shortcut_search.h"

#include <algorithm>
#include <sstream>

#include "platform/linux/app_intents/spoken_phrases.h"
#include "platform/linux/process/desktop_entry.h"

namespace kivo::linux_platform {
namespace {

using platform::AppIntentsExtension;
using platform::AppShortcut;

void addWords(std::vector<std::string>& words, std::string_view sentence) {
  std::istringstream plain(plainWords(sentence));
  for (std::string word; std::getline(plain, word, ' ');) words.push_back(word);
}

bool eachBeginsAWord(const std::vector<std::string>& typed, std::string_view phrase) {
  std::vector<std::string> words;
  addWords(words, phrase);
  return std::all_of(typed.begin(), typed.end(), [&words](const std::string& beginning) {
    return std::any_of(words.begin(), words.end(),
                       [&](const std::string& word) { return word.starts_with(beginning); });
  });
}

// The shortcuts that search may offer.
std::vector<AppShortcut> offered(const AppIntentsExtension& extension) {
  std::vector<AppShortcut> shortcuts = extension.appShortcuts();
  std::erase_if(shortcuts, [](const AppShortcut& shortcut) {
    return shortcut.phrases.empty() || !shortcut.intent->metadata().isDiscoverable;
  });
  return shortcuts;
}

}  // namespace

std::vector<std::string> intentsFound(const AppIntentsExtension& extension,
                                      const std::vector<std::string>& terms) {
  std::vector<std::string> typed;
  for (const std::string& term : terms) addWords(typed, term);
  if (typed.empty()) return {};

  std::vector<std::string> found;
  for (const AppShortcut& shortcut : offered(extension)) {
    const bool fits =
        std::any_of(shortcut.phrases.begin(), shortcut.phrases.end(), [&](const auto& phrase) {
          return eachBeginsAWord(typed, phrase.said(extension.applicationName));
        });
    if (fits) found.emplace_back(shortcut.intent->typeName());
  }
  return found;
}

std::optional<ShownShortcut> shownShortcut(const AppIntentsExtension& extension,
                                           std::string_view typeName) {
  for (const AppShortcut& shortcut : offered(extension)) {
    if (shortcut.intent->typeName() != typeName) continue;
    const std::string application = desktopEntry;
    return ShownShortcut{
        .title = std::string(shortcut.intent->title().key),
        .description = shortcut.phrases.front().said(extension.applicationName),
        .icons = {application + "." + std::string(shortcut.systemImageName), application}};
  }
  return std::nullopt;
}

}  // namespace kivo::linux_platform
