// Host names with a scripted lookup. Other names are resolved by the system.
#pragma once

#include <string>
#include <vector>

namespace kivo::testkit {

/// Replaces `getaddrinfo` of the C library in a program that uses this. From now on `host` has the
/// numeric `addresses`, in this order; without any it is not found.
void scriptLookup(const std::string& host, std::vector<std::string> addresses);

/// From now on the lookup of `host` hangs.
void scriptHangingLookup(const std::string& host);

}  // namespace kivo::testkit
