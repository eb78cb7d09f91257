// The commands of kivo-phone that name whose messages are handed on. Hands on none.
#pragma once

#include <string>

namespace kivo::WatchCommand {

// Each yields the exit status, and says on standard error why it could do nothing. None of them
// overwrites a settings file that cannot be read.

/// Names `sender` in the settings, unless it is named there; blanks around it do not count. 64 for
/// one that can be no sender.
int add(const std::string& sender);

/// Takes `sender` out of the settings. 1 when it is not named there.
int remove(const std::string& sender);

/// Prints whom the settings name, a line each, with control characters escaped on a terminal.
int list();

}  // namespace kivo::WatchCommand
