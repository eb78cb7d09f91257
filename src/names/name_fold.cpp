#include "names/name_fold.h"

#include <cstdint>
#include <stdexcept>

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

namespace kivo::names {
namespace {

using Instance = const icu::Normalizer2* (*)(UErrorCode&);

const icu::Normalizer2& loaded(Instance instance) {
  UErrorCode status = U_ZERO_ERROR;
  const icu::Normalizer2* const normalizer = instance(status);
  if (U_FAILURE(status)) throw std::runtime_error("ICU's data for names cannot be read");
  return *normalizer;
}

const icu::Normalizer2& caseAndWidth() {
  static const icu::Normalizer2& normalizer = loaded(icu::Normalizer2::getNFKCCasefoldInstance);
  return normalizer;
}

const icu::Normalizer2& composition() {
  static const icu::Normalizer2& normalizer = loaded(icu::Normalizer2::getNFCInstance);
  return normalizer;
}

constexpr UChar32 tatweel = 0x0640;

// Accents and harakat. The marks of later scripts are vowels or other consonants: "か" is not "が".
bool isLeftOut(UChar32 character) {
  constexpr UChar32 behindArabic = 0x0700;
  return character == tatweel ||
         (character < behindArabic && u_charType(character) == U_NON_SPACING_MARK);
}

// Letters that ICU neither decomposes nor folds into those that people write for them.
UChar32 plainLetter(UChar32 letter) {
  switch (letter) {
    case 0x00F8:
      return 'o';  // ø
    case 0x0111:
      return 'd';  // đ
    case 0x0131:
      return 'i';  // ı
    case 0x0142:
      return 'l';  // ł
    case 0x0671:
      return 0x0627;  // ٱ
    case 0x0629:
      return 0x0647;  // ة
    case 0x0649:      // ى
    case 0x06CC:
      return 0x064A;  // ی
    case 0x06A9:
      return 0x0643;  // ک
    default:
      return letter;
  }
}

void appendUtf8(UChar32 character, std::string& text) {
  if (character < 0x80) {
    text += static_cast<char>(character);
  } else {
    icu::UnicodeString(character).toUTF8String(text);
  }
}

class Fold {
 public:
  void add(UChar32 character) {
    if (character < 0x80) return addLetter(u_tolower(character));
    icu::UnicodeString letters;
    if (!caseAndWidth().getDecomposition(character, letters)) return addLetter(character);
    for (std::int32_t at = 0; at < letters.length(); at = letters.moveIndex32(at, 1)) {
      addLetter(letters.char32At(at));
    }
  }

  // Marks that are kept stand behind their letters, "が" as well as "한" in pieces: composes them.
  [[nodiscard]] std::string composed() const {
    UErrorCode status = U_ZERO_ERROR;
    if (!hasOtherThanAscii_ || composition().isNormalizedUTF8(text_, status)) return text_;
    std::string whole;
    icu::StringByteSink<std::string> sink(&whole);
    composition().normalizeUTF8(0, text_, sink, nullptr, status);
    if (U_FAILURE(status)) throw std::runtime_error("a name cannot be composed");
    return whole;
  }

 private:
  void addLetter(UChar32 letter) {
    if (u_isUWhiteSpace(letter)) {
      behindBlank_ = !text_.empty();
      return;
    }
    if (isLeftOut(letter)) return;
    if (behindBlank_) text_ += ' ';
    behindBlank_ = false;
    const UChar32 plain = plainLetter(letter);
    hasOtherThanAscii_ = hasOtherThanAscii_ || plain >= 0x80;
    appendUtf8(plain, text_);
  }

  std::string text_;
  bool behindBlank_ = false;
  bool hasOtherThanAscii_ = false;
};

}  // namespace

std::string foldedName(std::string_view utf8) {
  Fold fold;
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(utf8.data());
  const auto length = static_cast<std::int32_t>(utf8.size());
  for (std::int32_t at = 0; at < length;) {
    UChar32 character = 0;
    U8_NEXT_OR_FFFD(bytes, at, length, character);
    fold.add(character);
  }
  return fold.composed();
}

}  // namespace kivo::names
