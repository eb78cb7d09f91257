// A program that serves until it is told to end, and takes no command. Serves nothing itself.
#pragma once

#include <functional>
#include <string>

namespace kivo::linux_platform {

struct ServiceProgram {
  std::string name;
  /// What the help says of it: whole lines.
  std::string purpose;
  /// Yields the exit status. What it throws as std::runtime_error is why it cannot serve.
  std::function<int()> serve;
};

/// Runs the program and yields its exit status: 1, after one line on standard error, when it cannot
/// serve. Answers --help and --version on standard output with 0, and anything else on the command
/// line with its usage on standard error and 64.
int runService(const ServiceProgram& program, int argc, char** argv);

}  // namespace kivo::linux_platform
