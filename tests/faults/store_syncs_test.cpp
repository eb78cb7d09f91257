// How often a run waits for the disk, as the calls of the real program tell.
#include <fstream>

#include "faulted_program.h"
#include "testkit/queued_items.h"

namespace kivo::testkit {
namespace {

class TheSyncsOfARun : public FaultedProgram {
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

TEST_F(TheSyncsOfARun, ThatSavesAreAsManyAsItsWriteGroups) {
  signIn();
  backend.answers(200, savedAnswer("expense"));
  syncs("Paid 1");
  EXPECT_EQ(syncs("Paid 2"), 3);
}

TEST_F(TheSyncsOfARun, ThatQueuesItsTextAreOne) {
  signIn();
  backend.goAway();
  syncs("Paid 1");
  EXPECT_EQ(syncs("Paid 2"), 1);
}

// The note that an erasure is owed, the commit, and two for the database that is written anew; none
// for the log that the run before has emptied.
TEST_F(TheSyncsOfARun, ThatDropsTheOldestTextForItsOwnAreFour) {
  std::vector<PendingSmsItem> items;
  for (std::size_t count = 0; count < PendingSmsQueue::capacity; ++count) {
    items.push_back(queuedItem(std::to_string(10'000'000 + count)));
  }
  keepStore(items, 0);
  backend.goAway();
  syncs("Paid 1");
  EXPECT_EQ(syncs("Paid 2"), 4);
  EXPECT_EQ(std::filesystem::file_size(folders.storeFile().string() + "-wal"), 1U);
  const StoreContents found = contents();
  EXPECT_EQ(found.integrity, "ok\n");
  EXPECT_EQ(found.queue.size(), PendingSmsQueue::capacity);
}

}  // namespace
}  // namespace kivo::testkit
