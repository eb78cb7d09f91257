#include "platform/linux/terminal/screen.h"

#include <cstdlib>
#include <limits>
#include <string_view>

#include <sys/ioctl.h>
#include <unistd.h>

namespace kivo::linux_platform {
namespace {

std::string_view variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

bool onTerminal() { return isatty(STDOUT_FILENO) == 1; }

bool terminalObeysEscapes() {
  const std::string_view terminal = variable("TERM");
  return onTerminal() && !terminal.empty() && terminal != "dumb";
}

bool terminalShowsStyles() { return terminalObeysEscapes() && variable("NO_COLOR").empty(); }

std::size_t screenWidth() {
  constexpr std::size_t usualWidth = 80;
  if (!onTerminal()) return std::numeric_limits<std::size_t>::max();
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usualWidth;
}

}  // namespace kivo::linux_platform
