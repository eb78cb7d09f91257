// Runs on a damaged or foreign store file.
#include <algorithm>
#include <csignal>
#include <fstream>
#include <iterator>
#include <random>

#include <sys/stat.h>

#include "surviving_run.h"
#include "testkit/raw_store.h"

namespace kivo {
namespace {

using linux_platform::ProgramResult;
namespace fs = std::filesystem;

std::string bytesOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

void writeTo(const fs::path& file, const std::string& bytes) {
  std::fstream(file, std::ios::binary | std::ios::in | std::ios::out)
      .write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

class ARunOnADamagedStore : public testkit::SurvivingRuns {
 protected:
  void SetUp() override {  // without strace
    prepare(Backend::fails);
    restoreStore();
    whole_ = bytesOf(file());
  }

  [[nodiscard]] fs::path file() const { return folders.storeFile(); }

  /// Performs a text on the current store and returns its dialog. Expects that the process does not
  /// crash and does not replace the file.
  std::string survive() {
    struct stat before {};
    struct stat after {};
    stat(file().c_str(), &before);
    const ProgramResult result = processSMS("Paid " + std::to_string(++runs));
    stat(file().c_str(), &after);
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_EQ(result.status, 0) << result.errors;
    const std::string dialog = testkit::dialogOf(result);
    EXPECT_TRUE(testkit::isStatedDialog(dialog)) << result.output;
    ++dialogs_[dialog];
    return dialog;
  }
  /// As `survive`, and expects that the file is unchanged.
  void expectRefused() {
    const std::string before = bytesOf(file());
    EXPECT_EQ(survive(), "Failed to access app storage");
    EXPECT_EQ(bytesOf(file()), before);
  }
  void printDialogs(const char* what) const {
    std::cout << what << ":\n";
    for (const auto& [dialog, times] : dialogs_)
      std::cout << "  " << times << " " << dialog << "\n";
  }

  std::string whole_;

 private:
  std::map<std::string, int> dialogs_;
};

TEST_F(ARunOnADamagedStore, CreatesANewStoreWhenTheFileIsEmpty) {
  fs::resize_file(file(), 0);
  EXPECT_EQ(survive(), "Please open Kivo app and sign in first");
  signIn();
  EXPECT_EQ(survive(), "Saved offline - will process when connected");
}

TEST_F(ARunOnADamagedStore, SurvivesATruncatedFileAndReplacesNone) {
  const std::uintmax_t step = testkit::isLongForm() ? 512 : 2560;
  for (std::uintmax_t size = 1; size < whole_.size(); size = size < 512 ? 512 : size + step) {
    SCOPED_TRACE("cut to " + std::to_string(size));
    restoreStore();
    fs::resize_file(file(), size);
    survive();
    if (HasFailure()) break;
  }
  printDialogs("cut");
}

TEST_F(ARunOnADamagedStore, SurvivesAFlippedBitAndReplacesNoFile) {
  // A changed URL names another backend or cannot be parsed, which aborts: not a matter of the
  // file.
  const std::string url = backend.url();
  std::vector<std::pair<std::size_t, std::size_t>> spared;
  for (auto place = whole_.find(url); place != std::string::npos;
       place = whole_.find(url, place + 1)) {
    spared.emplace_back(place < 24 ? 0 : place - 24, place + url.size());
  }
  ASSERT_FALSE(spared.empty());
  std::mt19937 random(20260131);
  std::uniform_int_distribution<std::size_t> anyBit(0, whole_.size() * 8 - 1);
  const int wanted = testkit::isLongForm() ? 1000 : 100;
  while (runs < wanted && !HasFailure()) {
    const std::size_t bit = anyBit(random);
    const auto covers = [&](const auto& part) {
      return part.first <= bit / 8 && bit / 8 < part.second;
    };
    if (std::any_of(spared.begin(), spared.end(), covers)) continue;
    SCOPED_TRACE("bit " + std::to_string(bit));
    std::string damaged = whole_;
    damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
    restoreStore();
    writeTo(file(), damaged);
    survive();
  }
  printDialogs("flipped bits");
}

TEST_F(ARunOnADamagedStore, RefusesAFileThatIsNotADatabaseAndKeepsIt) {
  for (const std::string& bytes : {std::string("x"), std::string("no database, but a text"),
                                   std::string(8192, '\xff'), std::string(8192, '\0')}) {
    fs::resize_file(file(), 0);
    writeTo(file(), bytes);
    expectRefused();
  }
}

TEST_F(ARunOnADamagedStore, RefusesANewerVersionOrForeignDatabaseAndKeepsIt) {
  for (const char* const change : {"PRAGMA user_version = 2", "PRAGMA user_version = -1",
                                   "PRAGMA application_id = 1", "PRAGMA application_id = 0"}) {
    SCOPED_TRACE(change);
    restoreStore();
    testkit::RawStore(file()).run(change);
    expectRefused();
  }
}

}  // namespace
}  // namespace kivo
