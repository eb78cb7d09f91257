// Runs in which system calls fail: the text, the earlier queue and the dialog.
#include <array>
#include <fstream>
#include <iterator>

#include "surviving_run.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
using testkit::Fault;

constexpr std::array errorNames{"EACCES", "ENOSPC", "EIO", "EDQUOT", "EMFILE"};

// A failed lock counts as held by another process, whatever the error, and a run waits for it up to
// 10 s: one error is enough.
constexpr const char* locking = "fcntl";

// Beside those at which programs are killed: by which descriptors, folders and files are made, and
// the store is read.
constexpr std::array furtherCalls{
    "pread64",    "read",   "mkdir",         "mknodat",  "socket",         "connect", "pipe2",
    "newfstatat", "fchown", "epoll_create1", "eventfd2", "timerfd_create", "lseek"};

class ARunWithFailingCalls : public testkit::SurvivingRuns {
 protected:
  void sweep() {
    std::vector<std::string> calls(testkit::sweptCalls.begin(), testkit::sweptCalls.end());
    calls.insert(calls.end(), furtherCalls.begin(), furtherCalls.end());
    // A run uses write for standard output and to wake its own threads with, which cannot
    // fail in earnest.
    std::erase(calls, "write");
    for (const std::string& call : calls) sweepCall({.call = call, .effect = ""});
    for (const char* const call : {"openat", "close", "pread64", "newfstatat", "read"}) {
      sweepCall({.call = call, .effect = "", .where = Fault::Where::onTheStore});
    }
    std::cout << "failed calls in " << injected_ << " runs\n";
    EXPECT_GE(injected_, testkit::isLongForm() ? 1000 : 10);
  }

 private:
  /// With every error in the long form, and in the short one with one error, another for each call.
  void sweepCall(Fault fault) {
    for (std::size_t index = 0; index < errorNames.size(); ++index) {
      const bool chosen = fault.call == locking ? index == 0 : index == turn_ % errorNames.size();
      if (!chosen && (fault.call == locking || !testkit::isLongForm())) continue;
      fault.effect = std::string("error=") + errorNames[index];
      for (const auto repeat : {Fault::Repeat::once, Fault::Repeat::fromThenOn}) {
        fault.repeat = repeat;
        sweepNumbers(fault);
        if (HasFailure()) return;
      }
    }
    ++turn_;
  }

  void sweepNumbers(Fault fault) {
    int step = numbers_.step();
    if (fault.call == locking && fault.repeat == Fault::Repeat::fromThenOn) step = 25;
    if (fault.call == locking && !testkit::isLongForm()) step = 80;
    for (fault.number = numbers_.first(); fault.number < 1000; fault.number += step) {
      SCOPED_TRACE(testkit::wordsFor(fault));
      look([&](const std::string& text) { return processSMSWith(fault, text); });
      if (HasFailure() || !wasInjected()) return;
      ++injected_;
    }
    ADD_FAILURE() << "no run was left alone";
  }

  [[nodiscard]] bool wasInjected() const {
    std::ifstream in(traceFile());
    const std::string trace{std::istreambuf_iterator<char>(in), {}};
    return trace.find("(INJECTED)") != std::string::npos;
  }

  testkit::CallNumbers numbers_;
  std::size_t turn_ = 0;
  int injected_ = 0;
};

TEST_F(ARunWithFailingCalls, KeepsTextAndQueueOrReportsAFailedStoreWhenOffline) {
  prepare(Backend::fails);
  sweep();
  printCounts("offline");
}

TEST_F(ARunWithFailingCalls, HasItsTextAtTheBackendOrInTheQueueWhenOnline) {
  prepare(Backend::saves);
  sweep();
  printCounts("saved and draining");
}

// Each thread counts its own calls: the main thread starts the bus's thread, then the worker, which
// starts the one that looks up a host name.
Fault withoutThread(int number, Fault::Repeat repeat) {
  return {.call = "clone3", .effect = "error=EAGAIN", .number = number, .repeat = repeat};
}

TEST_F(ARunWithFailingCalls, SavesWithoutNotificationsWhenTheBusGetsNoThread) {
  prepare(Backend::saves);
  const ProgramResult result = look([&](const std::string& text) {
    return processSMSWith(withoutThread(1, Fault::Repeat::once), text);
  });
  EXPECT_THAT(result.output, testing::StartsWith("Tracked "));
  EXPECT_EQ(result.errors, "");
  EXPECT_EQ(saved, 1);
}

TEST_F(ARunWithFailingCalls, FailsWithOneLineWhenNoWorkerCanBeStarted) {
  prepare(Backend::saves);
  const ProgramResult result =
      processSMSWith(withoutThread(2, Fault::Repeat::fromThenOn), "Paid 1");
  EXPECT_EQ(result.status, 1);
  EXPECT_EQ(result.output, "");
  EXPECT_EQ(result.errors,
            "kivo-intents: the system has no thread left to run on; nothing was sent or stored\n");
  EXPECT_EQ(contents().queue, earlier);
  EXPECT_THAT(keysAtBackend("Paid 1"), testing::IsEmpty());
}

TEST_F(ARunWithFailingCalls, KeepsItsTextWhenTheHostLookupGetsNoThread) {
  prepare(Backend::saves);
  signIn("http://localhost" + backend.url().substr(backend.url().rfind(':')));
  const ProgramResult result = processSMSWith(withoutThread(1, Fault::Repeat::once), "Paid 1");
  EXPECT_EQ(testkit::dialogOf(result), "Saved offline - will process when connected");
  EXPECT_EQ(contents().queue.back().smsText, "Paid 1");
}

TEST_F(ARunWithFailingCalls, KeepsItsTextWithFewFileDescriptors) {
  prepare(Backend::fails);
  for (int limit = 3; limit <= 40; ++limit) {
    SCOPED_TRACE("descriptors: " + std::to_string(limit));
    look([&](const std::string& text) {
      return linux_platform::runProgram(
          {.program = "prlimit",
           .arguments = {"--nofile=" + std::to_string(limit),
                         (linux_platform::programFolder() / "kivo-intents").string(), "perform",
                         "ProcessSMSIntent", "--smsText", "-"},
           .input = text});
    });
    if (HasFailure()) break;
  }
  printCounts("few descriptors");
  EXPECT_GT(queued, 0);
}

}  // namespace
}  // namespace kivo
