// What the thread sanitizer is told not to report. Part of every program that is built with it.
//
// A process ends with its run, whatever thread it still has for the bus.
//
// Both libraries keep order by atomics of their own, which the sanitizer does not see:
// - the C++ library counts the holders of an exception, so one that a thread throws and another one
//   frees looks like a race;
// - ICU makes what number formats copy once, at their first use on any thread. Our own code gives
//   ICU no object that two threads share.
extern "C" const char* __tsan_default_suppressions() {
  return "thread:kivo::linux_platform::BusThread::BusThread\n"
         "race:std::__exception_ptr::exception_ptr::_M_release\n"
         "race:libicuuc.so\n"
         "race:libicui18n.so\n";
}
