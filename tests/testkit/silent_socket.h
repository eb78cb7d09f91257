// A socket that takes connections and says nothing, as a bus that hangs.
#pragma once

#include <filesystem>
#include <string>

namespace kivo::testkit {

class SilentSocket {
 public:
  /// Listens at `path`, which is no file yet and short enough for a socket.
  explicit SilentSocket(const std::filesystem::path& path);
  ~SilentSocket();
  SilentSocket(const SilentSocket&) = delete;
  SilentSocket& operator=(const SilentSocket&) = delete;

  /// For DBUS_SESSION_BUS_ADDRESS.
  [[nodiscard]] std::string busAddress() const { return "unix:path=" + path_.string(); }

 private:
  std::filesystem::path path_;
  int descriptor_;
};

}  // namespace kivo::testkit
