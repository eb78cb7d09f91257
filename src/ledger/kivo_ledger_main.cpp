// The program kivo-ledger: the backend on one's own machine.
#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ledger/commands/account_commands.h"
#include "ledger/commands/adding_command.h"
#include "ledger/commands/backup_commands.h"
#include "ledger/commands/budget_command.h"
#include "ledger/commands/edit_command.h"
#include "ledger/commands/editing_commands.h"
#include "ledger/commands/export_commands.h"
#include "ledger/commands/history_commands.h"
#include "ledger/commands/ignored_commands.h"
#include "ledger/commands/import_command.h"
#include "ledger/commands/listing_commands.h"
#include "ledger/commands/overview_commands.h"
#include "ledger/commands/pair_commands.h"
#include "ledger/commands/rate_command.h"
#include "ledger/commands/recurring_command.h"
#include "ledger/commands/rule_commands.h"
#include "ledger/commands/teach_command.h"
#include "ledger/extraction_endpoint.h"
#include "ledger/review_notifier.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_line.h"
#include "recording/book_currency.h"
#include "recording/template_file.h"

namespace kivo::ledger {

using book::Book;
using book::LedgerEntry;

namespace {

using linux_platform::Command;
using linux_platform::CommandFailure;
using linux_platform::GivenParameters;

// For a server that the service manager started: it starts it again at the next connection.
constexpr std::chrono::seconds longestIdleTime(60);

ListeningSocket ownSocket(const GivenParameters& given) {
  if (const auto path = given.find("--socket"); path != given.end()) {
    return ListeningSocket::create(path->second);
  }
  const auto path = linux_platform::localBackendSocket();
  if (!path) throw CommandFailure("XDG_RUNTIME_DIR is not set; name a socket by --socket");
  return ListeningSocket::create(*path);
}

void serveOn(const ListeningSocket& socket, std::optional<std::chrono::milliseconds> idleLimit) {
  ReviewNotifier notifier;
  ExtractionEndpoint endpoint(
      recording::bookCurrency, [&notifier](const LedgerEntry& entry) { notifier.post(entry); },
      recording::TemplateFile::reader(),
      [&notifier](const BudgetNotice& notice) { notifier.post(notice); });
  HttpServer server([&endpoint](const std::vector<HttpServer::Request>& requests) {
    return endpoint.answers(requests);
  });
  server.run(socket, idleLimit);
}

void serve(const GivenParameters& given) {
  if (const auto handedOver = ListeningSocket::handedOver()) {
    serveOn(*handedOver, longestIdleTime);
  } else {
    serveOn(ownSocket(given), std::nullopt);
  }
}

// The headings of the help and their commands, in the order in which it lists them.
struct Heading {
  const char* text;
  std::vector<std::string> commands;
};

std::vector<Heading> headings() {
  return {{"Look",
           {"list", "review", "ignored", "show", "accounts", "summary", "report", "recurring",
            "history"}},
          {"Correct",
           {"add", "edit", "accept", "book", "pair", "unpair", "delete", "forget-texts", "undo"}},
          {"Teach", {"teach", "rules", "rate", "budget"}},
          {"Old and other data", {"import", "export", "backup", "restore"}},
          {"Service", {"serve"}}};
}

// Puts the commands in the order of their headings, those without one at the end.
std::vector<Command> underHeadings(std::vector<Command> commands) {
  auto first = commands.begin();
  for (const Heading& heading : headings()) {
    for (const std::string& name : heading.commands) {
      const auto last = std::stable_partition(first, commands.end(), [&name](const Command& one) {
        return one.name == name || one.name.starts_with(name + " ");
      });
      if (first != last) first->heading = heading.text;
      first = last;
    }
  }
  return commands;
}

linux_platform::CommandProgram program() {
  linux_platform::CommandProgram made{.name = "kivo-ledger",
                                      .purpose = "Keeps the book of your payments on this machine.",
                                      .version = KIVO_VERSION,
                                      .commands = {}};
  made.commands = listingCommands();
  for (Command& command : ignoredCommands()) made.commands.push_back(std::move(command));
  for (Command& command : overviewCommands()) made.commands.push_back(std::move(command));
  made.commands.push_back(recurringCommand());
  made.commands.push_back(addingCommand());
  made.commands.push_back(importCommand());
  made.commands.push_back(editCommand());
  for (Command& command : editingCommands()) made.commands.push_back(std::move(command));
  for (Command& command : pairCommands()) made.commands.push_back(std::move(command));
  for (Command& command : historyCommands()) made.commands.push_back(std::move(command));
  for (Command& command : ruleCommands()) made.commands.push_back(std::move(command));
  made.commands.push_back(rateCommand());
  made.commands.push_back(budgetCommand());
  for (Command& command : accountCommands()) made.commands.push_back(std::move(command));
  for (Command& command : exportCommands()) made.commands.push_back(std::move(command));
  made.commands.push_back(teachCommand());
  for (Command& command : backupCommands(KIVO_VERSION)) made.commands.push_back(std::move(command));
  made.commands.push_back(
      {"serve",
       "Answer the extension's requests on a UNIX socket",
       {{"--socket", "The socket's path; kivo/ledger.sock in XDG_RUNTIME_DIR when not given",
         linux_platform::CommandParameter::Kind::optional}},
       serve});
  made.commands = underHeadings(std::move(made.commands));
  return made;
}

}  // namespace
}  // namespace kivo::ledger

int main(int argc, char** argv) {
  kivo::linux_platform::startProcess();
  return kivo::linux_platform::runCommand(kivo::ledger::program(), argc, argv);
}
