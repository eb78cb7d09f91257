// Runs whose store is on a full, small or read-only disk.
#include <csignal>
#include <fstream>

#include <sys/mount.h>
#include <unistd.h>

#include "small_disk.h"
#include "surviving_run.h"

namespace kivo {
namespace {

using linux_platform::ProgramCall;
using linux_platform::ProgramResult;
using testing::AnyOf;
using testing::HasSubstr;
using testing::IsEmpty;
namespace fs = std::filesystem;

class ARunOnABadDisk : public testkit::SurvivingRuns {
 protected:
  void SetUp() override {}  // without strace

  [[nodiscard]] fs::path folder() const { return folders.storeFile().parent_path(); }

  [[nodiscard]] ProgramResult runBy(const std::string& program, std::vector<std::string> arguments,
                                    const std::string& text) const {
    const ProgramCall inner = call({"perform", "ProcessSMSIntent", "--smsText", "-"}, text);
    arguments.push_back(inner.program.string());
    arguments.insert(arguments.end(), inner.arguments.begin(), inner.arguments.end());
    return linux_platform::runProgram(
        {.program = program, .arguments = std::move(arguments), .input = text});
  }
  /// Without the privilege of root to write read-only files.
  [[nodiscard]] ProgramResult runUnprivileged(const std::string& text) const {
    if (geteuid() != 0) return processSMS(text);
    return runBy("setpriv", {"--bounding-set", "-all"}, text);
  }

  const int step = testkit::isLongForm() ? 1 : 6;
};

TEST_F(ARunOnABadDisk, KeepsItsTextOrReportsAFailedStoreAtAFileSizeLimit) {
  prepare(Backend::fails);
  for (int limit = 0; limit <= 96 * 1024; limit += 1024 * step) {
    SCOPED_TRACE("bytes: " + std::to_string(limit));
    look([&](const std::string& text) {
      return runBy("prlimit", {"--fsize=" + std::to_string(limit)}, text);
    });
    if (HasFailure()) break;
  }
  printCounts("RLIMIT_FSIZE");
  EXPECT_GT(storeFailures + refused, 0);
  EXPECT_GT(queued, 0);
}

TEST_F(ARunOnABadDisk, SurvivesAReadOnlyFileAndLeavesItUnchanged) {
  prepare(Backend::fails);
  look([&](const std::string& text) {
    fs::permissions(folders.storeFile(), fs::perms::owner_read);
    return runUnprivileged(text);
  });
  EXPECT_EQ(contents().queue, earlier);
  printCounts("read-only file");
}

TEST_F(ARunOnABadDisk, SurvivesAReadOnlyFolderAndLeavesItUnchanged) {
  prepare(Backend::fails);
  look([&](const std::string& text) {
    fs::permissions(folder(), fs::perms::owner_read | fs::perms::owner_exec);
    const ProgramResult result = runUnprivileged(text);
    fs::permissions(folder(), fs::perms::owner_all);
    return result;
  });
  EXPECT_EQ(contents().queue, earlier);
  printCounts("read-only folder");
}

/// The folder of the store is a disk of 256 KiB.
class ARunOnASmallDisk : public ARunOnABadDisk {
 protected:
  void SetUp() override {
    if (!disk_.isMounted()) GTEST_SKIP() << testkit::noSmallDisk;
  }
  /// Fills the disk except for so many pages.
  void leavePages(int pages) {
    const auto taken = fs::space(folder()).available - static_cast<std::uintmax_t>(pages) * 4096;
    std::ofstream(ballast()) << std::string(taken, 'x');
  }
  [[nodiscard]] fs::path ballast() const { return folder() / "ballast"; }

  testkit::SmallDisk disk_{folder()};
};

TEST_F(ARunOnASmallDisk, ReportsEachTextThatItLosesWhenTheDiskFills) {
  signIn();
  backend.answers(503, "");
  std::vector<std::string> kept;
  int reported = 0;
  for (int number = 0; number < (testkit::isLongForm() ? 150 : 60); ++number) {
    const std::string text = std::to_string(number) + std::string(4000, 'x');
    const ProgramResult result = processSMS(text);
    ASSERT_EQ(result.status, 0);
    ASSERT_EQ(testkit::dialogOf(result), "Saved offline - will process when connected");
    if (result.errors.empty()) {
      kept.push_back(text);
    } else {
      ASSERT_THAT(result.errors, HasSubstr("the shared store could not be written"));
      ++reported;
    }
  }
  std::cout << "kept " << kept.size() << ", reported as not stored " << reported << "\n";
  EXPECT_GT(reported, 0);
  ASSERT_TRUE(disk_.remount(0, "size=2m"));
  kept.emplace_back("there is room again");
  EXPECT_THAT(processSMS(kept.back()).errors, IsEmpty());
  std::vector<std::string> queuedTexts;
  for (const auto& item : contents().queue) queuedTexts.push_back(item.smsText);
  EXPECT_EQ(queuedTexts, kept);
  EXPECT_EQ(contents().integrity, "ok\n");
}

TEST_F(ARunOnASmallDisk, KeepsItsTextOrReportsAFailedStoreWithFewFreePages) {
  prepare(Backend::fails);
  for (int pages = 0; pages < 40; pages += step) {
    SCOPED_TRACE("free pages: " + std::to_string(pages));
    look([&](const std::string& text) {
      leavePages(pages);
      const ProgramResult result = processSMS(text);
      fs::remove(ballast());
      return result;
    });
    if (HasFailure()) break;
  }
  printCounts("nearly full disk");
  EXPECT_GT(storeFailures + refused, 0);
  EXPECT_GT(queued, 0);
}

TEST_F(ARunOnASmallDisk, CreatesTheStoreLaterWhenThereIsNoRoomYet) {
  for (int pages = 0; pages < 40; pages += step) {
    SCOPED_TRACE("free pages: " + std::to_string(pages));
    for (const auto& entry : fs::directory_iterator(folder())) fs::remove(entry);
    leavePages(pages);
    const ProgramResult result = processSMS("Paid 1");
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(testkit::dialogOf(result),
                AnyOf("Failed to access app storage", "Please open Kivo app and sign in first"));
    fs::remove(ballast());
    EXPECT_EQ(processSMS("Paid 1").output, "Please open Kivo app and sign in first\n");
  }
}

TEST_F(ARunOnASmallDisk, SurvivesAReadOnlyMountAndLeavesTheStoreUnchanged) {
  prepare(Backend::fails);
  look([&](const std::string& text) {
    EXPECT_TRUE(disk_.remount(MS_RDONLY, nullptr));
    ProgramResult result = processSMS(text);
    EXPECT_TRUE(disk_.remount(0, nullptr));
    return result;
  });
  EXPECT_EQ(contents().queue, earlier);
  printCounts("read-only disk");
}

}  // namespace
}  // namespace kivo
