#include "platform/linux/terminal/service_program.h"

#include <iostream>
#include <string_view>

#include "platform/linux/foundation/complaint.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/command_description.h"
#include "platform/linux/terminal/command_line.h"

namespace kivo::linux_platform {

int runService(const ServiceProgram& program, int argc, char** argv) {
  const std::string usage = "Usage: " + program.name + " [--help | --version]\n" + program.purpose;
  const std::string_view option = argc > 1 ? argv[1] : "";
  if (argc == 2 && option == "--help") {
    std::cout << usage;
    return 0;
  }
  if (argc == 2 && option == "--version") {
    std::cout << program.name << " " KIVO_VERSION "\n";
    return 0;
  }
  if (argc == 2 && option == describeOption) {
    return printDescription({.name = program.name,
                             .purpose = program.purpose,
                             .version = KIVO_VERSION,
                             .commands = {}});
  }
  if (argc > 1) {
    std::cerr << usage;
    return exitBadUsage;
  }
  try {
    return program.serve();
  } catch (const Failure& failure) {
    complain(program.name, escapedControls(failure.what()));
    return 1;
  }
}

}  // namespace kivo::linux_platform
