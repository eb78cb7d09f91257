#include "server/qr_code.h"

#include <array>
#include <memory>

#include <qrencode.h>

namespace kivo::server {

std::string qrCode(const std::string& text) {
  const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
      QRcode_encodeString8bit(text.c_str(), 0, QR_ECLEVEL_M), QRcode_free);
  if (code == nullptr) return "";
  constexpr int border = 4;
  const auto isDark = [&](int row, int column) {
    const bool isInside = row >= 0 && row < code->width && column >= 0 && column < code->width;
    return isInside && (code->data[row * code->width + column] & 1U) != 0;
  };
  // By the upper and the lower half of a character.
  constexpr std::array<const char*, 4> blocks = {" ", "▄", "▀", "█"};
  std::string lines;
  for (int row = -border; row < code->width + border; row += 2) {
    lines += "\x1b[30;107m";
    for (int column = -border; column < code->width + border; ++column) {
      lines += blocks[(isDark(row, column) ? 2U : 0U) + (isDark(row + 1, column) ? 1U : 0U)];
    }
    lines += "\x1b[0m\n";
  }
  return lines;
}

}  // namespace kivo::server
