// A socket that accepts connections and never answers, like a bus that hangs.
#pragma once

#include <filesystem>
#include <list>
#include <string>

#include "platform/linux/process/descriptor.h"

namespace kivo::testkit {

class SilentSocket {
 public:
  /// Listens at `path`, which does not exist yet and is short enough for a socket.
  explicit SilentSocket(const std::filesystem::path& path);
  ~SilentSocket();
  SilentSocket(const SilentSocket&) = delete;
  SilentSocket& operator=(const SilentSocket&) = delete;

  /// Waits for a connection; returns false after 10 s.
  [[nodiscard]] bool waitForConnection() const;

  /// From now on connections block.
  void acceptNoConnection();

  /// For DBUS_SESSION_BUS_ADDRESS.
  [[nodiscard]] std::string busAddress() const { return "unix:path=" + path_.string(); }

 private:
  std::filesystem::path path_;
  int descriptor_;
  std::list<linux_platform::Descriptor> queue_;
};

}  // namespace kivo::testkit
