// Generates random identifiers.
#pragma once

#include <string>

namespace kivo::platform {

class UUID {
 public:
  /// Returns a new random UUID (version 4, from the kernel's random source) as 36 characters:
  /// upper-case hexadecimal with hyphens.
  static std::string uuidString();
};

}  // namespace kivo::platform
