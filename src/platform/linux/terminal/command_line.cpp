#include "platform/linux/terminal/command_line.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <initializer_list>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

#include <CLI/CLI.hpp>

#include "platform/linux/foundation/complaint.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_description.h"
#include "platform/linux/terminal/nearest_word.h"

namespace kivo::linux_platform {
namespace {

using Kind = CommandParameter::Kind;

// Behind each text of a parameter of the kind `any`: no argument holds it.
constexpr char textEnd = '\0';

// A command registered with CLI11, which fills the texts and flags as it parses.
struct Offered {
  const Command* command = nullptr;
  CLI::App* app = nullptr;
  std::map<std::string, std::optional<std::string>> texts;
  std::map<std::string, std::vector<std::string>> lists;
  std::map<std::string, std::vector<std::string>> anyTexts;
  std::map<std::string, bool> flags;

  [[nodiscard]] GivenParameters given() const {
    GivenParameters given;
    for (const auto& [name, text] : texts) {
      if (text) given[name] = *text;
    }
    for (const auto& [name, list] : lists) {
      for (const std::string& text : list) {
        given[name] += (given[name].empty() ? "" : " ") + text;
      }
    }
    for (const auto& [name, list] : anyTexts) {
      for (const std::string& text : list) given[name] += text + textEnd;
    }
    for (const auto& [name, flag] : flags) {
      if (flag) given[name];
    }
    return given;
  }
};

// Returns the subcommand for the last word of `name`, and creates it and its parents if needed.
// Each level takes at most one subcommand, so that the value "queue" does not become a command of
// that name.
CLI::App& levelOf(CLI::App& root, const std::string& name) {
  const std::size_t blank = name.find(' ');
  const std::string word = name.substr(0, blank);
  const auto known =
      root.get_subcommands([&word](const CLI::App* one) { return one->get_name() == word; });
  CLI::App* const level = known.empty() ? root.add_subcommand(word)->allow_extras() : known.front();
  return blank == std::string::npos ? *level : levelOf(*level, name.substr(blank + 1));
}

std::unique_ptr<Offered> offer(const Command& command, CLI::App& root) {
  auto offered = std::make_unique<Offered>();
  offered->command = &command;
  offered->app = levelOf(root, command.name).description(command.purpose);
  if (!command.heading.empty()) offered->app->group(command.heading);
  for (const CommandParameter& parameter : command.parameters) {
    const std::string& name = parameter.name;
    if (parameter.kind == Kind::flag) {
      offered->app->add_flag(name, offered->flags[name], parameter.meaning)
          ->disable_flag_override();
      continue;
    }
    if (parameter.kind == Kind::several) {
      offered->app->add_option(name, offered->lists[name], parameter.meaning)
          ->option_text("TEXT ... (needed)");
      continue;
    }
    if (parameter.kind == Kind::any) {
      const bool isOption = name.starts_with("--");
      offered->app->add_option(name, offered->anyTexts[name], parameter.meaning)
          ->allow_extra_args(!isOption)
          ->option_text(isOption ? "TEXT, also several times" : "TEXT ...");
      continue;
    }
    CLI::Option* const option =
        offered->app->add_option(name, offered->texts[name], parameter.meaning);
    option->option_text(parameter.kind == Kind::required ? "TEXT (needed)" : "TEXT");
  }
  return offered;
}

bool isOptionName(const std::string& argument) {
  return argument.size() > 2 && argument.starts_with("--") &&
         std::all_of(argument.begin() + 2, argument.end(), [](unsigned char letter) {
           return std::isalpha(letter) != 0 || letter == '-';
         });
}

// Returns the name in "--name" and "--name=value"; nullopt when the argument is not an option.
std::optional<std::string> optionNameIn(const std::string& argument) {
  std::string name = argument.substr(0, argument.find('='));
  if (!isOptionName(name)) return std::nullopt;
  return name;
}

// A longer word, or one with other characters, may be part of a message, which is never repeated.
bool looksLikeACommand(const std::string& word) {
  constexpr std::size_t longest = 24;
  return word.size() <= longest && std::all_of(word.begin(), word.end(), [](unsigned char letter) {
           return std::isalnum(letter) != 0 || letter == '-';
         });
}

// The arguments that no parameter took, on any level. CLI11 also leaves "--" among them.
std::vector<std::string> leftOverOf(const CLI::App& app) {
  std::vector<std::string> leftOver = app.remaining(true);
  leftOver.erase(std::remove(leftOver.begin(), leftOver.end(), "--"), leftOver.end());
  return leftOver;
}

// The words that may follow `group` in the name of a command. "" is the program itself.
std::vector<std::string> wordsAfter(const CommandProgram& program, const std::string& group) {
  const std::string prefix = group.empty() ? "" : group + " ";
  std::vector<std::string> words;
  for (const Command& command : program.commands) {
    if (!command.name.starts_with(prefix)) continue;
    std::string word = command.name.substr(prefix.size());
    if (word.find(' ') == std::string::npos) words.push_back(std::move(word));
  }
  return words;
}

std::string describeUnknownCommand(const CommandProgram& program, const std::string& group,
                                   const std::string& word) {
  if (!looksLikeACommand(word)) return "unknown command";
  const std::string prefix = group.empty() ? "" : group + " ";
  std::string what = "unknown command \"" + prefix + word + '"';
  if (const auto nearest = nearestWord(word, wordsAfter(program, group))) {
    what += "; did you mean \"" + prefix + *nearest + "\"?";
  }
  return what;
}

std::string describeUnknownOption(const std::string& name, const Command* command) {
  std::vector<std::string> known;
  if (command != nullptr) {
    for (const CommandParameter& parameter : command->parameters) known.push_back(parameter.name);
  }
  const auto nearest = nearestWord(name, known);
  return "unknown option " + name + (nearest ? "; did you mean " + *nearest + "?" : "");
}

// Describes the error in a call whose `leftOver` no parameter took. `command` is null when the call
// names none.
std::string describeLeftOver(const CommandProgram& program, const Command* command,
                             const std::vector<std::string>& leftOver) {
  const std::string group = command == nullptr ? "" : command->name;
  const bool inPlaceOfCommand = !wordsAfter(program, group).empty();
  if (inPlaceOfCommand && !leftOver.front().starts_with("-")) {
    return describeUnknownCommand(program, group, leftOver.front());
  }
  for (const std::string& argument : leftOver) {
    if (const auto name = optionNameIn(argument)) return describeUnknownOption(*name, command);
  }
  return "unexpected argument; put quotes around a text with blanks, and -- before one that begins "
         "with a minus";
}

std::optional<std::string> describeMissing(const Offered& offered) {
  for (const CommandParameter& parameter : offered.command->parameters) {
    if (parameter.kind == Kind::required && !offered.texts.at(parameter.name)) {
      return parameter.name + " is missing";
    }
    if (parameter.kind == Kind::several && offered.lists.at(parameter.name).empty()) {
      return parameter.name + " is missing";
    }
  }
  return std::nullopt;
}

// Whether `command` need not be registered to parse `arguments`. Registering all commands takes
// longer than parsing the call.
bool mayBeLeftOut(const Command& command, const std::vector<std::string>& arguments) {
  const std::string word = command.name.substr(command.name.rfind(' ') + 1);
  return std::none_of(arguments.begin(), arguments.end(), [&word](const std::string& argument) {
    return argument == word || argument.starts_with("-h") || argument.starts_with("--help");
  });
}

// Whether a command of `program` has an option `name` of one of `kinds`.
bool hasOption(const CommandProgram& program, const std::string& name,
               std::initializer_list<Kind> kinds) {
  return std::any_of(program.commands.begin(), program.commands.end(), [&](const Command& one) {
    return std::any_of(one.parameters.begin(), one.parameters.end(), [&](const auto& parameter) {
      return parameter.name == name &&
             std::find(kinds.begin(), kinds.end(), parameter.kind) != kinds.end();
    });
  });
}

// The arguments after the program's name. Splits "--name=" of a known option in two: CLI11 would
// take the next argument as its value.
std::vector<std::string> argumentsFrom(const CommandProgram& program, int argc, char** argv) {
  const auto takesValue = [&program](const std::string& name) {
    return hasOption(program, name, {Kind::required, Kind::optional, Kind::any});
  };
  std::vector<std::string> arguments;
  bool isValue = false;  // the argument is the value of the option before it
  for (int index = 1; index < argc; ++index) {
    const std::string argument = argv[index];
    if (argument == "--" && !isValue) {
      arguments.insert(arguments.end(), argv + index, argv + argc);
      break;
    }
    const std::string name = argument.substr(0, argument.find('='));
    const bool isEmptyValue = !isValue && argument.ends_with('=') &&
                              name.size() + 1 == argument.size() && takesValue(name);
    isValue = !isValue && argument.starts_with("--") && takesValue(argument);
    arguments.push_back(isEmptyValue ? name : argument);
    if (isEmptyValue) arguments.emplace_back();
  }
  return arguments;
}

int badUsage(const CommandProgram& program, const std::string& command, const std::string& what) {
  const std::string help = program.name + (command.empty() ? "" : " ") + command + " --help";
  complain(program.name, what + " (see " + help + ")");
  return exitBadUsage;
}

std::unique_ptr<CLI::App> rootOf(const CommandProgram& program) {
  auto root = std::make_unique<CLI::App>(program.purpose, program.name);
  root->set_version_flag("--version", program.name + " " + program.version);
  root->allow_extras()->require_subcommand(0, 1);
  return root;
}

// Prints the help of the group `name`, or of the program when `name` is empty.
int helpInsteadOfCommand(const CommandProgram& program, const std::string& name) {
  const std::unique_ptr<CLI::App> root = rootOf(program);
  std::vector<std::unique_ptr<Offered>> all;
  for (const Command& command : program.commands) all.push_back(offer(command, *root));
  std::cerr << (name.empty() ? root->help() : levelOf(*root, name).help(program.name));
  return exitBadUsage;
}

int answerError(const CommandProgram& program, const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    app.exit(error, std::cout, std::cout);
    return 0;
  }
  const auto* const mismatch = dynamic_cast<const CLI::ArgumentMismatch*>(&error);
  if (mismatch == nullptr) return badUsage(program, "", "invalid command line");
  // CLI11's message contains the option's name, and no value.
  std::istringstream words(error.what());
  for (std::string word; words >> word;) {
    const std::string name =
        (word.starts_with("--") ? "" : "--") + word.substr(0, word.find_first_of(",:"));
    if (hasOption(program, name, {Kind::flag}))
      return badUsage(program, "", name + " takes no value");
    if (hasOption(program, name, {Kind::required, Kind::optional, Kind::any})) {
      return badUsage(program, "", name + " has no value or is given twice");
    }
  }
  return badUsage(program, "", "an option has no value or is given twice");
}

// Runs `command`; returns the exit status.
int statusOf(const CommandProgram& program, const Command& command, const GivenParameters& given) {
  const auto fail = [&program](const Failure& failure, int status) {
    complain(program.name, escapedControls(failure.what()));
    return status;
  };
  try {
    command.run(given);
    return 0;
  } catch (const ReportedFailure& failure) {
    return failure.status;
  } catch (const CommandFailure& failure) {
    return fail(failure, failure.status());
  } catch (const Failure& failure) {
    return fail(failure, exitFailure);
  }
}

}  // namespace

std::vector<std::string> textsOf(const GivenParameters& given, const std::string& name) {
  std::vector<std::string> texts;
  const auto found = given.find(name);
  if (found == given.end()) return texts;
  for (std::size_t at = 0; at < found->second.size();) {
    const std::size_t end = found->second.find(textEnd, at);
    texts.push_back(found->second.substr(at, end - at));
    at = end + 1;
  }
  return texts;
}

int runCommand(const CommandProgram& program, int argc, char** argv) {
  if (argc == 2 && argv[1] == describeOption) return printDescription(program);
  const std::vector<std::string> arguments = argumentsFrom(program, argc, argv);
  const std::unique_ptr<CLI::App> app = rootOf(program);
  std::vector<std::unique_ptr<Offered>> all;
  for (const Command& command : program.commands) {
    if (!mayBeLeftOut(command, arguments)) all.push_back(offer(command, *app));
  }
  try {
    app->parse(std::vector(arguments.rbegin(), arguments.rend()));  // CLI11 expects reverse order
  } catch (const CLI::ParseError& error) {
    return answerError(program, *app, error);
  }

  const auto chosen = std::find_if(all.begin(), all.end(), [](const auto& offered) {
    return offered->app->parsed() && offered->app->get_subcommands().empty();
  });
  const Command* const command = chosen == all.end() ? nullptr : (*chosen)->command;
  const std::string name = command == nullptr ? "" : command->name;
  if (const auto leftOver = leftOverOf(*app); !leftOver.empty()) {
    return badUsage(program, name, describeLeftOver(program, command, leftOver));
  }
  if (command == nullptr || !command->run) return helpInsteadOfCommand(program, name);
  if (const auto missing = describeMissing(**chosen)) return badUsage(program, name, *missing);
  return statusOf(program, *command, (*chosen)->given());
}

}  // namespace kivo::linux_platform
