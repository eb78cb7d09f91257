// A UNIX socket that waits for connections: the service manager's, or one that is created.
#pragma once

#include <filesystem>
#include <optional>

#include "platform/linux/process/descriptor.h"

namespace kivo::ledger {

/// A listening stream socket. Closed at its end; its file is removed if it was created here.
class ListeningSocket {
 public:
  /// The socket that the service manager hands to this process (LISTEN_PID and LISTEN_FDS, the
  /// first one); absent when it hands none. Removes these variables, so that no other process takes
  /// them for its own. Throws std::runtime_error when the descriptor is no listening UNIX stream
  /// socket.
  static std::optional<ListeningSocket> handedOver();

  /// Creates a socket (0600) at `path`, and its folder (0700) when there is none. Replaces the
  /// socket file of a server that ended without removing it. Throws std::runtime_error, with a line
  /// that says what to do, when another server answers there, when a file that is no socket is in
  /// the way, when other users may write to the folder, and when it cannot be created.
  static ListeningSocket create(const std::filesystem::path& path);

  ListeningSocket(ListeningSocket&& other) noexcept;
  ListeningSocket& operator=(ListeningSocket&& other) = delete;
  ~ListeningSocket();

  [[nodiscard]] int descriptor() const { return descriptor_; }

 private:
  ListeningSocket(int descriptor, std::filesystem::path created)
      : descriptor_(descriptor), created_(std::move(created)) {}

  int descriptor_;
  std::filesystem::path created_;
};

}  // namespace kivo::ledger
