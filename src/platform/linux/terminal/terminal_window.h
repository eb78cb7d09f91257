// A window with a terminal, for a program that talks to the person. Is no terminal itself.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/process/detached_programs.h"

namespace kivo::linux_platform {

/// What to tell the person when `TerminalWindows::open` yields false.
inline constexpr const char* noTerminalWindow =
    "no terminal can be opened; the variable TERMINAL can name one";

/// When the window closes once its command has ended: when the person has pressed Enter, or at once
/// unless the command failed.
enum class WindowEnd { atEnter, atSuccess };

/// The calls that can show `command` in a window of its own, best first: by xdg-terminal-exec, by
/// the program that the variable TERMINAL names, by x-terminal-emulator, then by what desktops
/// bring.
std::vector<std::vector<std::string>> terminalCalls(const std::vector<std::string>& command,
                                                    WindowEnd end = WindowEnd::atEnter);

/// Used by one thread at a time. Its windows stay when it ends.
class TerminalWindows {
 public:
  /// Shows `command`, a program and its arguments, by the first of `terminalCalls` whose program
  /// there is. Where this process is a service of systemd's, the window is a unit of its own: it
  /// neither ends with the service nor is confined like it. False when there is no such program.
  bool open(const std::vector<std::string>& command, WindowEnd end = WindowEnd::atEnter);

  /// As `DetachedPrograms::reapEnded`.
  bool reapEnded() { return programs_.reapEnded(); }

 private:
  DetachedPrograms programs_;
};

}  // namespace kivo::linux_platform
