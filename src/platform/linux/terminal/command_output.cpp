#include "platform/linux/terminal/command_output.h"

#include <iostream>

#include "platform/linux/terminal/command_failure.h"

namespace kivo::linux_platform {

void print(const std::string& text) {
  std::cout << text << std::flush;
  if (!std::cout) throw CommandFailure("standard output cannot be written");
}

}  // namespace kivo::linux_platform
