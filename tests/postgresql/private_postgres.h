// Debian's PostgreSQL, with a private cluster for one test program.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/process/child_process.h"
#include "testkit/private_folders.h"

namespace kivo::testkit {

/// A cluster on a UNIX socket of its own, which ends with this object.
class PrivatePostgres {
 public:
  /// Whether a commit waits for the disk, as it does where somebody uses it.
  enum class Commits { written, synced };

  /// Makes the cluster and waits until it answers. Throws std::runtime_error with what went wrong.
  explicit PrivatePostgres(Commits commits = Commits::written);
  ~PrivatePostgres();
  PrivatePostgres(const PrivatePostgres&) = delete;
  PrivatePostgres& operator=(const PrivatePostgres&) = delete;

  /// Runs another program of PostgreSQL, such as pgbench, which gets the cluster's address from its
  /// environment. Throws std::runtime_error with what it wrote on standard error when it fails.
  [[nodiscard]] std::string run(const char* program, std::vector<std::string> arguments) const;

  /// A connection URI of a database.
  [[nodiscard]] std::string url(const std::string& database = "postgres") const;
  /// Kills all of its processes as a power cut would, and starts it again.
  void killAndRestart();

 private:
  void start();

  Commits commits_;
  TemporaryFolder folder_;
  std::unique_ptr<linux_platform::ChildProcess> server_;
};

}  // namespace kivo::testkit
