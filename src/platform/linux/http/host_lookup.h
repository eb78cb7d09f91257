// Finds the addresses of a host name. Does not wait for them, and connects to none.
#pragma once

#include <string>

namespace kivo::linux_platform {

/// Begins to look up `host` on a thread of its own, since the system's lookup can neither be
/// cancelled nor given a limit, and returns a socket to read from, which the caller closes. Out of
/// it come the addresses in numbers, a line each, in the order in which they are to be tried; then
/// it ends. A name that is not found has no lines. Nothing waits for a lookup whose socket is
/// closed, nor does the end of the process. Throws std::system_error without a thread or socket.
int startHostLookup(std::string host);

}  // namespace kivo::linux_platform
