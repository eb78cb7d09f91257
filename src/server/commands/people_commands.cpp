#include "server/commands/people_commands.h"

#include <iostream>
#include <string>

#include "book/book.h"
#include "ledger/commands/command_options.h"
#include "platform/foundation/json_encoder.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/prompt.h"
#include "platform/linux/terminal/screen.h"
#include "server/book_folder.h"
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

void addBook(const GivenParameters& given) {
  const std::string& name = given.at("NAME");
  const auto currency = ledger::givenCurrency(given, "--currency", "EUR");
  Directory::open().addBook(
      name, [&](const std::filesystem::path& folder) { BookFolder::fill(folder, *currency); });
  print("The book " + name + " is kept in " + currency->text() + ".\n");
}

void addPerson(const GivenParameters& given) {
  Directory::open().addPerson(given.at("NAME"), given.at("--book"));
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
  Directory directory = Directory::open();
  if (!given.contains("--yes")) confirmErasure(name);
  std::int64_t erased = 0;
  directory.removePerson(name, [&](const Access& person) {
    const linux_platform::FoldersIn folders(person.book.folder);
    erased = book::Book::open().erasePerson(person.person);
  });
  print(name + " is gone, with " + platform::integerText(erased) +
        (erased == 1 ? " payment" : " payments") + ", all devices and messages.\n");
}

void addDevice(const GivenParameters& given) {
  Directory directory = Directory::open();
  const std::string publicUrl = directory.publicUrl();
  if (publicUrl.empty()) {
    throw CommandFailure(
        "the server's address is not known yet; run kivo-server serve --public-url once");
  }
  const std::string& person = given.at("PERSON");
  const std::string secret = directory.addDevice(person, given.at("--name"));
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
  Directory::open().revokeDevice(given.at("DEVICE"), person == given.end() ? "" : person->second);
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
  if (given.size() > (asJson ? 1U : 0U))
    throw BadUsage("--book is missing: these options are for payments");
  std::string text;
  std::vector<JSONEncoder> objects;
  for (const ListedBook& book : Directory::open().list()) {
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
  return {
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
}

}  // namespace kivo::server
