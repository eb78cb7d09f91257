// The process entry of an app extension. Knows no intent.
#pragma once

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::platform {

/// The extension runtime: runs the process of `extension` with its command line and returns its
/// exit status: 0 when a dialog was given, 64 for a call that does not fit, 1 when the system has
/// no thread to perform the intent on. Installs the platform's process-wide objects, which notify
/// in the name of the extension's bundle. Intents are performed on workers of the shared executor;
/// the calling thread waits for them.
int NSExtensionMain(int argc, char** argv, const AppIntentsExtension& extension);

/// What the main type of an extension's process inherits. `MainType::make()` yields the extension.
template <typename MainType>
struct AppExtension {
  /// Hands control to the extension runtime; returns the exit status of the process.
  static int main(int argc, char** argv) { return NSExtensionMain(argc, argv, MainType::make()); }
};

}  // namespace kivo::platform
