// Opens a terminal window for a program that asks the user for input.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/process/detached_programs.h"

namespace kivo::linux_platform {

/// The message for the user when `TerminalWindows::open` returns false.
inline constexpr const char* noTerminalWindow =
    "no terminal can be opened; the variable TERMINAL can name one";

/// When the window closes after its command has ended: when the user presses Enter, or at once if
/// the command succeeded.
enum class WindowEnd { atEnter, atSuccess };

/// Returns the command lines that can show `command` in a window, in the order to try them:
/// xdg-terminal-exec, the program in the variable TERMINAL, x-terminal-emulator, then terminals of
/// common desktops.
std::vector<std::vector<std::string>> terminalCalls(const std::vector<std::string>& command,
                                                    WindowEnd end = WindowEnd::atEnter);

/// Not thread-safe. Windows stay open when this object is destroyed.
class TerminalWindows {
 public:
  /// Shows `command`, a program and its arguments, with the first of `terminalCalls` that is
  /// installed. When this process is a systemd service, the window runs as its own unit: it neither
  /// ends with the service nor shares its sandbox. Returns false when no terminal could be started.
  bool open(const std::vector<std::string>& command, WindowEnd end = WindowEnd::atEnter);

  /// As `DetachedPrograms::reapEnded`.
  bool reapEnded() { return programs_.reapEnded(); }

 private:
  DetachedPrograms programs_;
};

}  // namespace kivo::linux_platform
