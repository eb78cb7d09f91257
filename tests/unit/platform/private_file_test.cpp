#include "platform/linux/store/private_file.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include "platform/linux/foundation/failure.h"
#include "testkit/private_folders.h"

namespace kivo::linux_platform {
namespace {

namespace fs = std::filesystem;

class APrivateFile : public ::testing::Test {
 protected:
  [[nodiscard]] fs::path path() const { return folder_.path() / "report.html"; }

  [[nodiscard]] std::string content() const {
    std::ifstream file(path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  // Why writing fails; nullopt when it does not.
  static std::optional<std::string> failureOf(const fs::path& path, const std::string& text) {
    try {
      writePrivateFile(path, text);
      return std::nullopt;
    } catch (const Failure& failure) {
      return failure.what();
    }
  }

  [[nodiscard]] std::ptrdiff_t filesInFolder() const {
    return std::distance(fs::directory_iterator(folder_.path()), fs::directory_iterator());
  }

  testkit::TemporaryFolder folder_;
};

TEST_F(APrivateFile, HoldsTheTextAndIsReadableByItsOwnerAlone) {
  const mode_t before = umask(0);
  writePrivateFile(path(), std::string("a\0b\n", 4));
  umask(before);
  EXPECT_EQ(content(), std::string("a\0b\n", 4));
  EXPECT_EQ(fs::status(path()).permissions(), fs::perms(0600));
}

TEST_F(APrivateFile, ReplacesAFileAndItsPermissionsAndLeavesNoOther) {
  std::ofstream(path()) << "a longer text of earlier";
  fs::permissions(path(), fs::perms(0644));
  writePrivateFile(path(), "new");
  EXPECT_EQ(content(), "new");
  EXPECT_EQ(fs::status(path()).permissions(), fs::perms(0600));
  EXPECT_EQ(filesInFolder(), 1);
}

TEST_F(APrivateFile, LeavesAnotherNameOfTheReplacedFileAlone) {
  std::ofstream(folder_.path() / "kept") << "old";
  fs::create_hard_link(folder_.path() / "kept", path());
  writePrivateFile(path(), "new");
  EXPECT_EQ(fs::file_size(folder_.path() / "kept"), 3);
  EXPECT_EQ(fs::hard_link_count(path()), 1);
}

TEST_F(APrivateFile, IsWrittenInTheWorkingFolderWhenNoFolderIsNamed) {
  const fs::path before = fs::current_path();
  fs::current_path(folder_.path());
  writePrivateFile("report.html", "new");
  fs::current_path(before);
  EXPECT_EQ(content(), "new");
}

TEST_F(APrivateFile, DoesNotReplaceAFolderALinkOrADevice) {
  fs::create_directory(folder_.path() / "folder");
  std::ofstream(folder_.path() / "target") << "theirs";
  fs::create_symlink(folder_.path() / "target", folder_.path() / "link");
  ASSERT_EQ(mkfifo((folder_.path() / "pipe").c_str(), 0600), 0);
  for (const char* const name : {"folder", "link", "pipe"}) {
    EXPECT_EQ(failureOf(folder_.path() / name, "new"), "it is not a plain file") << name;
  }
  EXPECT_TRUE(fs::is_symlink(folder_.path() / "link"));
  EXPECT_EQ(fs::file_size(folder_.path() / "target"), 6);
  EXPECT_EQ(filesInFolder(), 4);
}

TEST_F(APrivateFile, SaysWhyItCannotBeWritten) {
  EXPECT_EQ(failureOf(folder_.path() / "missing" / "report.html", "new"),
            "No such file or directory");
  EXPECT_EQ(filesInFolder(), 0);
}

TEST_F(APrivateFile, KeepsTheOldTextWhenTheNewOneDoesNotFit) {
  std::ofstream(path()) << "old";
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto previous = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit small{1000, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  const auto failure = failureOf(path(), std::string(2000, 'x'));
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, previous);
  EXPECT_EQ(failure, "File too large");
  EXPECT_EQ(content(), "old");
  EXPECT_EQ(filesInFolder(), 1);
}

}  // namespace
}  // namespace kivo::linux_platform
