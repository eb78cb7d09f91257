// What this process writes while a test has it do something. Hides nothing of the time after it.
#pragma once

#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace kivo::testkit {

struct WrittenOutput {
  std::string out;
  std::string err;

  bool operator==(const WrittenOutput&) const = default;
};

/// Does `action` and yields what was written to standard output and standard error meanwhile. A
/// check that fails inside `action` would go unseen: check afterwards.
template <typename Action>
WrittenOutput writtenBy(Action&& action) {
  ::testing::internal::CaptureStdout();
  ::testing::internal::CaptureStderr();
  std::forward<Action>(action)();
  std::string out = ::testing::internal::GetCapturedStdout();
  std::string err = ::testing::internal::GetCapturedStderr();
  return {std::move(out), std::move(err)};
}

}  // namespace kivo::testkit
