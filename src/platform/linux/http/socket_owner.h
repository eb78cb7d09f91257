// Checks which user owns a UNIX socket.
#pragma once

#include <string>

namespace kivo::linux_platform {

/// Throws URLError cannotConnectToHost unless the socket file at `path`, links followed, belongs to
/// this process's user or to root.
void requireOwnSocketFile(const std::string& path);

/// Throws URLError cannotConnectToHost unless the process that listens at the other end of the
/// connected UNIX socket `descriptor` belongs to this process's user or to root.
void requireOwnPeer(int descriptor);

}  // namespace kivo::linux_platform
