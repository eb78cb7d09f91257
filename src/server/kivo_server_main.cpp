// The program kivo-server: one book for several people and devices.
#include <utility>

#include "book/book_command.h"
#include "platform/linux/foundation/complaint.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_line.h"
#include "server/commands/book_commands.h"
#include "server/commands/people_commands.h"
#include "server/commands/serve_command.h"
#include "server/service_user.h"

namespace kivo::server {
namespace {

linux_platform::CommandProgram program() {
  linux_platform::CommandProgram made{.name = "kivo-server",
                                      .purpose = "Keeps books for several people and devices.",
                                      .version = KIVO_VERSION,
                                      .commands = bookCommands(KIVO_VERSION, listPeople)};
  for (linux_platform::Command& command : peopleCommands()) {
    made.commands.push_back(std::move(command));
  }
  made.commands.push_back(serveCommand());
  return made;
}

}  // namespace
}  // namespace kivo::server

int main(int argc, char** argv) {
  kivo::linux_platform::startProcess();
  kivo::book::nameBookCommands("kivo-server", "NAME");
  try {
    kivo::server::becomeServiceUser();
  } catch (const kivo::linux_platform::Failure& failure) {
    kivo::linux_platform::complain("kivo-server", failure.what());
    return kivo::linux_platform::exitFailure;
  }
  return kivo::linux_platform::runCommand(kivo::server::program(), argc, argv);
}
