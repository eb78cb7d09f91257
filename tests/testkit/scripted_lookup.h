// Host names whose lookup a test scripts. Other names are looked up as always.
#pragma once

#include <string>
#include <vector>

namespace kivo::testkit {

/// Puts itself in the place of the C library's `getaddrinfo` in a program that uses this. From now
/// on `host` has `addresses`, numeric ones, in this order; none means that it is not found.
void scriptLookup(const std::string& host, std::vector<std::string> addresses);

/// From now on the lookup of `host` does not come back.
void scriptHangingLookup(const std::string& host);

}  // namespace kivo::testkit
