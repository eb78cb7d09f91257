// Serves an extension's intents on the session bus.
#pragma once

#include <chrono>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// Takes the bus name of the intents and performs the calls to it. Runs as many at a time as file
/// descriptors allow, 1000 at most; further calls wait. Blocks until no call has been in progress
/// for `idleLimit`, the bus is gone, or SIGTERM or SIGINT has arrived; in the last two cases it
/// cancels the network exchanges of its runs. It releases the name before it ends and answers every
/// call that had arrived by then; later calls start a new process. Throws Failure when it cannot
/// start, such as without a session bus or when another program owns the name. Installs the
/// platform. Not thread-safe.
void serveIntents(const platform::AppIntentsExtension& extension,
                  std::chrono::milliseconds idleLimit = std::chrono::seconds(10));

}  // namespace kivo::linux_platform
