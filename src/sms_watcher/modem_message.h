// One text message as a modem holds it. Not a draft, a sent message or a report.
#pragma once

#include <string>

namespace kivo {

/// A message that was received from the network and is complete. Texts are valid UTF-8 without NUL.
struct ModemMessage {
  /// The sender: a phone number, or a name.
  std::string number;
  /// Not empty.
  std::string text;
  /// When the network took it, as the modem writes it; may be empty.
  std::string timestamp;
};

}  // namespace kivo
