#include "server/commands/people_commands.h"

#include <iostream>
#include <memory>
#include <string>

#include "book/book.h"
#include "ledger/commands/command_options.h"
#include "platform/foundation/json_encoder.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/prompt.h"
#include "platform/linux/terminal/screen.h"
#include "server/commands/chosen_shelf.h"
#include "server/directory.h"
#include "server/public_address.h"
#include "server/qr_code.h"

namespace kivo::server {

using linux_platform::BadUsage;
using linux_platform::Command;
using linux_platform::CommandFailure;
using linux_platform::GivenParameters;
using linux_platform::print;
using platform::JSONEncoder;

namespace {

using Preset = linux_platform::Prompt::Preset;
using ParameterKind = linux_platform::CommandParameter::Kind;

// The shelf that a command names, and its directory.
struct Opened {
  explicit Opened(const GivenParameters& given) : shelf(openedShelf(given)), directory(*shelf) {}

  std::unique_ptr<Shelf> shelf;
  Directory directory;
};

void addBook(const GivenParameters& given) {
  const std::string& name = given.at("NAME");
  const auto currency = ledger::givenCurrency(given, "--currency", "EUR");
  Opened(given).directory.addBook(name, *currency);
  print("The book " + name + " is kept in " + currency->text() + ".\n");
}

void addPerson(const GivenParameters& given) {
  Opened(given).directory.addPerson(given.at("NAME"), given.at("--book"));
  print(given.at("NAME") + " is a person of the book " + given.at("--book") +
        " now. kivo-server device add gives a phone its address.\n");
}

// Asks whether to go on. Throws CommandFailure when nobody says so.
void confirmErasure(const std::string& person) {
  if (!linux_platform::inputIsTerminal()) {
    throw BadUsage("there is no terminal to ask at; --yes erases without asking");
  }
  linux_platform::Prompt prompt(std::cin);
  const bool isSure =
      prompt.confirms("Erase all payments and messages of " + person + " for good?", Preset::no);
  if (!isSure) throw CommandFailure("nothing was erased");
}

void removePerson(const GivenParameters& given) {
  const std::string& name = given.at("NAME");
  Opened opened(given);
  if (!given.contains("--yes")) confirmErasure(name);
  std::int64_t erased = 0;
  opened.directory.removePerson(name, [&](const Access& person) {
    opened.shelf->inBook(person.book.number, Shelf::Settings::stay,
                         [&] { erased = book::Book::open().erasePerson(person.person); });
  });
  print(name + " is gone, with " + platform::integerText(erased) +
        (erased == 1 ? " payment" : " payments") + ", all devices and messages.\n");
}

void addDevice(const GivenParameters& given) {
  Opened opened(given);
  const std::string publicUrl = opened.directory.publicUrl();
  if (publicUrl.empty()) {
    throw CommandFailure(
        "the server's address is not known yet; run kivo-server serve --public-url once");
  }
  const std::string& person = given.at("PERSON");
  const std::string secret = opened.directory.addDevice(person, given.at("--name"));
  const std::string url = PublicAddress::ofDevice(publicUrl, secret);
  std::string text = "On the device, as " + person + ":\n\n  kivo-phone sign-in --user-id \"" +
                     person + "\" --url " + url + "\n\n";
  if (linux_platform::onTerminal()) text += qrCode(url) + "\n";
  print(
      text + "The report: " + url + "/report\n\n" +
      "Whoever has this address reaches the book. It is shown this once; kivo-server device revoke "
      "ends it.\n");
}

void revokeDevice(const GivenParameters& given) {
  const auto person = given.find("--person");
  Opened(given).directory.revokeDevice(given.at("DEVICE"),
                                       person == given.end() ? "" : person->second);
  print("The device " + given.at("DEVICE") + " reaches nothing any more.\n");
}

std::string linesOf(const ListedBook& book) {
  std::string lines = book.name + "\n";
  for (const ListedPerson& person : book.people) {
    lines += "  " + person.name + "\n";
    for (const ListedDevice& device : person.devices) {
      lines += "    " + device.name;
      if (device.added) lines += ", since " + device.added->text();
      lines += "\n";
    }
  }
  return lines;
}

JSONEncoder jsonOf(const ListedDevice& device) {
  JSONEncoder object;
  object.encodeString("device", device.name);
  if (device.added) object.encodeString("added", device.added->text());
  return object;
}

JSONEncoder jsonOf(const ListedPerson& person) {
  std::vector<JSONEncoder> devices;
  for (const ListedDevice& device : person.devices) devices.push_back(jsonOf(device));
  JSONEncoder object;
  object.encodeString("person", person.name);
  object.encodeObjects("devices", devices);
  return object;
}

JSONEncoder jsonOf(const ListedBook& book) {
  std::vector<JSONEncoder> people;
  for (const ListedPerson& person : book.people) people.push_back(jsonOf(person));
  JSONEncoder object;
  object.encodeString("book", book.name);
  object.encodeObjects("people", people);
  return object;
}

}  // namespace

void listPeople(const GivenParameters& given) {
  const bool asJson = given.contains("--json");
  if (given.size() > given.count("--json") + given.count(databaseOptionName))
    throw BadUsage("--book is missing: these options are for payments");
  std::string text;
  std::vector<JSONEncoder> objects;
  for (const ListedBook& book : Opened(given).directory.list()) {
    text += linesOf(book);
    objects.push_back(jsonOf(book));
  }
  if (asJson) {
    return print(linux_platform::jsonForStandardOutput(JSONEncoder::arrayText(objects)) + "\n");
  }
  print(text.empty() ? "There is no book yet; kivo-server book add makes one.\n" : text);
}

std::vector<Command> peopleCommands() {
  const char* const heading = "Books, people and devices";
  std::vector<Command> commands = {
      {"book add",
       "Add an empty book",
       {{"NAME", "Its name", ParameterKind::required},
        {"--currency", "Its currency, as EUR", ParameterKind::required}},
       addBook,
       heading},
      {"person", "Add or erase people", {}, nullptr, heading},
      {"person add",
       "Add a person to a book",
       {{"NAME", "The person's name, which the phone sends", ParameterKind::required},
        {"--book", "The book's name", ParameterKind::required}},
       addPerson},
      {"person remove",
       "Erase a person's payments, messages and devices",
       {{"NAME", "The person's name", ParameterKind::required},
        {"--yes", "Do not ask", ParameterKind::flag}},
       removePerson},
      {"device", "Add or revoke devices", {}, nullptr, heading},
      {"device add",
       "Print the address for a new device, once",
       {{"PERSON", "The person's name", ParameterKind::required},
        {"--name", "The device's name", ParameterKind::required}},
       addDevice},
      {"device revoke",
       "End a device's access",
       {{"DEVICE", "The device's name", ParameterKind::required},
        {"--person", "Its person, when several have one of this name", ParameterKind::optional}},
       revokeDevice},
  };
  for (Command& command : commands) {
    if (command.run) command.parameters.push_back(databaseOption());
  }
  return commands;
}

}  // namespace kivo::server
