// The process entry of an intents extension on Linux: from a command line to an exit status. Knows
// no intent; it performs those that the extension declares.
#pragma once

#include <string_view>

#include "platform/app_intents/app_intent.h"

namespace kivo::linux_platform {

/// Runs the process of `extension` with its command line and returns its exit status: 0 when a
/// dialog was given, 64 for a call that names no intent or does not fit its parameters. Installs
/// the platform's process-wide objects, which notify in the name of `bundleIdentifier`; performs on
/// worker threads while the calling thread waits; SIGTERM and SIGINT cancel the run, which then
/// finishes what it does when the backend cannot be reached.
int NSExtensionMain(int argc, char** argv, const platform::AppIntentsExtension& extension,
                    std::string_view bundleIdentifier);

}  // namespace kivo::linux_platform
