// The place of an object of which a process has one. Does not own the object.
#pragma once

#include <atomic>

#include "platform/foundation/fatal_stop.h"

namespace kivo::platform {

/// Where a platform object that exists once in a process is put by the program that builds it, and
/// found by everybody else.
template <typename Object>
class ProcessWide {
 public:
  /// Makes `object` the one of this process. It must live until no task uses it any more.
  static void install(Object& object) { installed_.store(&object); }

  /// The installed object. Using it before a program has installed one stops the process.
  static Object& object() {
    Object* const object = installed_.load();
    if (object == nullptr) fatalStop("a platform object is used before it is installed");
    return *object;
  }

 private:
  static inline std::atomic<Object*> installed_ = nullptr;
};

}  // namespace kivo::platform
