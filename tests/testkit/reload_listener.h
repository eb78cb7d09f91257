// Hears the signal that asks widgets to reload, as a program that draws them does.
#pragma once

#include <chrono>
#include <memory>

namespace kivo::testkit {

class ReloadListener {
 public:
  /// Connects to the session bus; throws std::runtime_error when there is none.
  ReloadListener();
  ~ReloadListener();
  ReloadListener(const ReloadListener&) = delete;
  ReloadListener& operator=(const ReloadListener&) = delete;

  /// Whether a reload was asked for since the last call, or is within `limit`.
  bool waitForReload(std::chrono::milliseconds limit);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace kivo::testkit
