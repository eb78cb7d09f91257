#include "phone/phone_terminal.h"

#include <cstdlib>
#include <iostream>
#include <limits>

#include <sys/ioctl.h>
#include <unistd.h>

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

bool onTerminal() { return isatty(STDOUT_FILENO) == 1; }

bool terminalObeysEscapes() {
  const std::string terminal = variable("TERM");
  return onTerminal() && !terminal.empty() && terminal != "dumb";
}

bool terminalShowsStyles() { return terminalObeysEscapes() && variable("NO_COLOR").empty(); }

std::size_t screenWidth() {
  constexpr std::size_t usualWidth = 80;
  if (!onTerminal()) return std::numeric_limits<std::size_t>::max();
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usualWidth;
}

}  // namespace kivo
