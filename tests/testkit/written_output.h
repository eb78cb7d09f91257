// Captures the output of this process.
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

/// Performs `action` and returns its output on standard output and standard error. A check that
/// fails inside `action` would be hidden: check afterwards.
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
