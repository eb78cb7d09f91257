// Parses a command line and runs the command that it names.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "platform/linux/terminal/command_failure.h"

namespace kivo::linux_platform {

/// An option or argument of a command.
struct CommandParameter {
  enum class Kind {
    required,
    optional,
    flag,
    /// One argument or more; the last positional one. Their texts are given with blanks between.
    several,
    /// Any number of arguments, the last positional ones, or an option that may be given several
    /// times. `textsOf` returns their texts.
    any,
  };

  /// "--user-id" for an option, "KEY" for a positional argument.
  std::string name;
  /// Its description in the help.
  std::string meaning;
  Kind kind = Kind::required;
  /// The values that completion offers; null when any value is allowed. Not enforced.
  std::function<std::vector<std::string>()> values = {};
};

/// The given values by the parameters' names. A given flag has an entry with an unspecified text.
using GivenParameters = std::map<std::string, std::string>;

/// Returns the texts given for `name`, a parameter of the kind `any`, in their order.
std::vector<std::string> textsOf(const GivenParameters& given, const std::string& name);

/// One command of a program.
struct Command {
  /// "sign-in". The name of a command in a group begins with the group's: "store get".
  std::string name;
  /// Its description in the help.
  std::string purpose;
  std::vector<CommandParameter> parameters;
  /// Runs the command. Throws Failure, CommandFailure or ReportedFailure when it fails. Null for a
  /// group, which must come before its commands.
  std::function<void(const GivenParameters&)> run;
  /// The heading of the program's help under which it is listed; empty for the common one.
  std::string heading = {};
};

/// A program with commands.
struct CommandProgram {
  std::string name;
  std::string purpose;
  std::string version;
  std::vector<Command> commands;
};

/// Runs the command that the command line names. Returns the exit status: 0, or the status of the
/// failure, after one line on standard error with its sentence, in which control characters are
/// escaped. Prints --help and --version on standard output and returns 0. Returns `exitBadUsage`
/// after printing the help on standard error when no command is named, and one line for any other
/// bad usage. That line repeats names of options, and an unknown word in the place of a command if
/// it looks like one, but no values. Passes values on byte for byte, empty ones too.
int runCommand(const CommandProgram& program, int argc, char** argv);

}  // namespace kivo::linux_platform
