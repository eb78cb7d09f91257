// What a command line asks an intents extension to do. Performs nothing.
#pragma once

#include <memory>
#include <string>
#include <variant>

#include "platform/app_intents/app_intent.h"

namespace kivo::linux_platform {

/// In which form the dialog goes to standard output.
enum class DialogForm { text, json };

/// An intent with all of its parameters filled.
struct PerformCall {
  std::unique_ptr<platform::AppIntent> intent;
  DialogForm form = DialogForm::text;
};

/// The end of a process that performs nothing.
struct EarlyEnd {
  int exitStatus;
  /// For standard output: help or version.
  std::string output = {};
  /// For standard error: one line that never holds a parameter's value.
  std::string error = {};
};

/// The exit status for a call that cannot be understood.
inline constexpr int exitUsage = 64;

/// Reads a command line. A value of "-" is read from standard input to its end, and a missing one
/// is asked for by its title when standard input is a terminal; both block.
std::variant<PerformCall, EarlyEnd> readCommandLine(int argc, char** argv,
                                                    const platform::AppIntentsExtension& extension);

}  // namespace kivo::linux_platform
