// Programs that are started and left to themselves. Reads nothing of what they say.
#pragma once

#include <string>
#include <vector>

#include <sys/types.h>

namespace kivo::linux_platform {

/// Used by one thread at a time. What it has started goes on when it ends.
class DetachedPrograms {
 public:
  /// Starts the program `call.front()`, as found in PATH, with the other texts as its arguments, in
  /// a session of its own and with signals as a shell would leave them. False when that cannot be
  /// done; how the program ends is nobody's business.
  bool start(std::vector<std::string> call);

  /// Forgets the programs that have ended, so that nothing is left of them. Does not wait. Whether
  /// some go on.
  bool reapEnded();

 private:
  std::vector<pid_t> programs_;
};

/// Whether `name` is a program in PATH that can be started, or, with a slash in it, such a file.
bool isProgram(const std::string& name);

}  // namespace kivo::linux_platform
