// A private session bus for a test or a demonstration, apart from the user's own.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/process/child_process.h"

namespace kivo {

/// A running dbus-daemon.
class PrivateSessionBus {
 public:
  /// Starts a bus with its socket and its configuration in `folder`, which must exist. It activates
  /// the services whose files are in `serviceFolders`. The bus and its services inherit this
  /// process's environment, changed by `environment`, with the address of the bus as
  /// DBUS_SESSION_BUS_ADDRESS. Blocks until the bus accepts connections. Throws std::runtime_error
  /// when the configuration cannot be written, or the bus does not start within 10 s.
  explicit PrivateSessionBus(const std::filesystem::path& folder,
                             const std::vector<std::filesystem::path>& serviceFolders = {},
                             std::map<std::string, std::optional<std::string>> environment = {});

  /// Stops the bus, which disconnects its clients.
  ~PrivateSessionBus();

  /// Returns the address for DBUS_SESSION_BUS_ADDRESS.
  [[nodiscard]] const std::string& address() const { return address_; }

  /// Returns the process of the bus.
  [[nodiscard]] linux_platform::ChildProcess& daemon() { return *daemon_; }

 private:
  std::string address_;
  std::unique_ptr<linux_platform::ChildProcess> daemon_;
};

}  // namespace kivo
