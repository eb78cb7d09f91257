// The address at which devices reach the server. Connects to nothing.
#pragma once

#include <string>

namespace kivo::server::PublicAddress {

/// Returns `url` without slashes at its end. Throws BadUsage when it is no https URL without a
/// query; http is for this machine alone, since on any other way messages could be read.
std::string from(std::string url);

/// Returns the URL to which a device with `secret` signs in.
std::string ofDevice(const std::string& publicUrl, const std::string& secret);

}  // namespace kivo::server::PublicAddress
