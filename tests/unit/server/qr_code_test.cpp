#include "server/qr_code.h"

#include <algorithm>
#include <string>

#include <gtest/gtest.h>

namespace kivo::server {
namespace {

// The number of characters of one line without its colours.
std::size_t widthOf(const std::string& line) {
  const std::size_t begin = line.find('m') + 1;
  const std::string shown = line.substr(begin, line.rfind('\x1b') - begin);
  return static_cast<std::size_t>(
      std::ranges::count_if(shown, [](unsigned char byte) { return (byte & 0xC0U) != 0x80U; }));
}

TEST(AQrCode, IsASquareWithABorder) {
  const std::string code = qrCode("https://kivo.example/p/0123456789abcdef0123456789abcdef");
  const auto lines = std::ranges::count(code, '\n');
  const std::size_t width = widthOf(code.substr(0, code.find('\n')));
  EXPECT_EQ(width, 41U);  // version 4: 33 modules and a border of four
  EXPECT_EQ(lines, 21);   // two rows of modules each
  const std::string first = code.substr(0, code.find('\n'));
  EXPECT_EQ(first, "\x1b[30;107m" + std::string(width, ' ') + "\x1b[0m");
}

TEST(AQrCode, IsEmptyForATextThatIsTooLong) { EXPECT_EQ(qrCode(std::string(5'000, 'a')), ""); }

}  // namespace
}  // namespace kivo::server
