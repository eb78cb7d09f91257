// What must hold of a run that something failed under, whatever it was. Fails nothing itself.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "faulted_program.h"
#include "testkit/queued_items.h"

namespace kivo::testkit {

/// The dialogs that a run of ProcessSMSIntent on a text may end with, but for the amount in one.
bool isStatedDialog(const std::string& dialog);

/// The last line that the program answered; empty when there is none.
std::string dialogOf(const linux_platform::ProgramResult& result);

/// So many items "E1", "E2" ...
std::vector<PendingSmsItem> queuedItems(int count);

/// Runs in an extension whose store has earlier texts, and what became of them and the new one.
class SurvivingRuns : public FaultedProgram {
 protected:
  enum class Backend { saves, fails };

  /// Has the backend answer like that, and keeps a store with earlier texts.
  void prepare(Backend backend);

  /// Puts the store back, performs a new text by `perform`, and has the run and all it leaves
  /// looked at; its result.
  linux_platform::ProgramResult look(
      const std::function<linux_platform::ProgramResult(const std::string& text)>& perform);

  /// So many that the queue fills pages of its own, which have to be read.
  std::vector<PendingSmsItem> earlier = queuedItems(64);

  // How many runs ended how.
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
