#include "phone/phone_terminal.h"

#include <cstdlib>
#include <iostream>

#include "platform/linux/terminal/command_line.h"

namespace kivo {
namespace {

std::string variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

int fail(const std::string& what, int status) {
  linux_platform::complain(phoneProgramName, what);
  return status;
}

int failWithoutStore() { return exitFailure; }

int print(const std::string& text) {
  std::cout << text << std::flush;
  return std::cout ? 0 : fail("standard output cannot be written");
}

bool terminalObeysEscapes() {
  const std::string terminal = variable("TERM");
  return onTerminal() && !terminal.empty() && terminal != "dumb";
}

bool terminalShowsStyles() { return terminalObeysEscapes() && variable("NO_COLOR").empty(); }

}  // namespace kivo
