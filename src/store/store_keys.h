// The identifiers that app, widget and extension share: app group, bundle and keys of the store.
#pragma once

#include <string_view>

namespace kivo {

/// The app group whose store the three share.
inline constexpr std::string_view appGroup = "group.app.kivo.expenses";

/// The extension's bundle identifier. Notifications are posted under it.
inline constexpr std::string_view extensionBundle = "app.kivo.expenses.intents";

/// The name of a value in the shared store.
struct StoreKey {
  std::string_view name;
};

namespace StoreKeys {

// Written by the main app.
inline constexpr StoreKey userId{"userId"};
inline constexpr StoreKey supabaseUrl{"supabaseUrl"};
inline constexpr StoreKey currency{"currency"};

// The offline queue and its drain.
inline constexpr StoreKey pendingSmsQueue{"pendingSmsQueue"};
inline constexpr StoreKey pendingSmsQueueCount{"pendingSmsQueueCount"};
inline constexpr StoreKey smsQueueDrainLock{"smsQueueDrainLock"};

// The widget's figures.
inline constexpr StoreKey todayDateKey{"todayDateKey"};
inline constexpr StoreKey todayTotal{"todayTotal"};
inline constexpr StoreKey todayCount{"todayCount"};
inline constexpr StoreKey monthlyTotal{"monthlyTotal"};

}  // namespace StoreKeys
}  // namespace kivo
