// Opens links with the desktop's default program, without waiting for it.
#pragma once

#include <string>

#include "platform/linux/process/detached_programs.h"

namespace kivo {

/// Not thread-safe. Opened programs continue when this object is destroyed.
class LinkOpener {
 public:
  /// Opens `link` with xdg-open, as found in PATH. Ignores a link that does not begin with a
  /// scheme, since it could be taken for an option or a file. Failures are not reported.
  void open(const std::string& link);

 private:
  linux_platform::DetachedPrograms openers_;
};

}  // namespace kivo
