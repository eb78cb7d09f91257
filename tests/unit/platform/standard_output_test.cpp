#include "platform/foundation/standard_output.h"

#include <algorithm>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kivo::platform {
namespace {

class StandardOutput : public testing::Test {
 protected:
  StandardOutput() : before_(dup(STDOUT_FILENO)) {}
  ~StandardOutput() override {
    dup2(before_, STDOUT_FILENO);
    close(before_);
  }

  /// The bytes that `writing` writes to standard output, a pipe whose ends have `flags`.
  static std::string captured(const std::function<void()>& writing, int flags = 0) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
    fcntl(ends[1], F_SETFL, flags);
    dup2(ends[1], STDOUT_FILENO);
    close(ends[1]);
    std::string output;
    std::thread reader([&output, end = ends[0]] {
      char piece[4096];
      for (ssize_t size = 0; (size = read(end, piece, sizeof piece)) > 0;) {
        output.append(piece, static_cast<std::size_t>(size));
      }
    });
    writing();
    close(STDOUT_FILENO);  // the end of the reader's pipe
    reader.join();
    close(ends[0]);
    return output;
  }

 private:
  int before_;
};

TEST_F(StandardOutput, ReceivesTheLineAndALineFeed) {
  EXPECT_EQ(captured([] {
              printLine("first");
              printLine("");
              printLine("has\nbreaks");
            }),
            "first\n\nhas\nbreaks\n");
}

TEST_F(StandardOutput, ReceivesALineLongerThanAPipeBuffer) {
  const std::string line(1 << 20, 'x');
  EXPECT_TRUE(captured([&] { printLine(line); }) == line + "\n");
}

TEST_F(StandardOutput, ReceivesAWholeLineWhenItIsNonBlocking) {
  const std::string line(1 << 20, 'x');
  EXPECT_TRUE(captured([&] { printLine(line); }, O_NONBLOCK) == line + "\n");
}

TEST_F(StandardOutput, ReceivesLinesOfSeveralThreadsWhole) {
  const std::string output = captured([] {
    std::vector<std::thread> callers;
    for (char letter = 'a'; letter < 'e'; ++letter) {
      callers.emplace_back([letter] {
        for (int i = 0; i < 20; ++i) printLine(std::string(30000, letter));
      });
    }
    for (std::thread& caller : callers) caller.join();
  });
  ASSERT_EQ(output.size(), 80u * 30001);
  for (std::size_t begin = 0; begin < output.size(); begin += 30001) {
    const std::string line = output.substr(begin, 30001);
    ASSERT_TRUE(line == std::string(30000, line.front()) + "\n") << "line at " << begin;
  }
}

TEST_F(StandardOutput, CanBeClosedOrFullWithoutAFailure) {
  close(STDOUT_FILENO);
  printLine("into nothing");
  ASSERT_EQ(open("/dev/full", O_WRONLY | O_CLOEXEC), STDOUT_FILENO);
  printLine("into what is full");
  EXPECT_EQ(captured([] { printLine("heard again"); }), "heard again\n");
}

}  // namespace
}  // namespace kivo::platform
