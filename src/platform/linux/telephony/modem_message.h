// One text message as a modem holds it. Not a draft, a sent message or a report.
#pragma once

#include <string>

namespace kivo::linux_platform {

/// A message that was received from the network and is complete. Texts are valid UTF-8 without NUL.
struct ModemMessage {
  enum class Arrival {
    /// It came from the network just now.
    heard,
    /// The modem held it when it was looked at.
    found,
  };

  /// The sender: a phone number, or a name.
  std::string number;
  /// Not empty.
  std::string text;
  /// When the network took it, as the modem writes it; may be empty.
  std::string timestamp;
  Arrival arrival = Arrival::found;
};

}  // namespace kivo::linux_platform
