// Looks up the addresses of a host name in the background.
#pragma once

#include <string>

namespace kivo::linux_platform {

/// Starts to look up `host` on a detached thread, since getaddrinfo can neither be cancelled nor
/// given a timeout. Returns a socket, which the caller closes. From it the numeric addresses can be
/// read, one on each line, in the order in which to try them, followed by end of file. An unknown
/// name gives no lines. Neither closing the socket nor the end of the process waits for the lookup.
/// Throws std::system_error when the thread or socket cannot be created.
int startHostLookup(std::string host);

}  // namespace kivo::linux_platform
