#include "platform/foundation/standard_output.h"

#include <cerrno>
#include <mutex>
#include <string>

#include <poll.h>
#include <unistd.h>

namespace kivo::platform {
namespace {

// Another process that shares standard output may have made it non-blocking.
bool becameWritable() {
  pollfd output{.fd = STDOUT_FILENO, .events = POLLOUT, .revents = 0};
  return poll(&output, 1, -1) >= 0 || errno == EINTR;
}

}  // namespace

void printLine(std::string_view line) {
  static std::mutex oneAtATime;
  const std::string text = std::string(line) + '\n';
  const std::lock_guard lock(oneAtATime);
  std::string_view rest = text;
  while (!rest.empty()) {
    const ssize_t written = write(STDOUT_FILENO, rest.data(), rest.size());
    if (written >= 0) {
      rest.remove_prefix(static_cast<std::size_t>(written));
    } else if (errno == EAGAIN) {
      if (!becameWritable()) return;
    } else if (errno != EINTR) {
      return;
    }
  }
}

}  // namespace kivo::platform
