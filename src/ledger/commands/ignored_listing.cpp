#include "ledger/commands/ignored_listing.h"

#include <algorithm>

#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/terminal/text_columns.h"

namespace kivo::ledger {

using book::IgnoredMessage;
using linux_platform::paddedTo;

namespace {

std::string front(const std::string& number, const std::string& date, const std::string& reason) {
  constexpr std::size_t numberWidth = 8;
  constexpr std::size_t dateWidth = 12;
  return paddedTo(numberWidth, number) + paddedTo(dateWidth, date) + reason + "\n";
}

// The message in one paragraph.
std::string shownText(std::string text) {
  std::replace_if(
      text.begin(), text.end(), [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
  return linux_platform::escapedControls(text);
}

}  // namespace

std::string IgnoredListing::list(const std::vector<IgnoredMessage>& messages, std::size_t width) {
  std::string lines = front("NUMBER", "DATE", "REASON");
  for (const IgnoredMessage& message : messages) {
    const bool wasDeclined = message.reason == IgnoredMessage::Reason::declined;
    lines += front(std::to_string(message.number), message.date.text(),
                   wasDeclined ? "declined" : "no transaction");
    lines += linux_platform::wrappedTo(width, shownText(message.text), "  ");
  }
  return lines;
}

platform::JSONEncoder IgnoredListing::json(const IgnoredMessage& message) {
  platform::JSONEncoder object;
  object.encodeString("number", std::to_string(message.number));
  object.encodeString("date", message.date.text());
  object.encodeString("text", message.text);
  object.encodeString("reason", reasonText(message.reason));
  return object;
}

}  // namespace kivo::ledger
