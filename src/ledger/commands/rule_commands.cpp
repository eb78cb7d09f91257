#include "ledger/commands/rule_commands.h"

#include <optional>
#include <string>

#include "book/book_command.h"
#include "ledger/commands/command_options.h"
#include "ledger/commands/made_rules.h"
#include "ledger/commands/opened_book.h"
#include "ledger/commands/rule_listing.h"
#include "platform/foundation/number_text.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_output.h"
#include "platform/linux/terminal/screen.h"
#include "platform/linux/terminal/text_columns.h"
#include "recording/rule_sentence.h"

namespace kivo::ledger {

using book::Book;
using book::KeptRule;
using book::Rule;
using book::RuleMembers;

namespace {

using linux_platform::BadUsage;
using linux_platform::CommandFailure;
using linux_platform::escapedControls;
using linux_platform::GivenParameters;
using linux_platform::print;
using ParameterKind = linux_platform::CommandParameter::Kind;

void showRules(const GivenParameters& parameters) {
  withBook([&](const Book& book) {
    const auto rules = book.rules();
    if (parameters.contains("--json")) {
      std::vector<platform::JSONEncoder> objects;
      for (const Rule& rule : rules) objects.push_back(RuleListing::json(rule));
      const std::string text = platform::JSONEncoder::arrayText(objects);
      return print(linux_platform::jsonForStandardOutput(text) + "\n");
    }
    if (rules.empty()) {
      return print("There is no rule. `" + book::bookCommand("edit ID --category CATEGORY") +
                   "` makes one for the payee.\n");
    }
    print(RuleListing::list(rules, linux_platform::screenWidth()));
  });
}

// Says what the rule for the payee was before; empty when it is new.
std::string changeSentence(const KeptRule& kept) {
  if (!kept.before) return "";
  const std::string number = "rule " + std::to_string(kept.rule.number);
  if (*kept.before == kept.rule.members) return "There is " + number + " for this already.\n";
  return linux_platform::wrappedTo(linux_platform::screenWidth(),
                                   "Changed " + number + ". Before, payments to " +
                                       escapedControls(kept.rule.payee) + " were " +
                                       escapedControls(recording::madeOf(*kept.before)) + ".");
}

void addRule(const GivenParameters& parameters) {
  const std::string payee = givenText(parameters, "--payee").value();
  const RuleMembers members{.description = givenText(parameters, "--description"),
                            .category = givenText(parameters, "--category"),
                            .kind = givenKind(parameters)};
  if (members.empty()) {
    throw BadUsage("rules add needs one of --description, --category, --kind");
  }
  withBook([&](Book& book) {
    book::UserCommand command = userCommand("rules add", parameters);
    std::optional<KeptRule> kept;
    book.asCommand(command, [&] { kept = book.keepRule(payee, members); });
    if (!kept) {
      throw invalid("--payee", payee,
                    "a name, or a part of one with * for any characters; a rule for * alone would "
                    "be for everybody, and \\* is a star in a name");
    }
    print(changeSentence(*kept));
    MadeRules made;
    made.add(kept, money::Kind::expense);
    made.tell(book, command, parameters);
  });
}

void removeRule(const GivenParameters& parameters) {
  const std::string text = given(parameters, "NUMBER").value();
  const auto number = platform::integerFromText(text);
  if (!number)
    throw invalid("NUMBER", text, "a number, as " + book::bookCommand("rules") + " shows it");
  withBook([&](Book& book) {
    book::UserCommand command = userCommand("rules remove", parameters);
    std::optional<Rule> removed;
    book.asCommand(command, [&] { removed = book.removeRule(*number); });
    if (!removed) {
      throw CommandFailure("no rule has the number " + std::to_string(*number) + "; " +
                           book::bookCommand("rules") + " shows them");
    }
    print(linux_platform::wrappedTo(linux_platform::screenWidth(),
                                    "Removed the rule for " + escapedControls(removed->payee) +
                                        ". Earlier payments stay as they are."));
  });
}

}  // namespace

std::vector<linux_platform::Command> ruleCommands() {
  constexpr auto optional = ParameterKind::optional;
  return {
      {"rules",
       "Show the rules for the payments of payees",
       {{"--json", "Print JSON", ParameterKind::flag}},
       showRules},
      {"rules add",
       "Have later payments to a payee follow a rule",
       {{"--payee", "The payee's name; * stands for any characters"},
        {"--description", "The description that they get", optional},
        {"--category", "The category that they get", optional},
        {"--kind", "The kind that they get: expense, income or transfer", optional, kindNames},
        alsoEarlierOption()},
       addRule},
      {"rules remove",
       "Remove a rule; earlier payments stay as they are",
       {{"NUMBER", "The rule's number, as rules shows it"}},
       removeRule},
  };
}

}  // namespace kivo::ledger
