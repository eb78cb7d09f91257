// A received text message as a modem stores it.
#pragma once

#include <string>

namespace kivo {

/// A complete message from the network. Texts are valid UTF-8 without NUL.
struct ModemMessage {
  /// The sender: a phone number, or a name.
  std::string number;
  /// Not empty.
  std::string text;
  /// When the network accepted it, as the modem reports it; may be empty.
  std::string timestamp;
};

}  // namespace kivo
