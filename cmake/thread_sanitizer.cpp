// What the thread sanitizer is told not to report. Part of every program that is built with it.

// The C++ library counts the holders of an exception with atomics of its own, which the sanitizer
// does not see: an exception that one thread throws and another one frees looks like a race.
extern "C" const char* __tsan_default_suppressions() {
  return "race:std::__exception_ptr::exception_ptr::_M_release\n";
}
