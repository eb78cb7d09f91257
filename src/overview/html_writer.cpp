#include "overview/html_writer.h"

#include <cmath>

#include "platform/linux/foundation/safe_text.h"

namespace kivo::overview {

// For text without control characters.
void HtmlWriter::escaped(std::string_view text) {
  for (const char byte : text) {
    switch (byte) {
      case '&':
        html_ += "&amp;";
        break;
      case '<':
        html_ += "&lt;";
        break;
      case '>':
        html_ += "&gt;";
        break;
      case '"':
        html_ += "&quot;";
        break;
      case '\'':
        html_ += "&#39;";
        break;
      default:
        html_ += byte;
    }
  }
}

HtmlWriter& HtmlWriter::text(std::string_view text) {
  escaped(linux_platform::escapedControls(text));
  return *this;
}

HtmlWriter& HtmlWriter::name(std::string_view name) {
  return markup("<bdi>").text(name).markup("</bdi>");
}

HtmlWriter& HtmlWriter::amount(std::string_view amount) {
  markup("<bdi>");
  escaped(linux_platform::escapedSentence(amount));
  return markup("</bdi>");
}

HtmlWriter& HtmlWriter::count(std::int64_t number) {
  html_ += std::to_string(number);
  return *this;
}

HtmlWriter& HtmlWriter::length(double length) {
  const long long hundredths = std::llround(length * 100);
  html_ += std::to_string(hundredths / 100);
  if (hundredths % 100 == 0) return *this;
  const std::string decimals = std::to_string(100 + hundredths % 100).substr(1);
  html_ += "." + (decimals.ends_with('0') ? decimals.substr(0, 1) : decimals);
  return *this;
}

}  // namespace kivo::overview
