// Writes HTML, and is the only place where text becomes part of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kivo::overview {

/// Markup comes from literals alone; each other text is escaped, control characters are shown as
/// escapes such as \n, and bytes that are not UTF-8 become U+FFFD. So no text ends its element, and
/// none changes the order of what is beside it. Texts fit in elements and in quoted attributes.
class HtmlWriter {
 public:
  template <std::size_t size>
  HtmlWriter& markup(const char (&literal)[size]) {
    html_.append(literal, size - 1);
    return *this;
  }
  /// Writes text in the direction of the page.
  HtmlWriter& text(std::string_view text);
  /// Writes a name from a message, isolated, in the direction of its script.
  HtmlWriter& name(std::string_view name);
  /// Writes an amount in the device's locale, isolated, since it may run from right to left.
  HtmlWriter& amount(std::string_view amount);
  HtmlWriter& count(std::int64_t number);
  /// Writes a length with two decimals at most: "12.5".
  HtmlWriter& length(double length);

  [[nodiscard]] const std::string& html() const { return html_; }

 private:
  void escaped(std::string_view text);

  std::string html_;
};

}  // namespace kivo::overview
