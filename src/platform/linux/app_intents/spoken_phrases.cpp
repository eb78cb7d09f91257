#include "platform/linux/app_intents/spoken_phrases.h"

#include <utility>

namespace kivo::linux_platform {
namespace {

// std::tolower would depend on the process's locale.
char lowered(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

std::string plainWords(std::string_view sentence) {
  constexpr std::string_view punctuation = ".,;:!? \t\r\n";
  const std::size_t end = sentence.find_last_not_of(punctuation);
  std::string plain;
  for (const char letter : sentence.substr(0, end == std::string_view::npos ? 0 : end + 1)) {
    const bool blank = letter == ' ' || letter == '\t' || letter == '\r' || letter == '\n';
    if (!blank) {
      plain += lowered(letter);
    } else if (!plain.empty() && plain.back() != ' ') {
      plain += ' ';
    }
  }
  return plain;
}

std::unique_ptr<platform::AppIntent> intentSpokenOf(const platform::AppIntentsExtension& extension,
                                                    std::string_view sentence) {
  const std::string said = plainWords(sentence);
  for (platform::AppShortcut& shortcut : extension.appShortcuts()) {
    for (const platform::AppShortcutPhrase& phrase : shortcut.phrases) {
      if (plainWords(phrase.said(extension.applicationName)) == said) {
        return std::move(shortcut.intent);
      }
    }
  }
  return nullptr;
}

std::vector<std::string> spokenPhrases(const platform::AppIntentsExtension& extension) {
  std::vector<std::string> phrases;
  for (const platform::AppShortcut& shortcut : extension.appShortcuts()) {
    for (const platform::AppShortcutPhrase& phrase : shortcut.phrases) {
      phrases.push_back(phrase.said(extension.applicationName));
    }
  }
  return phrases;
}

}  // namespace kivo::linux_platform
