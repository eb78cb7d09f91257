// A listening socket, inherited from the service manager or created. Accepts no connection.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "platform/linux/process/descriptor.h"

namespace kivo::ledger {

/// A listening stream socket. The destructor closes it, and removes its file when it was created
/// here.
class ListeningSocket {
 public:
  /// Returns the first socket that the service manager passes to this process (socket activation by
  /// LISTEN_PID and LISTEN_FDS); absent when it passes none. Removes these variables, so that child
  /// processes do not use them. Throws Failure when the file descriptor is not a listening UNIX
  /// stream socket.
  static std::optional<ListeningSocket> handedOver();

  /// Creates a socket (0600) at `path`, in a folder that `openPrivateFolder` opens. Replaces a
  /// stale socket file, at which no server listens. Waits for no lock. Throws Failure when
  /// another server listens there, when another file exists at `path`, when the folder is refused
  /// or another program has locked it, when `path` is too long, and when the socket cannot be
  /// created.
  static ListeningSocket create(const std::filesystem::path& path);

  /// Creates a TCP socket at `address`, an IPv4 address or an IPv6 address in brackets and a port
  /// behind a colon, such as "127.0.0.1:8787" or "[::1]:8787"; port 0 for one that is free. Throws
  /// Failure when `address` is none and when the socket cannot be created.
  static ListeningSocket onAddress(const std::string& address);

  ListeningSocket(ListeningSocket&& other) noexcept;
  ListeningSocket& operator=(ListeningSocket&& other) = delete;
  ~ListeningSocket();

  [[nodiscard]] int descriptor() const { return descriptor_; }
  /// Returns the port of a TCP socket; 0 for another.
  [[nodiscard]] int port() const;

 private:
  ListeningSocket(int descriptor, std::filesystem::path created)
      : descriptor_(descriptor), created_(std::move(created)) {}

  int descriptor_;
  std::filesystem::path created_;
};

}  // namespace kivo::ledger
