// Makes the character references of an XML file such that an XML parser takes them.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace kivo::old_messages {

/// A filter for the bytes of a file, in pieces of any length. Keeps all line breaks.
///
/// Android writes an emoji as two references to surrogates, which XML forbids. A pair becomes one
/// reference to its character; a surrogate alone, and any other reference to a character that XML
/// forbids, becomes U+FFFD. Of each run of letters, digits, +, / and = only the first `longestRun`
/// bytes stay: a picture in Base64 is not needed, and a parser would keep all of it in memory.
class XmlReferences {
 public:
  static constexpr std::size_t longestRun = std::size_t{1} << 20U;

  /// Returns what the next `bytes` become. A reference at their end is kept for the next call.
  std::string filtered(std::string_view bytes);
  /// Returns what is left at the end of the file.
  std::string rest();

 private:
  void put(char byte, std::string& made);
  void putReference(std::string& made);
  void putCharacter(char32_t character, std::string& made);
  void endSurrogate(std::string& made);
  void endReference(std::string& made);

  // The beginning of a reference whose end has not come.
  std::string reference_;
  // The first half of a pair that was read last.
  std::optional<char32_t> highSurrogate_;
  std::size_t run_ = 0;
};

}  // namespace kivo::old_messages
