#include "platform/linux/process/process_start.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kivo::linux_platform {

void startProcess() {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0 || errno != EBADF) continue;
    if (open("/dev/null", O_RDWR) != descriptor) std::abort();  // open uses the lowest free number
  }

  prctl(PR_SET_DUMPABLE, 0);
  umask(0077);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  std::signal(SIGCHLD, SIG_DFL);
}

}  // namespace kivo::linux_platform
