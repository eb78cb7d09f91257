// Starts programs in the background and reaps them.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace kivo::linux_platform {

/// Not thread-safe. Programs continue when this object is destroyed.
class DetachedPrograms {
 public:
  /// Starts the program `call.front()`, as found in PATH, with the other texts as arguments, in a
  /// new session and with default signals. Returns false when it cannot be started. Its exit status
  /// is ignored.
  bool start(std::vector<std::string> call);

  /// As `start`. When this process is a systemd service, the program runs as a unit of its own: it
  /// neither ends with the service nor shares its sandbox.
  bool startOutsideService(std::vector<std::string> call);

  /// As `start`, with its output discarded, then waits until it ends, for at most `limit`. Returns
  /// its exit status, 128 plus the number of the signal that ended it, or 0 when it still runs;
  /// nullopt when it cannot be started.
  std::optional<int> startAndWait(std::vector<std::string> call, std::chrono::milliseconds limit);

  /// Reaps the programs that have ended, without waiting. Returns whether others still run.
  bool reapEnded();

 private:
  enum class Output { inherited, discarded };
  pid_t spawn(std::vector<std::string> call, Output output);

  std::vector<pid_t> programs_;
};

/// Returns the executable file of that name in PATH, or, when `name` contains a slash, the file
/// itself; nullopt when there is none.
std::optional<std::filesystem::path> programFile(const std::string& name);

}  // namespace kivo::linux_platform
