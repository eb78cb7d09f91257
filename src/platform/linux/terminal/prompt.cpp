#include "platform/linux/terminal/prompt.h"

#include <iostream>
#include <string_view>

#include <unistd.h>

#include "platform/foundation/utf8.h"

namespace kivo::linux_platform {

std::optional<std::string> Prompt::askForLine(const std::string& question) {
  std::cerr << question << " " << std::flush;
  std::string typed;
  if (std::getline(*answers_, typed)) return typed;
  std::cerr << '\n';
  return std::nullopt;
}

std::optional<std::string> Prompt::ask(const std::string& question) {
  auto typed = askForLine(question);
  if (!typed) return std::nullopt;
  constexpr std::string_view blanks = " \t\r";
  typed->erase(typed->find_last_not_of(blanks) + 1);
  typed->erase(0, typed->find_first_not_of(blanks));
  return platform::repairedUtf8(*typed);
}

bool Prompt::confirms(const std::string& question, Preset preset) {
  const auto answer = ask(question + (preset == Preset::yes ? " [Y/n]" : " [y/N]"));
  if (!answer) return false;
  if (answer->empty()) return preset == Preset::yes;
  return *answer == "y" || *answer == "Y" || *answer == "yes";
}

bool inputIsTerminal() { return isatty(STDIN_FILENO) == 1; }

}  // namespace kivo::linux_platform
