// The other party that a bank message names. Does not know whether it is known to anyone.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "demo/message_text.h"

namespace kivo {

/// Which side of the movement is looked for.
enum class Payee { whoIsPaid, whoPaid };

/// The name of the other party as the message writes it, or none when it names none.
std::optional<std::string> payeeIn(const MessageText& text, Payee side);

/// `name` on one line, without quotes, blanks and marks around it, 60 bytes at most.
std::string shownPayee(std::string_view name);

}  // namespace kivo
