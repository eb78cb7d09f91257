// A private phone: folders and a session bus that starts the programs of this build tree. A test
// adds its own display of notifications.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include <sys/types.h>

#include "demo/private_session_bus.h"
#include "testkit/private_folders.h"

namespace kivo::testkit {

class PrivatePhone {
 public:
  /// Has the services of this build tree. A fake xdg-open comes first in PATH; it records the links
  /// that it is to open.
  PrivatePhone();
  /// Has the services that the files in `services` describe instead.
  explicit PrivatePhone(const std::filesystem::path& services);
  /// Ends the bus, and the notification center if it still runs.
  ~PrivatePhone();
  PrivatePhone(const PrivatePhone&) = delete;
  PrivatePhone& operator=(const PrivatePhone&) = delete;

  [[nodiscard]] PrivateFolders& folders() { return folders_; }
  [[nodiscard]] const std::string& address() const { return bus_->address(); }

  /// Calls a method from another process, as a foreign program does; `arguments` in the text format
  /// of GVariant. Status 0 with the text of the reply, or an error message on its standard error.
  linux_platform::ProgramResult call(const std::string& service, const std::string& path,
                                     const std::string& method,
                                     std::vector<std::string> arguments = {});
  /// As `call`, on the notification center.
  linux_platform::ProgramResult callCenter(const std::string& method,
                                           std::vector<std::string> arguments);

  /// The process that owns the bus name `service`; absent when there is none.
  std::optional<pid_t> processOf(const std::string& service);
  /// The process of the notification center, started if necessary.
  pid_t startCenter();
  /// Kills the notification center and waits until its bus name is free.
  void killCenter();
  /// Waits until the process has ended, for at most 10 s; returns whether it has.
  static bool hasEnded(pid_t process);

  /// The opened links, one per line, once there are `count` of them or after 5 s.
  std::vector<std::string> openedLinks(std::size_t count);

  /// The process of the bus.
  [[nodiscard]] linux_platform::ChildProcess& daemon() { return bus_->daemon(); }
  /// Ends the bus.
  void endBus() { bus_.reset(); }

 private:
  PrivateFolders folders_;
  ScopedVariable path_;
  std::optional<ScopedVariable> addressVariable_;
  std::unique_ptr<PrivateSessionBus> bus_;
  std::optional<pid_t> center_;
};

/// Polls `condition` every few milliseconds until it holds, for at most `limit`; returns whether it
/// holds.
template <typename Condition>
bool eventually(Condition condition, std::chrono::milliseconds limit = std::chrono::seconds(10)) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
  }
  return true;
}

}  // namespace kivo::testkit
