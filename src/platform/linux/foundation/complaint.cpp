#include "platform/linux/foundation/complaint.h"

#include <cstdio>

namespace kivo::linux_platform {

void complain(const std::string& program, const std::string& what) {
  const std::string line = program + ": " + what + "\n";
  std::fputs(line.c_str(), stderr);
}

}  // namespace kivo::linux_platform
