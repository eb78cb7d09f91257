// Checks which user owns a UNIX socket, and whether a server listens at it.
#pragma once

#include <string>

namespace kivo::linux_platform {

/// Returns whether a server has yet to be started for the socket at `path`: nothing is there, or a
/// socket of this process's user or of root that refuses connections.
bool lacksServer(const std::string& path);

/// Throws URLError cannotConnectToHost unless `path`, links followed, is a socket file that belongs
/// to this process's user or to root.
void requireOwnSocketFile(const std::string& path);

/// Throws URLError cannotConnectToHost unless the process that listens at the other end of the
/// connected UNIX socket `descriptor` belongs to this process's user or to root.
void requireOwnPeer(int descriptor);

}  // namespace kivo::linux_platform
