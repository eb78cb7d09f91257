// A run of an intent that may still be in progress.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "intents/process_sms_intent.h"
#include "testkit/task_runner.h"

namespace kivo {

/// Performs an intent with its parameters set, on the executor of the tests. The destructor waits
/// for its end.
class StartedRun {
 public:
  explicit StartedRun(std::unique_ptr<platform::AppIntent> intent)
      : intent_(std::move(intent)), running_(start()) {}
  /// Performs a new ProcessSMSIntent with `text`.
  explicit StartedRun(std::string text) : StartedRun(processing(std::move(text))) {}
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
  static std::unique_ptr<platform::AppIntent> processing(std::string text) {
    auto intent = std::make_unique<ProcessSMSIntent>();
    intent->smsText.setFromText(std::move(text));
    return intent;
  }
  linux_platform::RunningTask start() {
    return testkit::executor().start(testkit::keepResult(intent_->perform(), &result_));
  }

  std::unique_ptr<platform::AppIntent> intent_;
  std::optional<platform::IntentResult> result_;
  linux_platform::RunningTask running_;
};

}  // namespace kivo
