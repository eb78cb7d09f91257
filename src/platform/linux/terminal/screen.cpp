#include "platform/linux/terminal/screen.h"

#include <limits>

#include <sys/ioctl.h>
#include <unistd.h>

namespace kivo::linux_platform {

bool onTerminal() { return isatty(STDOUT_FILENO) == 1; }

std::size_t screenWidth() {
  constexpr std::size_t usualWidth = 80;
  if (!onTerminal()) return std::numeric_limits<std::size_t>::max();
  winsize size{};
  return ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : usualWidth;
}

}  // namespace kivo::linux_platform
