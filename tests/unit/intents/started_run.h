// A run of the intent under test that may still be under way. Answers nothing itself.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "intents/process_sms_intent.h"
#include "testkit/task_runner.h"

namespace kivo {

/// Performs a fresh ProcessSMSIntent with `text` on the tests' executor. Its end is waited for.
class StartedRun {
 public:
  explicit StartedRun(std::string text) : running_(start(std::move(text))) {}
  ~StartedRun() { running_.wait(); }
  StartedRun(const StartedRun&) = delete;
  StartedRun& operator=(const StartedRun&) = delete;

  void cancel() { running_.cancel(); }
  bool hasEnded() { return running_.waitFor(std::chrono::milliseconds(0)); }
  /// Waits for the run's dialog.
  std::string dialog() {
    running_.wait();
    return result_->dialog.text;
  }

 private:
  linux_platform::RunningTask start(std::string text) {
    intent_.smsText.setFromText(std::move(text));
    return testkit::executor().start(testkit::keepResult(intent_.perform(), &result_));
  }

  ProcessSMSIntent intent_;
  std::optional<platform::IntentResult> result_;
  linux_platform::RunningTask running_;
};

}  // namespace kivo
