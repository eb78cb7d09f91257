// A second process that takes its steps together with a test. Runs no other program.
#pragma once

#include <array>
#include <chrono>
#include <functional>

#include <sys/types.h>

namespace kivo::testkit {

/// A copy of this process that runs a function. To be started while this process has no store
/// open: SQLite does not survive a fork.
class OtherProcess {
 public:
  /// Starts the process; its exit status is 0 when `work` yields true, else 1.
  explicit OtherProcess(const std::function<bool(OtherProcess&)>& work);
  /// Kills it if it still runs.
  ~OtherProcess();
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  /// In the other process: says that it has come this far.
  void reached();
  /// In the other process: waits until the test goes on, for at most `limit`.
  void waitForTest(std::chrono::milliseconds limit = std::chrono::seconds(60));

  /// In the test: waits until the other process says `reached`, for at most 60 s.
  void waitForIt();
  /// In the test: lets the other process go on.
  void goOn();

  /// In the test: its status as waitpid gives it, once it has ended.
  int end();
  /// The same, after SIGKILL.
  int kill();

 private:
  std::array<int, 2> here_{-1, -1};
  std::array<int, 2> there_{-1, -1};
  pid_t id_ = -1;
};

}  // namespace kivo::testkit
