// The number of fsyncs of a run, counted by strace.
#include <fstream>

#include "faulted_program.h"
#include "testkit/queued_items.h"

namespace kivo::testkit {
namespace {

class TheFsyncsOfARun : public FaultedProgram {
 protected:
  int syncs(const std::string& text) const {
    const linux_platform::ProgramResult result = linux_platform::runProgram(
        {.program = "strace",
         .arguments = {"-f", "-qq", "-o", traceFile(), "-e", "trace=fsync,fdatasync", programFile(),
                       "perform", "ProcessSMSIntent", "--smsText", "-"},
         .input = text});
    EXPECT_EQ(result.status, 0) << result.errors;
    int count = 0;
    std::ifstream trace(traceFile());
    for (std::string line; std::getline(trace, line);) {
      if (line.find("sync(") != std::string::npos) ++count;
    }
    return count;
  }
};

// One for the commit of the totals, and one for the folder: SQLite syncs it with the first sync of
// each connection's WAL, which a killed run may have created. The drain lock needs none.
TEST_F(TheFsyncsOfARun, AreTwoWhenItSaves) {
  signIn();
  backend.answers(200, savedAnswer("expense"));
  syncs("Paid 1");
  EXPECT_EQ(syncs("Paid 2"), 2);
}

// The commit and the folder.
TEST_F(TheFsyncsOfARun, AreTwoWhenItQueuesItsText) {
  signIn();
  backend.goAway();
  syncs("Paid 1");
  EXPECT_EQ(syncs("Paid 2"), 2);
}

// The folder for the note that an erasure is owed; the header of the WAL, which the run before has
// truncated, and the folder once more; the commit; the WAL and the database for the checkpoint; the
// truncated WAL before the note is removed.
TEST_F(TheFsyncsOfARun, AreSevenWhenAFullQueueDropsItsOldestText) {
  std::vector<PendingSmsItem> items;
  for (std::size_t count = 0; count < PendingSmsQueue::capacity; ++count) {
    items.push_back(queuedItem(std::to_string(10'000'000 + count)));
  }
  keepStore(items, 0);
  backend.goAway();
  syncs("Paid 1");
  EXPECT_EQ(syncs("Paid 2"), 7);
  EXPECT_EQ(std::filesystem::file_size(folders.storeFile().string() + "-wal"), 0U);
  const StoreContents found = contents();
  EXPECT_EQ(found.integrity, "ok\n");
  EXPECT_EQ(found.queue.size(), PendingSmsQueue::capacity);
}

}  // namespace
}  // namespace kivo::testkit
