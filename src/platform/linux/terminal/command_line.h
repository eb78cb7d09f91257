// From a command line to the command that it names. Knows no program, and runs one command only.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace kivo::linux_platform {

/// The exit status of a program that was called in a way that it does not offer.
inline constexpr int exitBadUsage = 64;

/// Something that a command takes.
struct CommandParameter {
  enum class Kind { required, optional, flag };

  /// "--user-id" for an option, "KEY" for an argument that is told by its place.
  std::string name;
  /// What the help says of it.
  std::string meaning;
  Kind kind = Kind::required;
  /// The values to offer while it is typed; none when any will do. Not checked.
  std::function<std::vector<std::string>()> values = {};
};

/// What was given, by the names of the parameters. A flag that was given is there with any text.
using GivenParameters = std::map<std::string, std::string>;

/// One thing that a program can be told to do.
struct Command {
  /// "sign-in"; for a command of a group the group's name and a blank go before, "store get".
  std::string name;
  /// What the help says of it.
  std::string purpose;
  std::vector<CommandParameter> parameters;
  /// Does it; yields the exit status. None for a group, which stands before its commands.
  std::function<int(const GivenParameters&)> run;
};

/// A program that is called with a command.
struct CommandProgram {
  std::string name;
  std::string purpose;
  std::string version;
  std::vector<Command> commands;
};

/// Runs the command that the command line names and yields its exit status. Answers --help and
/// --version on standard output with 0. Where no command is named it prints the help on standard
/// error, and for any other call that does not fit one line; both yield `exitBadUsage`. That line
/// repeats names of options, and an unknown word in a command's place if it looks like one, never a
/// value. Values are passed on as they are, byte for byte, an empty one too.
int runCommand(const CommandProgram& program, int argc, char** argv);

/// Writes `what` as one line on standard error, after the name of `program`.
void complain(const std::string& program, const std::string& what);

}  // namespace kivo::linux_platform
