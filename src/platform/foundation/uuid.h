// Random identifiers. Parses none.
#pragma once

#include <string>

namespace kivo::platform {

class UUID {
 public:
  /// The text of a new random UUID (version 4, from the kernel's random source): 36 characters,
  /// upper-case hexadecimal with hyphens.
  static std::string uuidString();
};

}  // namespace kivo::platform
