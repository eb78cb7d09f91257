// Debian's PostgreSQL, with a private cluster for one test program.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "platform/linux/process/child_process.h"
#include "testkit/private_folders.h"

namespace kivo::testkit {

/// A cluster on a UNIX socket of its own, which ends with this object. It does not sync its files:
/// tests of power cuts make their own.
class PrivatePostgres {
 public:
  /// Makes the cluster and waits until it answers. Throws std::runtime_error with what went wrong.
  PrivatePostgres();
  ~PrivatePostgres();
  PrivatePostgres(const PrivatePostgres&) = delete;
  PrivatePostgres& operator=(const PrivatePostgres&) = delete;

  /// A connection URI of a database.
  [[nodiscard]] std::string url(const std::string& database = "postgres") const;
  /// Kills all of its processes as a power cut would, and starts it again.
  void killAndRestart();

 private:
  void start();

  TemporaryFolder folder_;
  std::unique_ptr<linux_platform::ChildProcess> server_;
};

}  // namespace kivo::testkit
