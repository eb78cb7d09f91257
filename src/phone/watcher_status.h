// Describes whether the messages of the named senders are handed on.
#pragma once

#include <string>

namespace kivo::WatcherStatus {

/// Returns one line: how many senders are named, whether kivo-sms-watcher runs, and otherwise what
/// to do. Asks the session bus and then, where the watcher does not run, the service manager;
/// blocks for at most 1 s each, also when they do not answer or do not exist.
std::string sentence();

}  // namespace kivo::WatcherStatus
