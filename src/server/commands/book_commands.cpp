#include "server/commands/book_commands.h"

#include <functional>
#include <memory>
#include <utility>

#include "book/book_command.h"
#include "ledger/commands/all_commands.h"
#include "ledger/commands/opened_book.h"
#include "platform/linux/terminal/command_failure.h"
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

// Whose payments these add is not known from the machine that they run on.
bool addsPayments(const Command& command) {
  return command.name == "add" || command.name == "import";
}

// Puts the person's name as the directory writes it in the place of the given one. Throws when it
// is not one of `book`.
void requirePerson(const Directory& directory, const BookPlace& book, std::string& name) {
  const Access access = directory.accessOf(name);
  if (access.book.number != book.number) {
    throw linux_platform::CommandFailure(access.person + " is a person of the book " +
                                         access.book.name + ", not of " + book.name);
  }
  name = access.person;
}

// Runs `command` in the folders of the book that was given.
void runInBook(const std::function<void(const GivenParameters&)>& command, GivenParameters given) {
  const std::unique_ptr<Shelf> shelf = openedShelf(given);
  const Directory directory(*shelf);
  const BookPlace book = directory.book(given.at(option));
  const auto person = given.find(ledger::personOption);
  if (person != given.end()) requirePerson(directory, book, person->second);
  book::nameBookCommands("kivo-server", book.name);
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

std::vector<std::string> personNames() {
  std::vector<std::string> names;
  const std::unique_ptr<Shelf> shelf = openedShelf({});
  for (const ListedBook& book : Directory(*shelf).list()) {
    for (const ListedPerson& person : book.people) names.push_back(person.name);
  }
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
    if (addsPayments(command)) {
      command.parameters.push_back({ledger::personOption, "Whose payments they are",
                                    CommandParameter::Kind::required, personNames});
    }
    command.parameters.push_back(databaseOption());
    command.run = [run = std::move(command.run), isList, people](const GivenParameters& given) {
      if (isList && !given.contains(option)) return people(given);
      runInBook(run, given);
    };
  }
  return commands;
}

}  // namespace kivo::server
