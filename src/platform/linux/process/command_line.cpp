#include "platform/linux/process/command_line.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>

#include <CLI/CLI.hpp>

#include "platform/linux/process/command_description.h"

namespace kivo::linux_platform {
namespace {

using Kind = CommandParameter::Kind;

// A command as CLI11 knows it; it fills the texts and flags while it parses.
struct Offered {
  const Command* command = nullptr;
  CLI::App* app = nullptr;
  std::map<std::string, std::optional<std::string>> texts;
  std::map<std::string, bool> flags;

  [[nodiscard]] GivenParameters given() const {
    GivenParameters given;
    for (const auto& [name, text] : texts) {
      if (text) given[name] = *text;
    }
    for (const auto& [name, flag] : flags) {
      if (flag) given[name];
    }
    return given;
  }
};

// The level of the command line that names the last word of `name`, made on the way. Each takes one
// command at most, so that the value "queue" does not become a command of that name.
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
  for (const CommandParameter& parameter : command.parameters) {
    const std::string& name = parameter.name;
    if (parameter.kind == Kind::flag) {
      offered->app->add_flag(name, offered->flags[name], parameter.meaning)
          ->disable_flag_override();
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

// What no parameter took, on any level. CLI11 leaves the mark -- as well.
std::vector<std::string> leftOverOf(const CLI::App& app) {
  std::vector<std::string> leftOver = app.remaining(true);
  leftOver.erase(std::remove(leftOver.begin(), leftOver.end(), "--"), leftOver.end());
  return leftOver;
}

std::string describeLeftOver(const std::vector<std::string>& leftOver) {
  const auto name = std::find_if(leftOver.begin(), leftOver.end(), isOptionName);
  if (name != leftOver.end()) return "unknown option " + *name;
  return "there is an argument too many; a text with blanks needs quotes, and -- goes before one "
         "that begins with a minus";
}

// What is wrong with the call in spite of its grammar, if anything.
std::optional<std::string> complaintAbout(const Offered& offered, const CLI::App& app) {
  if (!offered.command->run) return "unknown command, or none named";
  if (const auto leftOver = leftOverOf(app); !leftOver.empty()) {
    return describeLeftOver(leftOver);
  }
  for (const CommandParameter& parameter : offered.command->parameters) {
    if (parameter.kind == Kind::required && !offered.texts.at(parameter.name)) {
      return parameter.name + " is missing";
    }
  }
  return std::nullopt;
}

// Whether a call with `arguments` can be told from others without `command`. To make all commands
// known takes longer than to read the call.
bool mayBeLeftOut(const Command& command, const std::vector<std::string>& arguments) {
  const std::string word = command.name.substr(command.name.rfind(' ') + 1);
  return std::none_of(arguments.begin(), arguments.end(), [&word](const std::string& argument) {
    return argument == word || argument.starts_with("-h") || argument.starts_with("--help");
  });
}

int badUsage(const CommandProgram& program, const std::string& command, const std::string& what) {
  const std::string help = program.name + (command.empty() ? "" : " ") + command + " --help";
  complain(program.name, what + " (see " + help + ")");
  return exitBadUsage;
}

int answerError(const CommandProgram& program, const CLI::App& app, const CLI::ParseError& error) {
  if (error.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    app.exit(error, std::cout, std::cout);
    return 0;
  }
  // CLI11's own words may quote what was given.
  const bool mismatch = dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr;
  return badUsage(
      program, "",
      mismatch ? "an option has no value or is given twice" : "the call cannot be understood");
}

}  // namespace

void complain(const std::string& program, const std::string& what) {
  const std::string line = program + ": " + what + "\n";
  std::fputs(line.c_str(), stderr);
}

int runCommand(const CommandProgram& program, int argc, char** argv) {
  if (argc == 2 && argv[1] == describeOption) return printDescription(program);
  CLI::App app(program.purpose, program.name);
  app.set_version_flag("--version", program.name + " " + program.version);
  app.allow_extras()->require_subcommand(0, 1);
  const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
  std::vector<std::unique_ptr<Offered>> all;
  for (const Command& command : program.commands) {
    if (!mayBeLeftOut(command, arguments)) all.push_back(offer(command, app));
  }
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return answerError(program, app, error);
  }

  for (const auto& offered : all) {
    if (!offered->app->parsed() || !offered->app->get_subcommands().empty()) continue;
    if (const auto complaint = complaintAbout(*offered, app)) {
      return badUsage(program, offered->command->name, *complaint);
    }
    return offered->command->run(offered->given());
  }
  return badUsage(program, "", "unknown command, or none named");
}

}  // namespace kivo::linux_platform
