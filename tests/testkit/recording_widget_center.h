// A widget center that counts its reloads.
#pragma once

#include <atomic>

#include "platform/widget_kit/widget_center.h"
#include "testkit/event_log.h"

namespace kivo::testkit {

/// Thread-safe.
class RecordingWidgetCenter : public platform::WidgetCenter {
 public:
  explicit RecordingWidgetCenter(EventLog& log) : log_(log) {}

  void reloadAllTimelines() override {
    log_.add("reload");
    ++reloads_;
  }

  [[nodiscard]] int reloads() const { return reloads_; }

 private:
  EventLog& log_;
  std::atomic<int> reloads_ = 0;
};

}  // namespace kivo::testkit
