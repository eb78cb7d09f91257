#include "ledger/commands/all_commands.h"

#include <algorithm>
#include <utility>

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

namespace kivo::ledger {

using linux_platform::Command;

namespace {

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
          {"Old and other data", {"import", "export", "backup", "restore"}}};
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

}  // namespace

std::vector<Command> bookCommands(const std::string& version) {
  std::vector<Command> commands = listingCommands();
  for (Command& command : ignoredCommands()) commands.push_back(std::move(command));
  for (Command& command : overviewCommands()) commands.push_back(std::move(command));
  commands.push_back(recurringCommand());
  commands.push_back(addingCommand());
  commands.push_back(importCommand());
  commands.push_back(editCommand());
  for (Command& command : editingCommands()) commands.push_back(std::move(command));
  for (Command& command : pairCommands()) commands.push_back(std::move(command));
  for (Command& command : historyCommands()) commands.push_back(std::move(command));
  for (Command& command : ruleCommands()) commands.push_back(std::move(command));
  commands.push_back(rateCommand());
  commands.push_back(budgetCommand());
  for (Command& command : accountCommands()) commands.push_back(std::move(command));
  for (Command& command : exportCommands()) commands.push_back(std::move(command));
  commands.push_back(teachCommand());
  for (Command& command : backupCommands(version)) commands.push_back(std::move(command));
  return underHeadings(std::move(commands));
}

}  // namespace kivo::ledger
