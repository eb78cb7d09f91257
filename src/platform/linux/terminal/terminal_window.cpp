#include "platform/linux/terminal/terminal_window.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string_view>

#include <unistd.h>

namespace kivo::linux_platform {
namespace {

using Call = std::vector<std::string>;

// The shell survives an interrupt of the program, so that its output can be read.
std::string shellLines(WindowEnd end) {
  const std::string then = end == WindowEnd::atSuccess ? " && exit" : "";
  return "trap : INT; \"$0\" \"$@\"" + then +
         "; printf '\\nPress Enter to close this window. '; read -r line";
}

std::string variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// The option between a terminal's name and the command to run, which differs between terminals.
std::string_view separatorOf(const std::string& terminal) {
  static const std::map<std::string, std::string_view> others{
      {"xdg-terminal-exec", ""},
      {"foot", ""},
      {"kgx", "--"},
      {"gnome-terminal", "--"},
      {"mate-terminal", "-x"},
      {"xfce4-terminal", "-x"},
  };
  const auto other = others.find(std::filesystem::path(terminal).filename().string());
  return other == others.end() ? "-e" : other->second;
}

// Programs that a systemd service starts end with it and share its sandbox.
bool isServiceOfSystemd() {
  return variable("SYSTEMD_EXEC_PID") == std::to_string(getpid()) && isProgram("systemd-run");
}

}  // namespace

std::vector<Call> terminalCalls(const Call& command, WindowEnd end) {
  std::vector<Call> calls;
  for (const std::string& terminal :
       {std::string("xdg-terminal-exec"), variable("TERMINAL"), std::string("x-terminal-emulator"),
        std::string("kgx"), std::string("gnome-terminal"), std::string("konsole"),
        std::string("xfce4-terminal"), std::string("mate-terminal"), std::string("foot"),
        std::string("xterm")}) {
    if (terminal.empty()) continue;
    Call call{terminal};
    if (const auto separator = separatorOf(terminal); !separator.empty()) {
      call.emplace_back(separator);
    }
    call.insert(call.end(), {"/bin/sh", "-c", shellLines(end)});
    call.insert(call.end(), command.begin(), command.end());
    calls.push_back(std::move(call));
  }
  return calls;
}

bool TerminalWindows::open(const Call& command, WindowEnd end) {
  for (Call& call : terminalCalls(command, end)) {
    if (!isProgram(call.front())) continue;
    if (isServiceOfSystemd()) {
      const Call unit{"systemd-run", "--user", "--collect", "--quiet", "--"};
      call.insert(call.begin(), unit.begin(), unit.end());
    }
    if (programs_.start(std::move(call))) return true;
  }
  return false;
}

}  // namespace kivo::linux_platform
