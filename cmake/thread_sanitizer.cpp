// Suppressions for the thread sanitizer, linked into every program that is built with it.
//
// A process ends with its run, even while its bus thread still exists.
//
// Two libraries synchronize by atomics that the sanitizer does not see:
// - the C++ library counts the references to an exception, so an exception that one thread throws
//   and another one frees looks like a race;
// - ICU creates the data that number formats copy at their first use on any thread. Our own code
//   shares no ICU object between threads.
extern "C" const char* __tsan_default_suppressions() {
  return "thread:kivo::linux_platform::BusThread::BusThread\n"
         "race:std::__exception_ptr::exception_ptr::_M_release\n"
         "race:libicuuc.so\n"
         "race:libicui18n.so\n";
}
