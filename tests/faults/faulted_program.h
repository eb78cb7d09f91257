// The real kivo-intents with a fault in one of its system calls, as strace injects it. Judges no
// outcome.
#pragma once

#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "testkit/extension_program.h"

namespace kivo::testkit {

/// What happens at which system call of a program.
struct Fault {
  enum class Repeat { once, fromThenOn };
  enum class Where { anywhere, onTheStore };

  /// The call's name, as in openat.
  std::string call;
  /// In strace's words: "signal=SIGKILL" or "error=ENOSPC".
  std::string effect;
  /// Happens at the call of that number, from 1, which each thread counts for itself.
  int number = 1;
  Repeat repeat = Repeat::once;
  /// On the store alone, other calls of that name are not counted.
  Where where = Where::anywhere;
};

/// The calls at which programs are killed: all by which a store, a bus or a backend is reached.
inline constexpr std::array sweptCalls{"openat",    "write",    "pwrite64", "fsync", "fdatasync",
                                       "ftruncate", "unlink",   "rename",   "fcntl", "sendto",
                                       "sendmsg",   "recvfrom", "recvmsg",  "close"};

/// The fault in strace's words, for messages.
std::string wordsFor(const Fault& fault);

/// Whether the long form of these tests is asked for.
bool isLongForm();

/// `call` with the fault in it; strace notes in `trace` what it did to the calls of that name.
linux_platform::ProgramCall withFault(const Fault& fault, const linux_platform::ProgramCall& call,
                                      const std::filesystem::path& storeFile,
                                      const std::filesystem::path& trace = "/dev/null");

/// Why no fault can be injected here; empty when it can.
std::string whyNoFaults();

/// Steps through the numbers of calls: each in the long form, and in the short one every few,
/// beginning elsewhere for each call.
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

/// The values of the store as its file has them.
struct StoreContents {
  std::string integrity;
  std::vector<PendingSmsItem> queue;
  std::string queueCount;
  double lock = 0;
  /// Day, total and count of the day, running total, separated by blanks.
  std::string totals;
};

/// A program with faults before a store that is put back as it was for each run. Skips its tests,
/// saying why, where no fault can be injected.
class FaultedProgram : public ExtensionProgram {
 protected:
  static constexpr const char* earlierTotals = "2026-01-01 100.0 2 300.0";

  void SetUp() override;

  /// Fills the store for every run: signed in, these items queued, the lock and earlier totals.
  void keepStore(const std::vector<PendingSmsItem>& queued, double lock);
  /// Puts the store's file back as it was kept; takes it away when none was.
  void restoreStore() const;
  /// Performs ProcessSMSIntent on `text`, given on standard input, with the fault.
  [[nodiscard]] linux_platform::ProgramResult processSMSWith(const Fault& fault,
                                                             const std::string& text) const;

  /// What strace has noted of the last such run.
  [[nodiscard]] std::filesystem::path traceFile() const { return folders.home() / "trace"; }

  /// Reads the store through another door than the program's own, then by the program's own.
  [[nodiscard]] StoreContents contents() const;
  /// Holds after every fault that did not damage the file itself.
  void expectWhole(const StoreContents& found) const;

  /// The keys under which `text` came to the backend.
  [[nodiscard]] std::vector<std::string> keysAtBackend(const std::string& text) const;

 private:
  std::filesystem::path kept_;
};

}  // namespace kivo::testkit
