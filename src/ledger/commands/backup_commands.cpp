#include "ledger/commands/backup_commands.h"

#include <filesystem>
#include <optional>

#include "book/book_command.h"
#include "ledger/backup_folder.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/opened_book.h"
#include "ledger/kept_settings.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_output.h"

namespace kivo::ledger {

namespace fs = std::filesystem;
using book::BackedUpSettings;
using book::Backup;
using book::Book;
using book::BookFailure;
using book::HeldPayments;

namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::Failure;
using linux_platform::forStandardOutput;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

// "7 payments, from 2026-08-03 to 2026-11-21".
std::string wordsFor(const HeldPayments& held) {
  std::string words = std::to_string(held.count) + (held.count == 1 ? " payment" : " payments");
  if (!held.first || !held.last) return words;
  return words + ", from " + held.first->text() + " to " + held.last->text();
}

// The path as it was typed, which need not be UTF-8; absent when it was not given.
std::optional<fs::path> givenFile(const GivenParameters& parameters) {
  const auto file = parameters.find("FILE");
  if (file == parameters.end()) return std::nullopt;
  if (file->second.empty()) throw BadUsage("FILE is empty; name the file");
  if (file->second == "-") {
    throw BadUsage("\"-\" is not supported: a backup is a file; for one of this name, ./-");
  }
  return file->second;
}

HeldPayments write(const Book& book, const fs::path& path, const BackedUpSettings& settings,
                   const std::string& version) {
  try {
    return book.backUp(path, settings, version);
  } catch (const BookFailure&) {
    throw;
  } catch (const Failure& failure) {
    throw Failure("cannot write \"" + path.string() + "\": " + failure.what());
  }
}

fs::path dailyFolder(const std::optional<fs::path>& given) {
  if (!given) return BackupFolder::usual();
  BackupFolder::create(*given);
  return *given;
}

void backUp(const GivenParameters& parameters, const std::string& version) {
  const auto given = givenFile(parameters);
  const bool isDaily = parameters.contains("--daily");
  if (!given && !isDaily) throw BadUsage("FILE is missing");
  const fs::path path = isDaily ? BackupFolder::ofToday(dailyFolder(given)) : *given;
  const BackedUpSettings settings = KeptSettings::read();
  withBook([&](const Book& book) {
    const HeldPayments held = write(book, path, settings, version);
    if (isDaily) BackupFolder::removeOld(path.parent_path(), path);
    print(forStandardOutput("Backed up " + wordsFor(held) + ", into " + path.string()) + "\n");
  });
}

// Whether a restore of `backup` would replace something.
bool holdsMore(const Book& book, const BackedUpSettings& present, const Backup& backup) {
  const auto isLost = [](const std::string& now, const std::string& then) {
    return !now.empty() && now != then;
  };
  return book.holds() != Book::Holds::nothing ||
         isLost(present.templates, backup.settings().templates) ||
         isLost(present.senders, backup.settings().senders);
}

// Through a handle of its own, which sees the book that is about to be replaced.
fs::path saved(const BackedUpSettings& present, const std::string& version) {
  fs::path path = BackupFolder::beforeRestore(BackupFolder::usual());
  write(Book::open(), path, present, version);
  return path;
}

void writeSettings(const Backup& backup) {
  const std::string advice =
      "; the book is restored, the settings not all: run the command again with --replace";
  try {
    KeptSettings::write(backup.settings());
  } catch (const Failure& failure) {
    throw Failure(failure.what() + advice);
  } catch (const linux_platform::ReportedFailure&) {
    throw Failure("the currency cannot be written" + advice);
  }
}

void restore(const GivenParameters& parameters, const std::string& version) {
  const Backup backup = Backup::read(givenFile(parameters).value());
  const BackedUpSettings present = KeptSettings::read();
  std::optional<fs::path> replaced;
  withBook([&](Book& book) {
    book.restore(backup, [&] {
      if (!parameters.contains("--replace") && book.holds() == Book::Holds::payments) {
        throw CommandFailure(
            "the book is not empty; --replace puts the backup in its place, and saves it first");
      }
      if (holdsMore(book, present, backup)) replaced = saved(present, version);
    });
  });
  writeSettings(backup);
  print("Restored " + wordsFor(backup.payments()) + ".\n");
  if (!replaced) return;
  print(forStandardOutput("The book and settings before that are in " + replaced->string()) + "\n" +
        "To go back: " + book::bookCommand("restore --replace FILE") + ", with that file.\n");
}

}  // namespace

std::vector<linux_platform::Command> backupCommands(const std::string& version) {
  return {
      {"backup",
       "Write the book and its settings into one file",
       {{"FILE", "The file; with --daily the folder, kivo-backups in XDG_DATA_HOME if not given",
         ParameterKind::optional},
        {"--daily", "Write today's file in a folder, and keep the newest 30", ParameterKind::flag}},
       [version](const GivenParameters& parameters) { backUp(parameters, version); }},
      {"restore",
       "Put a backup in the place of an empty book",
       {{"FILE", "The backup", ParameterKind::required},
        {"--replace", "Replace a book that is not empty, after a backup of it",
         ParameterKind::flag}},
       [version](const GivenParameters& parameters) { restore(parameters, version); }},
  };
}

}  // namespace kivo::ledger
