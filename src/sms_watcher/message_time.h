// Parses the time at which a message was sent, as a modem reports it.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/date.h"

namespace kivo {

/// Parses an ISO 8601 time to the second with the offset Z, +HH:MM, +HHMM or +HH; a missing offset
/// means UTC. Returns nullopt for anything else.
std::optional<platform::Moment> momentSent(std::string timestamp);

}  // namespace kivo
