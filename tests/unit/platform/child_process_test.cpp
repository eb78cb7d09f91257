#include "platform/linux/process/child_process.h"

#include <csignal>

#include <gtest/gtest.h>
#include <unistd.h>

namespace kivo::linux_platform {
namespace {

using namespace std::chrono_literals;

TEST(AChildProcess, YieldsItsOutputErrorsAndStatus) {
  const auto result =
      runProgram({.program = "sh", .arguments = {"-c", "echo out; echo err >&2; exit 7"}});
  EXPECT_EQ(result.output, "out\n");
  EXPECT_EQ(result.errors, "err\n");
  EXPECT_EQ(result.status, 7);
}

TEST(AChildProcess, IsFedAllOfItsInput) {
  const std::string megabyte(1 << 20, 'x');
  EXPECT_EQ(runProgram({.program = "cat", .input = megabyte}).output, megabyte);
}

TEST(AChildProcess, MayEndWithoutReadingItsInput) {
  const std::string megabyte(1 << 20, 'x');
  EXPECT_EQ(runProgram({.program = "true", .input = megabyte}).status, 0);
}

TEST(AChildProcess, SeesTheChangedEnvironment) {
  const auto result = runProgram({.program = "sh",
                                  .arguments = {"-c", "echo ${HOME-none} $ADDED"},
                                  .environment = {{"HOME", std::nullopt}, {"ADDED", "here"}}});
  EXPECT_EQ(result.output, "none here\n");
}

TEST(AChildProcess, InheritsNoFileButItsStreams) {
  const int opened = dup(STDERR_FILENO);  // a descriptor that stays open on exec
  const auto result = runProgram({.program = "sh", .arguments = {"-c", "ls /proc/$$/fd | wc -l"}});
  close(opened);
  EXPECT_EQ(result.output, "3\n");
}

TEST(AChildProcess, IsKilledWhenItTakesTooLong) {
  EXPECT_EQ(runProgram({.program = "sleep", .arguments = {"60"}}, 50ms).status, 128 + SIGKILL);
}

TEST(AChildProcess, ThatDoesNotExistIsAnError) {
  EXPECT_THROW(runProgram({.program = "/nonexistent/program"}), std::system_error);
}

}  // namespace
}  // namespace kivo::linux_platform
