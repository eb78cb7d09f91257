#include "server/commands/book_commands.h"

#include <functional>
#include <memory>
#include <utility>

#include "ledger/commands/all_commands.h"
#include "server/commands/chosen_shelf.h"
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
  const std::unique_ptr<Shelf> shelf = openedShelf(given);
  const BookPlace book = Directory(*shelf).book(given.at(option));
  for (const char* const own : {option, databaseOptionName}) given.erase(own);
  if (given.contains(bookingOthers)) given[option];
  shelf->inBook(book.number, Shelf::Settings::mayChange, [&] { command(given); });
}

std::vector<std::string> bookNames() {
  std::vector<std::string> names;
  const std::unique_ptr<Shelf> shelf = openedShelf({});
  for (const ListedBook& book : Directory(*shelf).list()) names.push_back(book.name);
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
    command.parameters.push_back(databaseOption());
    command.run = [run = std::move(command.run), isList, people](const GivenParameters& given) {
      if (isList && !given.contains(option)) return people(given);
      runInBook(run, given);
    };
  }
  return commands;
}

}  // namespace kivo::server
