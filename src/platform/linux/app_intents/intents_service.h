// The place of an extension's intents on the session bus. Decides nothing about what they do.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// Takes the intents' name on the session bus and performs what is called there, any number of
/// calls at a time. Blocks until no call has been under way for `idleLimit`, the bus is gone, or
/// SIGTERM or SIGINT has come; in the last two cases the exchanges of its runs are cancelled. It
/// gives up its name first and ends when it has answered every call that had reached it by then:
/// the calls to come reach a new process. Yields why it could not begin, in one line: there is no
/// bus, or the name is another program's. Installs the platform; once at a time in a process.
std::optional<std::string> serveIntents(
    const platform::AppIntentsExtension& extension,
    std::chrono::milliseconds idleLimit = std::chrono::seconds(10));

}  // namespace kivo::linux_platform
