#include "server/commands/book_commands.h"

#include <functional>
#include <utility>

#include "ledger/commands/all_commands.h"
#include "platform/linux/foundation/device_folders.h"
#include "server/directory.h"

namespace kivo::server {

using linux_platform::Command;
using linux_platform::CommandParameter;
using linux_platform::GivenParameters;

namespace {

constexpr const char* option = "--book";
// An option of kivo-ledger teach, and its name beside the option that names a book.
constexpr const char* bookingOthers = "--book-others";

// Runs `command` in the folders of the book that was given.
void runInBook(const std::function<void(const GivenParameters&)>& command, GivenParameters given) {
  const BookPlace book = Directory::open().book(given.at(option));
  given.erase(option);
  if (given.contains(bookingOthers)) given[option];
  const linux_platform::FoldersIn folders(book.folder);
  command(given);
}

std::vector<std::string> bookNames() {
  std::vector<std::string> names;
  for (const ListedBook& book : Directory::open().list()) names.push_back(book.name);
  return names;
}

}  // namespace

std::vector<Command> bookCommands(const std::string& version,
                                  const std::function<void(const GivenParameters&)>& people) {
  std::vector<Command> commands = ledger::bookCommands(version);
  for (Command& command : commands) {
    if (!command.run) continue;
    const bool isList = command.name == "list";
    if (isList) command.purpose = "List people and devices, or with --book payments";
    if (command.name == "book") command.purpose += "; book add makes a book";
    for (CommandParameter& parameter : command.parameters) {
      if (parameter.name == option) parameter.name = bookingOthers;
    }
    command.parameters.push_back(
        {option, "The book's name",
         isList ? CommandParameter::Kind::optional : CommandParameter::Kind::required, bookNames});
    command.run = [run = std::move(command.run), isList, people](const GivenParameters& given) {
      if (isList && !given.contains(option)) return people(given);
      runInBook(run, given);
    };
  }
  return commands;
}

}  // namespace kivo::server
