// Refusals of kivo-ledger: to forget texts unasked, and to use folders that are not private.
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/file.h>
#include <unistd.h>

#include "platform/linux/process/child_process.h"
#include "platform/linux/process/descriptor.h"
#include "testkit/private_ledger.h"

namespace kivo::testkit {
namespace {

namespace fs = std::filesystem;
using linux_platform::ChildProcess;
using linux_platform::ProgramCall;
using linux_platform::ProgramResult;
using namespace std::chrono_literals;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class ACarefulLedger : public testing::Test {
 protected:
  static std::string program() { return linux_platform::programFolder() / "kivo-ledger"; }
  static ProgramResult run(std::vector<std::string> arguments) {
    ChildProcess process({.program = program(), .arguments = std::move(arguments)});
    return process.wait(10s);
  }
  // Runs it on a pseudo-terminal, on which `typed` is typed.
  static ProgramResult onTerminal(const std::string& arguments, const std::string& typed) {
    return linux_platform::runProgram({.program = "script",
                                       .arguments = {"--quiet", "--return", "--command",
                                                     program() + " " + arguments, "/dev/null"},
                                       .input = typed});
  }
  // A book with a message, under the ID 1.
  void book() {
    const auto server = ledger_.start();
    ASSERT_EQ(ledger_.post("KEY-1").status(), 200);
  }
  static bool hasText() { return run({"show", "1"}).output.find(purchase) != std::string::npos; }

  [[nodiscard]] fs::path home() const { return ledger_.folders().home(); }
  // The folder of the report and of the socket.
  [[nodiscard]] fs::path folder() const { return home() / "run" / "kivo"; }
  // Expects that neither a report nor a socket is made in the folder.
  void expectRefused(const std::string& reason) {
    for (const auto& [command, advice] :
         {std::pair("report", "name a file by --output"),
          std::pair("serve", "name a socket in a folder of your own by --socket")}) {
      const ProgramResult refused = run({command});
      EXPECT_EQ(refused.status, 1) << command;
      EXPECT_EQ(refused.errors, "kivo-ledger: cannot use the folder " + folder().string() + ": " +
                                    reason + "; " + advice + "\n");
    }
    EXPECT_TRUE(fs::is_empty(folder()));
  }

  PrivateLedger ledger_;
};

TEST_F(ACarefulLedger, ForgetsNoTextWithoutATerminalOrAYes) {
  book();
  const ProgramResult refused = run({"forget-texts"});
  EXPECT_EQ(refused.status, 64);
  EXPECT_EQ(refused.output, "");
  EXPECT_EQ(refused.errors,
            "kivo-ledger: there is no terminal to ask at; --yes forgets without asking\n");
  EXPECT_TRUE(hasText());
  EXPECT_EQ(run({"forget-texts", "--yes"}).output, "Forgot 1 text.\n");
  EXPECT_FALSE(hasText());
}

TEST_F(ACarefulLedger, AsksBeforeItForgetsTexts) {
  book();
  const std::string question =
      "Remove the texts of all messages from the book, and all ignored messages, for ever? [y/N] ";
  for (const char* const typed : {"n\n", "\n", "\x04"}) {
    const ProgramResult kept = onTerminal("forget-texts", typed);
    EXPECT_EQ(kept.status, 1);
    EXPECT_THAT(kept.output, HasSubstr(question));
    EXPECT_THAT(kept.output, EndsWith("kivo-ledger: nothing was forgotten\r\n"));
    EXPECT_TRUE(hasText());
  }
  EXPECT_THAT(onTerminal("forget-texts", "y\n").output, EndsWith("Forgot 1 text.\r\n"));
  EXPECT_FALSE(hasText());
}

TEST_F(ACarefulLedger, UsesNoFolderThatOthersCanWrite) {
  fs::create_directories(folder());
  fs::permissions(folder(), fs::perms(0777));
  expectRefused("other users can write to it");
}

TEST_F(ACarefulLedger, UsesNoFolderOfAnotherUser) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder to another user";
  fs::create_directories(folder());
  ASSERT_EQ(chown(folder().c_str(), 65534, 65534), 0);
  expectRefused("it belongs to another user");
}

TEST_F(ACarefulLedger, FollowsNoLinkInPlaceOfItsFolder) {
  fs::create_directories(home() / "elsewhere");
  fs::create_directories(folder().parent_path());
  fs::create_directory_symlink(home() / "elsewhere", folder());
  expectRefused("it is a symbolic link");
}

TEST_F(ACarefulLedger, ServesInASharedFolder) {
  const fs::path shared = home() / "shared";
  fs::create_directories(shared);
  fs::permissions(shared, fs::perms(01777));
  const fs::path socket = shared / "ledger.sock";
  const ChildProcess server({.program = program(), .arguments = {"serve", "--socket", socket}});
  EXPECT_TRUE(eventually([&] { return fs::is_socket(socket); }));
}

TEST_F(ACarefulLedger, WaitsForNoLockOfASharedFolder) {
  const fs::path shared = home() / "shared";
  fs::create_directories(shared);
  fs::permissions(shared, fs::perms(01777));
  const linux_platform::Descriptor locked(open(shared.c_str(), O_RDONLY | O_CLOEXEC));
  ASSERT_EQ(flock(locked.number(), LOCK_EX), 0);
  const ProgramResult refused = run({"serve", "--socket", shared / "ledger.sock"});
  EXPECT_EQ(refused.status, 1);
  EXPECT_EQ(refused.errors, "kivo-ledger: " + shared.string() +
                                " is locked by another program; try again, or name a socket in a "
                                "folder of your own by --socket\n");
}

}  // namespace
}  // namespace kivo::testkit
