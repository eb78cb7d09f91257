// Holds a pointer to the one object of a type that the process uses.
#pragma once

#include <atomic>

#include "platform/foundation/fatal_stop.h"

namespace kivo::platform {

/// The program that builds a platform object installs it here; everything else finds it here.
/// Thread-safe.
template <typename Object>
class ProcessWide {
 public:
  /// Installs `object`, replacing an earlier one. Does not own it: it must live until no task uses
  /// it.
  static void install(Object& object) { installed_.store(&object); }

  /// Returns the installed object. Stops the process when none is installed.
  static Object& object() {
    Object* const object = installed_.load();
    if (object == nullptr) fatalStop("a platform object is used before it is installed");
    return *object;
  }

 private:
  static inline std::atomic<Object*> installed_ = nullptr;
};

}  // namespace kivo::platform
