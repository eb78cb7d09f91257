// Runs another program and exchanges text with it through its standard streams.
#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kivo::linux_platform {

/// A program, its arguments, its input and its environment.
struct ProgramCall {
  std::filesystem::path program;
  std::vector<std::string> arguments = {};
  /// All of its standard input. Empty means end of file at once.
  std::string input = {};
  /// Changes to this process's environment. nullopt removes a variable.
  std::map<std::string, std::optional<std::string>> environment = {};
};

/// The exit status and the output of a program.
struct ProgramResult {
  /// The exit status, or 128 plus the number of the signal that ended the program.
  int status = 0;
  std::string output;
  std::string errors;
};

/// A running program. A thread serves its streams, so that it never blocks on them. Thread-safe,
/// except for construction and destruction.
class ChildProcess {
 public:
  /// Starts the program. Throws std::system_error when that fails.
  explicit ChildProcess(ProgramCall call);
  /// Kills the program if it still runs, and waits as `wait`.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] pid_t id() const { return id_; }
  /// Sends `signal`, unless the program has been reaped.
  void signal(int signal);
  /// Returns its standard output so far.
  [[nodiscard]] std::string outputSoFar() const;
  /// Blocks until the program has ended and all copies of its output streams are closed, also those
  /// of its own child processes. Kills it after `limit`; its status then shows SIGKILL.
  ProgramResult wait(std::chrono::milliseconds limit = std::chrono::seconds(60));

 private:
  struct Streams;
  pid_t id_ = -1;
  std::unique_ptr<Streams> streams_;
};

/// Runs a program and waits for it as `ChildProcess::wait` does.
ProgramResult runProgram(ProgramCall call,
                         std::chrono::milliseconds limit = std::chrono::seconds(60));

/// Returns the folder of this process's executable.
std::filesystem::path programFolder();

}  // namespace kivo::linux_platform
