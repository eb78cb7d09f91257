// A socket that takes connections and says nothing, as a bus that hangs.
#pragma once

#include <filesystem>
#include <list>
#include <string>

#include "platform/linux/process/descriptor.h"

namespace kivo::testkit {

class SilentSocket {
 public:
  /// Listens at `path`, which is no file yet and short enough for a socket.
  explicit SilentSocket(const std::filesystem::path& path);
  ~SilentSocket();
  SilentSocket(const SilentSocket&) = delete;
  SilentSocket& operator=(const SilentSocket&) = delete;

  /// Waits until somebody has connected; false after 10 s.
  [[nodiscard]] bool waitForConnection() const;

  /// From now on whoever connects has to wait for it.
  void takeNobodyIn();

  /// For DBUS_SESSION_BUS_ADDRESS.
  [[nodiscard]] std::string busAddress() const { return "unix:path=" + path_.string(); }

 private:
  std::filesystem::path path_;
  int descriptor_;
  std::list<linux_platform::Descriptor> queue_;
};

}  // namespace kivo::testkit
