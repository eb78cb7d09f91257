// A second process that runs in step with a test.
#pragma once

#include <array>
#include <chrono>
#include <functional>

#include <sys/types.h>

namespace kivo::testkit {

/// A fork of this process that runs a function. Start it while this process has no store open:
/// SQLite does not survive a fork.
class OtherProcess {
 public:
  /// Starts the process; its exit status is 0 when `work` returns true, else 1.
  explicit OtherProcess(const std::function<bool(OtherProcess&)>& work);
  /// Kills it if it still runs.
  ~OtherProcess();
  OtherProcess(const OtherProcess&) = delete;
  OtherProcess& operator=(const OtherProcess&) = delete;

  /// In the other process: reports that it reached this point.
  void reached();
  /// In the other process: waits for `goOn` of the test, for at most `limit`.
  void waitForTest(std::chrono::milliseconds limit = std::chrono::seconds(60));

  /// In the test: waits for `reached` of the other process, for at most 60 s.
  void waitForIt();
  /// In the test: lets the other process continue.
  void goOn();

  /// In the test: waits for its end; returns its status as waitpid gives it.
  int end();
  /// The same, after SIGKILL.
  int kill();

 private:
  std::array<int, 2> here_{-1, -1};
  std::array<int, 2> there_{-1, -1};
  pid_t id_ = -1;
};

}  // namespace kivo::testkit
