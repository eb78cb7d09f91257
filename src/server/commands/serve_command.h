// The command that runs the server.
#pragma once

#include "platform/linux/terminal/command_line.h"

namespace kivo::server {

/// `serve`, which answers until SIGTERM or SIGINT.
linux_platform::Command serveCommand();

}  // namespace kivo::server
