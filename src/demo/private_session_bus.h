// A session bus for a test or a demonstration, apart from the person's own. Starts no service
// itself: its bus does, on demand.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/linux/process/child_process.h"

namespace kivo {

class PrivateSessionBus {
 public:
  /// Starts a bus whose socket and configuration lie in `folder`, which must exist; the services
  /// that it can start are described by the files of `serviceFolders`. It runs, and starts
  /// services, with `environment` on top of ours and its own address as
  /// DBUS_SESSION_BUS_ADDRESS. Blocks until the bus takes connections; throws std::runtime_error
  /// when it does not within 10 s.
  explicit PrivateSessionBus(const std::filesystem::path& folder,
                             const std::vector<std::filesystem::path>& serviceFolders = {},
                             std::map<std::string, std::optional<std::string>> environment = {});

  /// Stops the bus, which ends the connections of all that are on it.
  ~PrivateSessionBus();

  /// For DBUS_SESSION_BUS_ADDRESS.
  [[nodiscard]] const std::string& address() const { return address_; }

  [[nodiscard]] linux_platform::ChildProcess& daemon() { return *daemon_; }

 private:
  std::string address_;
  std::unique_ptr<linux_platform::ChildProcess> daemon_;
};

}  // namespace kivo
