// The entry point of an app extension's process.
#pragma once

#include "platform/app_intents/app_intents_extension.h"

namespace kivo::platform {

/// The extension runtime: runs the process of `extension` with its command line and returns the
/// exit status: 0 on success, 64 for a command line that does not fit, 1 when the command failed,
/// for example because no thread could be started. Installs the platform's process-wide objects,
/// which notify under the extension's bundle. Intents run on workers of an executor; the calling
/// thread blocks until they end.
int NSExtensionMain(int argc, char** argv, const AppIntentsExtension& extension);

/// Base of the main type of an extension's process. `MainType::make()` returns the extension.
template <typename MainType>
struct AppExtension {
  /// Runs the extension; returns the exit status.
  static int main(int argc, char** argv) { return NSExtensionMain(argc, argv, MainType::make()); }
};

}  // namespace kivo::platform
