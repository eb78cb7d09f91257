#include "platform/linux/process/process_end.h"

#include <cstdlib>

#include <unistd.h>

namespace kivo::linux_platform {

void endProcess(int status) {
#ifdef KIVO_LOOKS_AT_THE_END
  std::exit(status);
#else
  _exit(status);
#endif
}

}  // namespace kivo::linux_platform
