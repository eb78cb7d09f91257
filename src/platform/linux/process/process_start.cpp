#include "platform/linux/process/process_start.h"

#include <csignal>
#include <cstdlib>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kivo::linux_platform {

void startProcess() {
  int descriptor = 0;
  do {
    descriptor = open("/dev/null", O_RDWR);
    if (descriptor < 0) std::abort();
  } while (descriptor <= STDERR_FILENO);
  close(descriptor);

  prctl(PR_SET_DUMPABLE, 0);
  umask(0077);
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
}

}  // namespace kivo::linux_platform
