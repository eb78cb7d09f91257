// Opens links with the program that the desktop has for them. Waits for no program.
#pragma once

#include <string>

#include "platform/linux/process/detached_programs.h"

namespace kivo {

/// Used by one thread at a time. What it has opened goes on when it ends.
class LinkOpener {
 public:
  /// Has the desktop's opener, xdg-open as found in PATH, open `link`. What does not begin with a
  /// scheme, and could be taken for an option or a file, is opened by nobody; an opener that cannot
  /// be started is not missed.
  void open(const std::string& link);

 private:
  linux_platform::DetachedPrograms openers_;
};

}  // namespace kivo
