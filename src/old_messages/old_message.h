// A received message from a file of old messages.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/date.h"
#include "platform/linux/foundation/failure.h"

namespace kivo::old_messages {

/// Texts are valid UTF-8; invalid bytes of the file are repaired.
struct OldMessage {
  /// The name or number as the file has it; empty when it has none.
  std::string sender;
  /// When it was received; absent when the file has no time that can be read.
  std::optional<platform::Moment> moment;
  std::string text;

  bool operator==(const OldMessage&) const = default;
};

/// Takes the messages of a file in its order.
using MessageUse = std::function<void(OldMessage)>;

/// Returns the next bytes of a file, which stay valid until the next call; none at its end. Throws
/// BrokenFile when they cannot be read.
using ByteSource = std::function<std::string_view()>;

/// A file cannot be read beyond a place, which `what` names. The messages before it were passed on.
class BrokenFile : public linux_platform::Failure {
 public:
  using linux_platform::Failure::Failure;
};

/// A file is not of the format in which it was read. No message was passed on.
class OtherFile : public linux_platform::Failure {
 public:
  using linux_platform::Failure::Failure;
};

}  // namespace kivo::old_messages
