#include "book/ignored_message.h"

namespace kivo::book {

const char* reasonText(IgnoredMessage::Reason reason) {
  return reason == IgnoredMessage::Reason::declined ? "declined" : "not_a_transaction";
}

std::optional<IgnoredMessage::Reason> reasonFromText(std::string_view text) {
  for (const auto reason :
       {IgnoredMessage::Reason::declined, IgnoredMessage::Reason::notATransaction}) {
    if (text == reasonText(reason)) return reason;
  }
  return std::nullopt;
}

}  // namespace kivo::book
