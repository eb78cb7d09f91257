#include "ledger/commands/import_command.h"

#include <algorithm>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "book/book_command.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/import_messages.h"
#include "ledger/commands/import_senders.h"
#include "ledger/commands/opened_book.h"
#include "old_messages/chatty_history.h"
#include "platform/foundation/json_encoder.h"
#include "platform/foundation/utf8.h"
#include "platform/linux/foundation/complaint.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/prompt.h"
#include "platform/linux/terminal/screen.h"
#include "platform/linux/terminal/text_columns.h"
#include "recording/import.h"
#include "recording/template_file.h"

namespace kivo::ledger {

using book::Book;
using old_messages::Format;
using old_messages::MessageFile;
using recording::Import;
using recording::ImportCounts;
using recording::Message;

namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::GivenParameters;
using linux_platform::print;
using linux_platform::textsOf;
using ParameterKind = linux_platform::CommandParameter::Kind;

std::optional<Format> givenFormat(const GivenParameters& parameters) {
  const auto name = given(parameters, "--format");
  if (!name) return std::nullopt;
  const auto format = old_messages::formatFromText(*name);
  if (!format) throw invalid("--format", *name, "sms-backup, chatty or csv");
  return format;
}

std::vector<MessageFile> givenFiles(const GivenParameters& parameters) {
  std::vector<MessageFile> files;
  if (parameters.contains("--chatty")) {
    const auto store = old_messages::chattyStore();
    if (!store) throw CommandFailure("HOME is not set, so the store of Chatty is not found");
    if (!std::filesystem::exists(*store)) {
      throw CommandFailure("there is no store of Chatty: " + store->string());
    }
    files.emplace_back(*store, Format::chatty);
  }
  const auto format = givenFormat(parameters);
  for (const std::string& path : textsOf(parameters, "FILE")) files.emplace_back(path, format);
  if (files.empty()) throw BadUsage("name a file of messages, or give --chatty");
  return files;
}

ImportDays givenDays(const GivenParameters& parameters) {
  return {.from = givenDay(parameters, "--from"), .to = givenDay(parameters, "--to")};
}

// Counts the senders' messages and asks which to import. Without a terminal, prints the counts and
// throws.
std::vector<std::string> askedSenders(const ImportedFiles& files,
                                      const Import::Settings& settings) {
  const auto counts = files.senders([&](const std::string& text) {
    return recording::isTransaction({.reading = settings.read(text, settings.currency)});
  });
  if (counts.empty()) throw CommandFailure("there is no received message of these days");
  const bool asks = linux_platform::inputIsTerminal();
  print(
      senderTable(counts, asks ? Numbers::shown : Numbers::leftOut, linux_platform::screenWidth()));
  if (asks) return askForSenders(counts);
  throw BadUsage("there is no terminal to ask at; name the senders to import with --sender");
}

std::string tableOf(const ImportCounts& counts, Import::Mode mode) {
  std::string table;
  const auto add = [&](const std::string& name, std::int64_t count) {
    constexpr std::size_t numberWidth = 8;
    const std::string number = std::to_string(count);
    const std::size_t blanks = numberWidth - std::min(numberWidth, number.size());
    table += linux_platform::paddedTo(10, name) + std::string(blanks, ' ') + number + "\n";
  };
  add("Booked", counts.booked);
  add("In review", counts.review);
  add("Ignored", counts.ignored);
  add("Declined", counts.declined);
  add("Known", counts.known);
  add("Messages", counts.messages());
  if (mode == Import::Mode::dryRun) table += "Nothing was changed.\n";
  if (mode == Import::Mode::record && counts.review > 0) {
    table += "To look at those in review: " + book::bookCommand("review") + "\n";
  }
  return table;
}

std::string jsonOf(const ImportCounts& counts) {
  platform::JSONEncoder object;
  object.encodeInteger("booked", counts.booked);
  object.encodeInteger("review", counts.review);
  object.encodeInteger("ignored", counts.ignored);
  object.encodeInteger("declined", counts.declined);
  object.encodeInteger("known", counts.known);
  object.encodeInteger("messages", counts.messages());
  return object.text() + "\n";
}

void complain(const std::string& sentence) {
  linux_platform::complain(book::bookProgram(), linux_platform::escapedControls(sentence));
}

void complainOfDays(std::int64_t count) {
  if (count == 0) return;
  complain(std::to_string(count) +
           (count == 1 ? " message has a time that cannot be, before 1990 or after tomorrow; it "
                         "was not booked and counts as ignored"
                       : " messages have a time that cannot be, before 1990 or after tomorrow; "
                         "they were not booked and count as ignored"));
}

// "import backup.xml --sender MyBank", for the history.
std::string wordsOf(const GivenParameters& parameters) {
  std::string words = "import";
  if (parameters.contains("--chatty")) words += " --chatty";
  for (const std::string& path : textsOf(parameters, "FILE")) words += " " + path;
  return words;
}

// Reads the files twice: a message that came live is better matched when all are known, and a file
// that is no file of messages is refused before anything is booked.
void importFrom(Book& book, const ImportedFiles& files, std::vector<std::string> senders,
                Import::Settings settings, const GivenParameters& parameters) {
  if (senders.empty()) senders = askedSenders(files, settings);
  ChosenSenders chosen(std::move(senders));
  const auto mode = settings.mode;
  const std::string userId = settings.userId;
  Import importing(book, std::move(settings));
  files.read(chosen, userId, "Reading", [&](const Message& message) { importing.expect(message); });
  const auto read = files.read(chosen, userId, "Importing",
                               [&](Message message) { importing.add(std::move(message)); });
  importing.finish();
  ImportCounts counts = importing.counts();
  counts.ignored += read.withoutDay;
  print(parameters.contains("--json") ? jsonOf(counts) : tableOf(counts, mode));
  complainOfDays(read.withoutDay);
  if (counts.messages() == 0 && !read.broken) {
    complain(
        "no received message is of these senders and days; without --sender, import lists the "
        "senders");
  }
  if (!read.broken) return;
  complain(*read.broken + "; the messages before it " +
           (mode == Import::Mode::record ? "are imported" : "are counted"));
  throw linux_platform::ReportedFailure();
}

void importFiles(const GivenParameters& parameters) {
  const std::vector<std::string> senders = textsOf(parameters, "--sender");
  checkSenders(senders);
  const ImportedFiles files(givenFiles(parameters), givenDays(parameters));
  const bool isDry = parameters.contains("--dry-run");
  Import::Settings settings{.userId = givenUser(parameters),
                            .currency = requiredBookCurrency(),
                            .read = recording::TemplateFile::readerOfNow(),
                            .importKeys = importKeys,
                            .command = {.words = platform::repairedUtf8(wordsOf(parameters))},
                            .mode = isDry ? Import::Mode::dryRun : Import::Mode::record};
  withBook([&](Book& book) { importFrom(book, files, senders, std::move(settings), parameters); });
}

}  // namespace

linux_platform::Command importCommand() {
  constexpr auto optional = ParameterKind::optional;
  constexpr auto flag = ParameterKind::flag;
  return {"import",
          "Book old messages from files, each once",
          {{"FILE",
            "A file of SMS Backup & Restore, of Chatty, or CSV with the header date,sender,text",
            ParameterKind::any},
           {"--chatty", "Import the messages of Chatty, the SMS program of Phosh", flag},
           {"--format", "sms-backup, chatty or csv; told by the content when not given", optional,
            old_messages::formatNames},
           {"--sender", "A sender whose messages are imported; * is any characters",
            ParameterKind::any},
           {"--from", "The first day, as 2026-11-01", optional},
           {"--to", "The last day", optional},
           {"--dry-run", "Only count; change nothing", flag},
           {"--json", "Print the counts as JSON", flag}},
          importFiles};
}

}  // namespace kivo::ledger
