// When a modem says that a message was sent. Does not check its clock.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/date.h"

namespace kivo {

/// The moment of an ISO 8601 time to the second, whose offset may be Z, +HH:MM, +HHMM or +HH as
/// modems write it, or missing, which counts as UTC. None for anything else.
std::optional<platform::Moment> momentSent(std::string timestamp);

}  // namespace kivo
