#include "ledger/commands/history_commands.h"

#include <cstdint>
#include <string>

#include "ledger/commands/command_options.h"
#include "ledger/commands/opened_book.h"
#include "platform/foundation/date_formatter.h"
#include "platform/foundation/iso8601_date_formatter.h"
#include "platform/foundation/json_encoder.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"
#include "platform/linux/terminal/text_columns.h"
#include "recording/template_file.h"

namespace kivo::ledger {

using book::Book;
using book::PastCommand;

namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::escapedControls;
using linux_platform::GivenParameters;
using linux_platform::paddedTo;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

std::string counted(std::int64_t count, const std::string& one) {
  return std::to_string(count) + " " + one + (count == 1 ? "" : "s");
}

// "2 transactions"; empty when it changed none and no setting.
std::string changesOf(const PastCommand& command) {
  std::string changes;
  const auto add = [&changes](const std::string& text) {
    changes += (changes.empty() ? "" : ", ") + text;
  };
  if (command.transactions > 0) add(counted(command.transactions, "transaction"));
  if (command.rules > 0) add(counted(command.rules, "rule"));
  if (command.rates > 0) add(counted(command.rates, "rate"));
  if (command.accounts > 0) add(counted(command.accounts, "account"));
  if (command.budgets > 0) add(counted(command.budgets, "budget"));
  if (!command.addedTemplate.empty()) add("1 template");
  return changes;
}

std::string timeOf(const PastCommand& command) {
  const platform::DateFormatter formatter{.dateFormat = "yyyy-MM-dd HH:mm",
                                          .locale = "en_US_POSIX"};
  return formatter.string(command.moment);
}

// Removes the template that a command added, which is taken back.
std::string templateSentence(const PastCommand& command) {
  if (command.addedTemplate.empty()) return "";
  const std::string path = escapedControls(recording::TemplateFile::place().value_or("").string());
  if (recording::TemplateFile::remove(command.addedTemplate)) {
    return "  Its template is removed from " + path + ".\n";
  }
  return "  Its template was changed since, and stays in " + path + ".\n";
}

std::string undoneSentence(const PastCommand& command) {
  const std::string words = escapedControls(command.words);
  const std::string changes = changesOf(command);
  if (changes.empty()) return words + " cannot be undone: forgotten texts stay forgotten.\n";
  std::string text = "Undone: " + words + " (" + changes + ").\n";
  if (command.deleted > 0) text += "  The texts of deleted messages stay erased.\n";
  return text;
}

std::int64_t givenCount(const GivenParameters& parameters) {
  const auto text = given(parameters, "COUNT");
  if (!text) return 1;
  const auto count = platform::integerFromText(*text);
  if (!count || *count < 1) {
    throw invalid("COUNT", *text, "the number of the last commands to undo, such as 3");
  }
  return *count;
}

void undo(const GivenParameters& parameters) {
  const std::int64_t count = givenCount(parameters);
  withBook([&](Book& book) {
    const auto undone = book.undo(count);
    if (undone.empty()) throw CommandFailure("there is nothing to undo");
    for (const PastCommand& command : undone) {
      print(undoneSentence(command));
      print(templateSentence(command));
    }
    const auto found = static_cast<std::int64_t>(undone.size());
    if (found < count) print("Undone " + counted(found, "command") + "; there were no more.\n");
  });
}

std::string historyJson(const std::vector<PastCommand>& commands) {
  std::vector<platform::JSONEncoder> objects;
  for (const PastCommand& command : commands) {
    platform::JSONEncoder& object = objects.emplace_back();
    object.encodeString("number", std::to_string(command.number));
    object.encodeString("time", platform::ISO8601DateFormatter::string(command.moment));
    object.encodeString("command", command.words);
    object.encodeInteger("transactions", command.transactions);
    object.encodeInteger("rules", command.rules);
    object.encodeInteger("rates", command.rates);
    object.encodeInteger("accounts", command.accounts);
    object.encodeInteger("budgets", command.budgets);
  }
  return platform::JSONEncoder::arrayText(objects);
}

// The first column is what `undo` takes to come back to before that command.
std::string historyTable(const std::vector<PastCommand>& commands, std::size_t width) {
  constexpr std::size_t undoWidth = 6;
  constexpr std::size_t timeWidth = 18;
  std::string text = paddedTo(undoWidth, "UNDO") + paddedTo(timeWidth, "TIME") + "COMMAND\n";
  std::int64_t nth = 0;
  for (const PastCommand& command : commands) {
    const std::string changes = changesOf(command);
    const std::string front =
        paddedTo(undoWidth, std::to_string(++nth)) + paddedTo(timeWidth, timeOf(command));
    const std::string what = escapedControls(command.words) + (changes.empty() ? "" : "  (") +
                             changes + (changes.empty() ? "" : ")");
    const std::string wrapped =
        linux_platform::wrappedTo(width, what, std::string(undoWidth + timeWidth, ' '));
    text += front + wrapped.substr(undoWidth + timeWidth);
  }
  return text;
}

void showHistory(const GivenParameters& parameters) {
  withBook([&](const Book& book) {
    const auto commands = book.history();
    if (parameters.contains("--json")) {
      return print(linux_platform::jsonForStandardOutput(historyJson(commands)) + "\n");
    }
    if (commands.empty()) return print("There is nothing to undo.\n");
    print(historyTable(commands, linux_platform::screenWidth()));
  });
}

}  // namespace

std::vector<linux_platform::Command> historyCommands() {
  return {
      {"undo",
       "Take back the last commands that changed the book",
       {{"COUNT", "How many; one when not given", ParameterKind::optional}},
       undo},
      {"history",
       "Show the commands that undo takes back",
       {{"--json", "Print JSON", ParameterKind::flag}},
       showHistory},
  };
}

}  // namespace kivo::ledger
