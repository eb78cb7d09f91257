// A phone with a signed-in user: a real store in a private folder, and recording fakes of network,
// notifications and widgets.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "store/shared_store.h"
#include "testkit/event_log.h"
#include "testkit/private_folders.h"
#include "testkit/recording_notification_center.h"
#include "testkit/recording_url_session.h"
#include "testkit/recording_widget_center.h"
#include "testkit/set_clock.h"

namespace kivo::testkit {

/// The fakes are the platform objects of this process from its construction on; it must outlive
/// every task that uses them. There is one at a time. Its clock is stopped.
struct TestPhone {
  static constexpr std::string_view userId = "user-0815";
  static constexpr std::string_view supabaseUrl = "https://backend.example";
  /// 2026-01-31T09:05:07Z.
  static constexpr platform::Moment start = utc(2026, 1, 31, 9, 5, 7);

  TestPhone();

  /// A new handle; throws when the store cannot be opened.
  static SharedStore openStore();
  /// The contents of the store, as another process sees them; empty when it cannot be opened.
  static StoreContents contents();
  static std::optional<std::string> text(StoreKey key);
  static std::optional<double> number(StoreKey key);
  static void put(StoreKey key, std::string_view text);
  static void put(StoreKey key, double value);

  PrivateFolders folders;
  SetClock clock{start};
  EventLog log{contents};
  RecordingURLSession session{log};
  RecordingNotificationCenter notifications{log};
  RecordingWidgetCenter widget{log};
};

}  // namespace kivo::testkit
