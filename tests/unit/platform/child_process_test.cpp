#include "platform/linux/process/child_process.h"

#include <csignal>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace kivo::linux_platform {
namespace {

using namespace std::chrono_literals;

TEST(AChildProcess, ReturnsItsOutputErrorsAndStatus) {
  const auto result =
      runProgram({.program = "sh", .arguments = {"-c", "echo out; echo err >&2; exit 7"}});
  EXPECT_EQ(result.output, "out\n");
  EXPECT_EQ(result.errors, "err\n");
  EXPECT_EQ(result.status, 7);
}

TEST(AChildProcess, ReceivesAllItsInput) {
  const std::string megabyte(1 << 20, 'x');
  EXPECT_EQ(runProgram({.program = "cat", .input = megabyte}).output, megabyte);
}

TEST(AChildProcess, CanEndWithoutReadingItsInput) {
  const std::string megabyte(1 << 20, 'x');
  EXPECT_EQ(runProgram({.program = "true", .input = megabyte}).status, 0);
}

TEST(AChildProcess, SeesTheChangedEnvironment) {
  const auto result = runProgram({.program = "sh",
                                  .arguments = {"-c", "echo ${HOME-none} $ADDED"},
                                  .environment = {{"HOME", std::nullopt}, {"ADDED", "here"}}});
  EXPECT_EQ(result.output, "none here\n");
}

TEST(AChildProcess, InheritsOnlyTheStandardStreams) {
  const int opened = fcntl(STDERR_FILENO, F_DUPFD, 100);  // stays open on exec
  const std::string question = "test -e /proc/$$/fd/" + std::to_string(opened) + " && echo open";
  const auto result = runProgram({.program = "sh", .arguments = {"-c", question + "; echo asked"}});
  close(opened);
  EXPECT_GE(opened, 100);
  EXPECT_EQ(result.output, "asked\n");
}

TEST(AChildProcess, IsKilledAtItsTimeout) {
  EXPECT_EQ(runProgram({.program = "sleep", .arguments = {"60"}}, 50ms).status, 128 + SIGKILL);
}

TEST(AChildProcess, FailsWhenTheProgramDoesNotExist) {
  EXPECT_THROW(runProgram({.program = "/nonexistent/program"}), std::system_error);
}

}  // namespace
}  // namespace kivo::linux_platform
