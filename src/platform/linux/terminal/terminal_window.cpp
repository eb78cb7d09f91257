#include "platform/linux/terminal/terminal_window.h"

#include <cstdlib>
#include <filesystem>
#include <map>
#include <string_view>

namespace kivo::linux_platform {
namespace {

using Call = std::vector<std::string>;

// GNOME Console keeps its window open when the command has ended, and one process has all windows
// of an application. It runs as an application of its own, with its own desktop file, so that the
// shell can end that process.
constexpr const char* console = "kgx";
constexpr const char* ownConsole = "--gapplication-app-id=app.kivo.expenses.Terminal";

// The shell survives an interrupt of the program, so that its output can be read. It ends a console
// in which no other command runs.
std::string shellLines(WindowEnd end) {
  const std::string then = end == WindowEnd::atSuccess ? " || " : "; ";
  return "trap : INT; \"$0\" \"$@\"" + then +
         "{ printf '\\nPress Enter to close this window. '; read -r line; }; "
         "grep -qszx -e '" +
         ownConsole +
         "' /proc/$PPID/cmdline && "
         "[ \"$(cat /proc/$PPID/task/*/children)\" = \"$$ \" ] && kill $PPID";
}

std::string environmentText(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

// The option that precedes the command to run; each terminal has its own.
std::string_view separatorOf(const std::string& terminal) {
  static const std::map<std::string, std::string_view> others{
      {"xdg-terminal-exec", ""}, {"foot", ""},
      {console, "--"},           {"gnome-terminal", "--"},
      {"mate-terminal", "-x"},   {"xfce4-terminal", "-x"},
  };
  const auto other = others.find(std::filesystem::path(terminal).filename().string());
  return other == others.end() ? "-e" : other->second;
}

// Whether `program` is GNOME Console, also through the link x-terminal-emulator.
bool isConsole(const std::filesystem::path& program) {
  std::error_code failed;
  return std::filesystem::canonical(program, failed).filename() == console;
}

}  // namespace

std::vector<Call> terminalCalls(const Call& command, WindowEnd end) {
  std::vector<Call> calls;
  for (const std::string& terminal :
       {std::string("xdg-terminal-exec"), environmentText("TERMINAL"),
        std::string("x-terminal-emulator"), std::string(console), std::string("gnome-terminal"),
        std::string("konsole"), std::string("xfce4-terminal"), std::string("mate-terminal"),
        std::string("foot"), std::string("xterm")}) {
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
    const auto program = programFile(call.front());
    if (!program) continue;
    if (isConsole(*program)) call.insert(call.begin() + 1, ownConsole);
    if (programs_.startOutsideService(std::move(call))) return true;
  }
  return false;
}

}  // namespace kivo::linux_platform
