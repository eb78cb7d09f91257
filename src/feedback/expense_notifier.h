// Posts local notifications about expenses. The caller composes their texts.
#pragma once

#include <string>

#include "platform/concurrency/task.h"

namespace kivo::ExpenseNotifier {

/// Adds one notification request to the notification center, if the user has fully authorized
/// notifications; otherwise does nothing. The notification appears about one second later and opens
/// the app when tapped. Suspends until the center has accepted or refused the request. Never
/// throws; failures are ignored.
platform::Task<void> post(std::string title, std::string body);
/// Does so with a notification that opens `link` when tapped.
platform::Task<void> post(std::string title, std::string body, std::string link);

}  // namespace kivo::ExpenseNotifier
