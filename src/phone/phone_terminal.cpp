#include "phone/phone_terminal.h"

#include <iostream>

#include "platform/linux/foundation/complaint.h"

namespace kivo {
int fail(const std::string& what, int status) {
  linux_platform::complain(phoneProgramName, what);
  return status;
}

int failWithoutStore() { return exitFailure; }

int print(const std::string& text) {
  std::cout << text << std::flush;
  return std::cout ? 0 : fail("standard output cannot be written");
}

}  // namespace kivo
