// A private system bus under the default policy of Debian.
#pragma once

#include <memory>
#include <string>

#include "platform/linux/process/child_process.h"
#include "testkit/private_folders.h"

namespace kivo::testkit {

/// Every user may connect and send signals. Only this user may own the name of ModemManager and
/// call it. Only the user `nobody` may own `otherUsersName`, which every user may call. All other
/// calls are denied.
class PrivateSystemBus {
 public:
  static constexpr const char* otherUsersName = "org.example.OtherUser";

  /// Returns once the bus listens; throws std::runtime_error when it does not within 10 s.
  PrivateSystemBus();
  /// Ends the bus.
  ~PrivateSystemBus();
  PrivateSystemBus(const PrivateSystemBus&) = delete;
  PrivateSystemBus& operator=(const PrivateSystemBus&) = delete;

  [[nodiscard]] const std::string& address() const { return address_; }
  /// The process of the bus.
  [[nodiscard]] linux_platform::ChildProcess& daemon() { return *daemon_; }

 private:
  TemporaryFolder folder_;
  std::string address_;
  std::unique_ptr<linux_platform::ChildProcess> daemon_;
};

}  // namespace kivo::testkit
