// A system bus of a test's own, under the policy that Debian gives the real one.
#pragma once

#include <memory>
#include <string>

#include "platform/linux/process/child_process.h"
#include "testkit/private_folders.h"

namespace kivo::testkit {

/// Every user may connect and send signals. Only this user may own ModemManager's name and call it;
/// only `nobody` may own `otherUsersName`, which everybody may call. Nobody else may call anybody.
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
