// The secret part of a device's address. Keeps none.
#pragma once

#include <string>
#include <string_view>

namespace kivo::server::DeviceSecret {

/// Returns a new secret: 128 bits of the kernel's random source as 32 lower-case hexadecimal
/// digits. Throws Failure when the kernel gives none.
std::string make();

/// Returns what is kept of `secret`, which may be any text: its SHA-256 as hexadecimal digits. No
/// salt, since a secret is random and is never used twice.
std::string hash(std::string_view secret);

}  // namespace kivo::server::DeviceSecret
