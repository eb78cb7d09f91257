// The process entry of an intents extension on Linux: from a command line to an exit status. Knows
// no intent; it offers and performs those that the extension declares.
#pragma once

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::linux_platform {

/// Runs the process of `extension` with its command line and returns its exit status: 0 when a
/// dialog was given, 64 for a call that does not fit. Installs the platform's process-wide objects,
/// which notify in the name of the extension's bundle; performs on worker threads while the calling
/// thread waits.
int NSExtensionMain(int argc, char** argv, const platform::AppIntentsExtension& extension);

}  // namespace kivo::linux_platform
