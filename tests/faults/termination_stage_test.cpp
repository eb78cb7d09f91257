// SIGTERM and SIGINT at each system call of a run: either it has not begun, or it answers and loses
// no text.
#include <algorithm>
#include <array>
#include <csignal>
#include <fstream>
#include <iostream>

#include "asked_form.h"
#include "store_agreement.h"
#include "testkit/extension_program.h"
#include "testkit/queued_items.h"
#include "unreliable_backend.h"

namespace kivo::testkit {
namespace {

using linux_platform::ProgramCall;
using linux_platform::ProgramResult;

struct Termination {
  const char* name;
  int signal;
};

void PrintTo(const Termination& termination, std::ostream* stream) { *stream << termination.name; }

class ARunTerminatedAtAnySystemCall : public ExtensionProgram,
                                      public testing::WithParamInterface<Termination> {
 protected:
  static constexpr const char* text = "Paid 1.00 at Shop, now";
  static constexpr const char* tracked = "Tracked EGP\u00a01.00 at Shop\n";

  void waiting(const std::vector<std::string>& ids) {
    std::vector<PendingSmsItem> items;
    for (const std::string& id : ids) items.push_back(queuedItem(id));
    SharedStore opened = store();
    PendingSmsQueue::save(items, opened);
  }

  /// The system calls that a run makes from its start to its end.
  static constexpr std::array systemCalls{
      "brk",        "clone3",   "close",      "connect",      "epoll_ctl",      "epoll_wait",
      "exit",       "fcntl",    "fdatasync",  "ftruncate",    "futex",          "getrandom",
      "getsockopt", "munmap",   "newfstatat", "openat",       "poll",           "pread64",
      "pwrite64",   "read",     "recvmsg",    "rt_sigaction", "rt_sigprocmask", "sendmsg",
      "setsockopt", "shutdown", "socket",     "unlink",       "write"};

  /// A run with the signal sent to it at the `number`th `systemCall` of each of its threads.
  [[nodiscard]] ProgramResult terminatedAt(const std::string& systemCall, int number) const {
    ProgramCall traced = call({"perform", "ProcessSMSIntent", "--smsText", "-"}, text);
    traced.arguments.insert(
        traced.arguments.begin(),
        {"-f", "-qq", "-o", (folders.home() / "calls").string(), "-e", "trace=" + systemCall, "-e",
         "inject=" + systemCall + ":signal=" + GetParam().name + ":when=" + std::to_string(number),
         traced.program.string()});
    traced.program = "strace";
    traced.environment["ASAN_OPTIONS"] = "detect_leaks=0";  // which cannot be traced
    return linux_platform::runProgram(traced);
  }

  /// Calls `attempt`, which performs a run that it has terminated at the call it is given, for
  /// each call of a run; of many of one name, the short form takes every eighth.
  template <typename Attempt>
  void atEachCall(Attempt attempt) {
    for (const char* const systemCall : systemCalls) {
      for (int number = 1;; number += inAskedForm(8, 1)) {
        SCOPED_TRACE(std::string(systemCall) + " " + std::to_string(number));
        attempt(systemCall, number);
        if (!wasSent()) break;
      }
    }
    std::cout << "measured: " << neverBegun + trackedRuns + savedOffline << " runs with "
              << GetParam().name << ": " << neverBegun << " ended before they began, "
              << trackedRuns << " tracked, " << savedOffline << " saved offline\n";
  }

  [[nodiscard]] bool wasSent() const {
    std::ifstream calls(folders.home() / "calls");
    for (std::string line; std::getline(calls, line);) {
      if (line.find("--- " + std::string(GetParam().name)) != std::string::npos) return true;
    }
    return false;
  }

  [[nodiscard]] bool isQueued(const std::string& wanted) const {
    const auto items = queue();
    return std::any_of(items.begin(), items.end(),
                       [&](const auto& item) { return item.smsText == wanted; });
  }

  /// Expects that `result` is from a run that had not begun, or that its dialog is true.
  void check(const ProgramResult& result, const UnreliableBackend& asked) {
    const bool ended = result.status == 0;
    if (!ended) {
      EXPECT_EQ(result.status, 128 + GetParam().signal);
      EXPECT_EQ(result.output, "");
      EXPECT_TRUE(asked.met().empty());
      EXPECT_FALSE(isQueued(text));
      ++neverBegun;
    } else if (result.output == tracked) {
      EXPECT_FALSE(isQueued(text));
      ++trackedRuns;
    } else {
      EXPECT_TRUE(result.output.ends_with("\nSaved offline - will process when connected\n"))
          << result.output;
      EXPECT_TRUE(isQueued(text));
      ++savedOffline;
    }
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(storeDisagreement(folders.storeFile()), "");
  }

  int neverBegun = 0;
  int trackedRuns = 0;
  int savedOffline = 0;
};

TEST_P(ARunTerminatedAtAnySystemCall, AnswersAndLosesNoTextWhenItDrains) {
  atEachCall([this](const char* systemCall, int number) {
    const UnreliableBackend healthy(1, 0);
    signIn(healthy.url());
    waiting({"a", "b"});
    const ProgramResult result = terminatedAt(systemCall, number);
    check(result, healthy);
    const auto stored = healthy.stored();
    for (const char* const id : {"a", "b"}) {
      EXPECT_TRUE(stored.contains(id) || isQueued("text " + std::string(id)));
    }
    EXPECT_EQ(store().readFloat(StoreKeys::smsQueueDrainLock), 0);
  });
  EXPECT_GT(neverBegun, 0);
  EXPECT_GT(trackedRuns, 0);
  EXPECT_GT(savedOffline, 0);
}

TEST_P(ARunTerminatedAtAnySystemCall, AnswersAndQueuesTheTextWhenOffline) {
  atEachCall([this](const char* systemCall, int number) {
    const UnreliableBackend untouched(1, 0);
    signIn("http://127.0.0.1:1");
    waiting({"a"});
    check(terminatedAt(systemCall, number), untouched);
    EXPECT_TRUE(isQueued("text a"));
  });
  EXPECT_GT(neverBegun, 0);
  EXPECT_EQ(trackedRuns, 0);
  EXPECT_GT(savedOffline, 0);
}

INSTANTIATE_TEST_SUITE_P(, ARunTerminatedAtAnySystemCall,
                         testing::Values(Termination{"SIGTERM", SIGTERM},
                                         Termination{"SIGINT", SIGINT}),
                         [](const auto& termination) { return termination.param.name; });

}  // namespace
}  // namespace kivo::testkit
