// The main function of a program that serves until it is stopped and takes no command.
#pragma once

#include <functional>
#include <string>

namespace kivo::linux_platform {

struct ServiceProgram {
  std::string name;
  /// Its description in the help, as whole lines.
  std::string purpose;
  /// Returns the exit status. Throws Failure when it cannot serve.
  std::function<int()> serve;
};

/// Runs the program and returns its exit status: 1, after one line on standard error, when it
/// cannot serve. Prints --help and --version on standard output and returns 0. For any other
/// argument prints the usage on standard error and returns 64.
int runService(const ServiceProgram& program, int argc, char** argv);

}  // namespace kivo::linux_platform
