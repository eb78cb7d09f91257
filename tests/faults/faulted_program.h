// The real kivo-intents with a fault that strace injects into one of its system calls.
#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "testkit/extension_program.h"

namespace kivo::testkit {

/// A fault, and the system call at which it happens.
struct Fault {
  enum class Repeat { once, fromThenOn };
  enum class Where { anywhere, onTheStore };

  /// The call's name, as in openat.
  std::string call;
  /// In strace's words: "signal=SIGKILL" or "error=ENOSPC".
  std::string effect;
  /// The number of the call at which it happens, from 1, counted per thread.
  int number = 1;
  Repeat repeat = Repeat::once;
  /// Counts only calls on files of the store.
  Where where = Where::anywhere;
};

/// The calls at which programs are killed: those that access the store, the bus or the backend.
inline constexpr std::array sweptCalls{"openat",    "write",    "pwrite64", "fsync", "fdatasync",
                                       "ftruncate", "unlink",   "rename",   "fcntl", "sendto",
                                       "sendmsg",   "recvfrom", "recvmsg",  "close"};

/// The fault in the syntax of strace, for messages.
std::string wordsFor(const Fault& fault);

/// Whether the long form of these tests is asked for.
bool isLongForm();

/// `call` with the fault injected; strace logs its effect on the calls of that name to `trace`.
linux_platform::ProgramCall withFault(const Fault& fault, const linux_platform::ProgramCall& call,
                                      const std::filesystem::path& storeFile,
                                      const std::filesystem::path& trace = "/dev/null");

/// The reason why no fault can be injected here; empty when it can.
std::string whyNoFaults();

/// Steps through the numbers of calls: all of them in the long form, and every few in the short
/// form, starting at another number for each call.
class CallNumbers {
 public:
  CallNumbers();
  /// The first number for the next call.
  int first();
  [[nodiscard]] int step() const { return step_; }

 private:
  int step_;
  int offset_ = 0;
};

/// The values in the file of the store.
struct StoreContents {
  std::string integrity;
  std::vector<PendingSmsItem> queue;
  std::string queueCount;
  double lock = 0;
  /// Day, total and count of the day, running total, separated by blanks.
  std::string totals;
};

/// A program with faults on a store that is restored for each run. Skips its tests, with the
/// reason, where no fault can be injected.
class FaultedProgram : public ExtensionProgram {
 protected:
  static constexpr const char* earlierTotals = "2026-01-01 100.0 2 300.0";

  void SetUp() override;

  /// Fills the store for every run: a sign-in, these queued items, the lock and earlier totals.
  void keepStore(const std::vector<PendingSmsItem>& queued, double lock);
  /// Restores the file of the store; removes it when none was kept.
  void restoreStore() const;
  /// Performs ProcessSMSIntent on `text`, given on standard input, with the fault.
  [[nodiscard]] linux_platform::ProgramResult processSMSWith(const Fault& fault,
                                                             const std::string& text) const;

  /// The log of strace for the last such run.
  [[nodiscard]] std::filesystem::path traceFile() const { return folders.home() / "trace"; }

  /// Reads the store with SQL first, then as the program does.
  [[nodiscard]] StoreContents contents() const;
  /// Expects the conditions that hold after every fault that did not damage the file itself.
  void expectWhole(const StoreContents& found) const;

  /// The keys under which the backend received `text`.
  [[nodiscard]] std::vector<std::string> keysAtBackend(const std::string& text) const;

 private:
  std::filesystem::path kept_;
};

}  // namespace kivo::testkit
