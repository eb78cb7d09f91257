// Draws a text as a QR code on a terminal.
#pragma once

#include <string>

namespace kivo::server {

/// Returns `text` as a QR code of lines with half blocks, black on white in any terminal's colours,
/// with the empty border that cameras need. Empty when it is too long for one.
std::string qrCode(const std::string& text);

}  // namespace kivo::server
