#include "old_messages/xml_references.h"

#include <charconv>

namespace kivo::old_messages {
namespace {

// "&#x10FFFF;" with some leading zeros.
constexpr std::size_t longestReference = 32;
constexpr char32_t replacement = 0xFFFD;

bool isHigh(char32_t character) { return character >= 0xD800 && character <= 0xDBFF; }
bool isLow(char32_t character) { return character >= 0xDC00 && character <= 0xDFFF; }

bool isInXml(char32_t character) {
  if (character < 0x20) return character == '\t' || character == '\n' || character == '\r';
  if (isHigh(character) || isLow(character)) return false;
  return character != 0xFFFE && character != 0xFFFF && character <= 0x10FFFF;
}

bool isLetterOrDigit(char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') ||
         (byte >= 'A' && byte <= 'Z');
}

// The number of a reference such as "&#55357;" or "&#xD83D;"; absent for one by name. A number that
// is too large is one that XML forbids.
std::optional<char32_t> numberOf(std::string_view reference) {
  if (!reference.starts_with("&#")) return std::nullopt;
  reference = reference.substr(2, reference.size() - 3);
  const bool isHexadecimal = reference.starts_with('x');
  if (isHexadecimal) reference.remove_prefix(1);
  std::uint32_t number = 0;
  const char* const end = reference.data() + reference.size();
  const auto read = std::from_chars(reference.data(), end, number, isHexadecimal ? 16 : 10);
  if (reference.empty() || read.ptr != end) return std::nullopt;
  return read.ec == std::errc() ? char32_t{number} : char32_t{0};
}

}  // namespace

void XmlReferences::endSurrogate(std::string& made) {
  if (!highSurrogate_) return;
  highSurrogate_.reset();
  putCharacter(replacement, made);
}

void XmlReferences::putCharacter(char32_t character, std::string& made) {
  made += "&#" + std::to_string(static_cast<std::uint32_t>(character)) + ";";
}

void XmlReferences::put(char byte, std::string& made) {
  endSurrogate(made);
  const bool isOfRun = isLetterOrDigit(byte) || byte == '+' || byte == '/' || byte == '=';
  run_ = isOfRun ? run_ + 1 : 0;
  if (run_ <= longestRun) made += byte;
}

// Ends what looked like a reference and is none.
void XmlReferences::endReference(std::string& made) {
  for (const char byte : reference_) put(byte, made);
  reference_.clear();
}

void XmlReferences::putReference(std::string& made) {
  const auto number = numberOf(reference_);
  if (!number) return endReference(made);
  reference_.clear();
  run_ = 0;
  if (isLow(*number) && highSurrogate_) {
    const char32_t high = *highSurrogate_;
    highSurrogate_.reset();
    return putCharacter(0x10000 + ((high - 0xD800) << 10U) + (*number - 0xDC00), made);
  }
  endSurrogate(made);
  if (isHigh(*number)) {
    highSurrogate_ = *number;
  } else {
    putCharacter(isInXml(*number) ? *number : replacement, made);
  }
}

std::string XmlReferences::filtered(std::string_view bytes) {
  std::string made;
  made.reserve(bytes.size() + longestReference);
  for (const char byte : bytes) {
    if (byte == '&') {
      endReference(made);
      reference_ = byte;
    } else if (reference_.empty()) {
      put(byte, made);
    } else {
      reference_ += byte;
      if (byte == ';') {
        putReference(made);
      } else if (reference_.size() > longestReference || !(isLetterOrDigit(byte) || byte == '#')) {
        endReference(made);
      }
    }
  }
  return made;
}

std::string XmlReferences::rest() {
  std::string made;
  endReference(made);
  endSurrogate(made);
  return made;
}

}  // namespace kivo::old_messages
