// Runs another program and talks to it through its standard streams. Knows no program.
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

/// What to run, and in which surroundings.
struct ProgramCall {
  std::filesystem::path program;
  std::vector<std::string> arguments = {};
  /// All of its standard input; an empty text is an empty input.
  std::string input = {};
  /// Set in its environment on top of ours; none removes a variable.
  std::map<std::string, std::optional<std::string>> environment = {};
};

/// How a program ended, with all that it wrote.
struct ProgramResult {
  /// Its exit status, or 128 and the number of the signal that ended it, as a shell counts.
  int status = 0;
  std::string output;
  std::string errors;
};

/// A program under way. Its streams are served by a thread of ours, so that it never waits for us.
class ChildProcess {
 public:
  /// Starts `call`; throws std::system_error when that cannot be done.
  explicit ChildProcess(ProgramCall call);
  /// Kills the program if it still runs.
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  [[nodiscard]] pid_t id() const { return id_; }
  /// Sends `signal`, unless the program has ended.
  void signal(int signal);
  /// What it has written to standard output so far.
  [[nodiscard]] std::string outputSoFar() const;
  /// Blocks until it has ended, for at most `limit`; then it is killed and the result says so.
  ProgramResult wait(std::chrono::milliseconds limit = std::chrono::seconds(60));

 private:
  struct Streams;
  pid_t id_ = -1;
  std::unique_ptr<Streams> streams_;
};

/// Runs `call` to its end, as `ChildProcess::wait`.
ProgramResult runProgram(ProgramCall call,
                         std::chrono::milliseconds limit = std::chrono::seconds(60));

/// The folder that the running program's file is in.
std::filesystem::path programFolder();

}  // namespace kivo::linux_platform
