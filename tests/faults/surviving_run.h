// The conditions that must hold after a run in which any call failed.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "faulted_program.h"
#include "testkit/queued_items.h"

namespace kivo::testkit {

/// The dialogs with which a run of ProcessSMSIntent on a text may end, without an amount.
bool isStatedDialog(const std::string& dialog);

/// The last line of the program's output; empty when there is none.
std::string dialogOf(const linux_platform::ProgramResult& result);

/// `count` items "E1", "E2" ...
std::vector<PendingSmsItem> queuedItems(int count);

/// Performs runs on a store with earlier texts, and counts the outcomes for these and the new text.
class SurvivingRuns : public FaultedProgram {
 protected:
  enum class Backend { saves, fails };

  /// Configures the backend, and fills a store with earlier texts.
  void prepare(Backend backend);

  /// Restores the store, performs a new text by `perform`, checks the run and the store, and
  /// returns the result of the run.
  linux_platform::ProgramResult look(
      const std::function<linux_platform::ProgramResult(const std::string& text)>& perform);

  /// Enough that the queue fills pages of its own, which must be read.
  std::vector<PendingSmsItem> earlier = queuedItems(64);

  // The number of runs per outcome.
  int runs = 0;
  int neverBegan = 0;
  int refused = 0;
  int storeFailures = 0;
  int queued = 0;
  int saved = 0;
  void printCounts(const char* what) const;

 private:
  void expectEarlierKept(const StoreContents& found, std::size_t sentBefore);
  void expectTextKept(const linux_platform::ProgramResult& result, const std::string& text,
                      const StoreContents& found);

  Backend backend_ = Backend::fails;
};

}  // namespace kivo::testkit
