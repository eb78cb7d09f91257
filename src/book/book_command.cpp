#include "book/book_command.h"

#include <utility>

namespace kivo::book {

namespace {

struct Called {
  std::string program = "kivo-ledger";
  std::string ending;
};

Called& called() {
  static Called how;
  return how;
}

// `name` as one word of a shell.
std::string shellWord(std::string_view name) {
  constexpr std::string_view plain =
      "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.";
  if (name.find_first_not_of(plain) == std::string_view::npos) return std::string(name);
  std::string word = "'";
  for (const char letter : name) word += letter == '\'' ? "'\\''" : std::string(1, letter);
  return word + "'";
}

}  // namespace

void nameBookCommands(std::string program, std::string_view named) {
  called() = {.program = std::move(program),
              .ending = named.empty() ? "" : " --book " + shellWord(named)};
}

const std::string& bookProgram() { return called().program; }

std::string bookCommand(std::string_view words) {
  return bookProgram() + " " + std::string(words) + called().ending;
}

}  // namespace kivo::book
