// Tells the person by a local notification what has just been done. Composes no text.
#pragma once

#include <string>

#include "platform/concurrency/task.h"

namespace kivo::ExpenseNotifier {

/// Hands one notification, which opens the app when tapped and is shown about a second later, to
/// the notification center, if the person has fully authorized notifications; else does nothing.
/// Suspends until the center has taken or refused it. Never throws; a failure leaves no trace.
platform::Task<void> post(std::string title, std::string body);

}  // namespace kivo::ExpenseNotifier
