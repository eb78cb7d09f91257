#include "platform/foundation/fatal_stop.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace kivo::platform {

void fatalStop(std::string_view reason) {
  const std::string line = "fatal: " + std::string(reason) + "\n";
  std::fputs(line.c_str(), stderr);
  std::abort();
}

}  // namespace kivo::platform
