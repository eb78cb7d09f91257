#include "platform/linux/foundation/safe_text.h"

#include <string>

#include <gtest/gtest.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "platform/foundation/json_decoder.h"

namespace kivo::linux_platform {
namespace {

std::string utf8(UChar32 character) {
  std::string text;
  return icu::UnicodeString(character).toUTF8String(text);
}

TEST(ATerminalText, EscapesControlCharacters) {
  EXPECT_EQ(escapedControls("a\nb\r\tc\x1b[2J"), "a\\nb\\r\\tc\\x1b[2J");
  EXPECT_EQ(escapedControls(std::string("a\0b", 3)), "a\\x00b");
  EXPECT_EQ(escapedControls("\x7f\u0085\u009b"), "\\x7f\\x85\\x9b");
}

TEST(ATerminalText, EscapesBidirectionalControls) {
  EXPECT_EQ(escapedControls("\u202a\u202b\u202c\u202d\u202e"),
            "\\u202a\\u202b\\u202c\\u202d\\u202e");
  EXPECT_EQ(escapedControls("\u2066\u2067\u2068\u2069"), "\\u2066\\u2067\\u2068\\u2069");
  EXPECT_EQ(escapedControls("EGP \u200f5,00\u200e / 900\u061c"),
            "EGP \\u200f5,00\\u200e / 900\\u061c");
}

TEST(ATerminalText, EscapesInvisibleCharacters) {
  EXPECT_EQ(escapedControls("1\u200b0\u2060\ufeff\u00ad\u2028\u2029"),
            "1\\u200b0\\u2060\\ufeff\\u00ad\\u2028\\u2029");
  EXPECT_EQ(escapedControls("\u034f\u115f\u3164\u180b\ufe00"),
            "\\u034f\\u115f\\u3164\\u180b\\ufe00");
}

TEST(ATerminalText, EscapesPrivateAndUnassignedCharacters) {
  EXPECT_EQ(escapedControls("\ue000\u0378\uffff"), "\\ue000\\u0378\\uffff");
}

TEST(ATerminalText, EscapesTagsAndVariationSelectors) {
  EXPECT_EQ(escapedControls("\U000e0041\U000e0100\U0010fffd"), "\\U000e0041\\U000e0100\\U0010fffd");
}

TEST(ATerminalText, KeepsVisibleCharacters) {
  for (const char* const text : {"Paid EGP 1,250.00 \\ ~", "تم إيداع راتب بمبلغ ١٨٬٥٠٠٫٠٠ ج.م.",
                                 "e\u0301 円 💸", "1\u00a0250,00\u202f€ \u3000"}) {
    EXPECT_EQ(escapedControls(text), text);
  }
}

TEST(ATerminalText, KeepsJoinersBetweenLettersThatJoin) {
  for (const char* const text : {"می\u200cشود ۲۰\u200cهزار", "क्\u200dष", "👨\u200d👩\u200d👧",
                                 "❤\ufe0f\u200d🔥 👍🏽\u200d ✈\ufe0e", "1\ufe0f\u20e3"}) {
    EXPECT_EQ(escapedControls(text), text);
  }
}

TEST(ATerminalText, EscapesOtherJoiners) {
  EXPECT_EQ(escapedControls("\u200cEGP \u200d5"), "\\u200cEGP \\u200d5");
  EXPECT_EQ(escapedControls("ی\u200c\u200cش"), "ی\u200c\\u200cش");
  EXPECT_EQ(escapedControls("a\u202e\u200db,\ufe0f"), "a\\u202e\\u200db,\\ufe0f");
}

TEST(ATerminalText, ReplacesInvalidUtf8) {
  EXPECT_EQ(escapedControls("a\x9b\x32Jb\xe2\x82"), "a\ufffd2Jb\ufffd");
  EXPECT_EQ(escapedControls("\xed\xa0\x80"), "\ufffd\ufffd\ufffd");
}

TEST(ATerminalText, HasNoInvisibleCharacterExceptJoiners) {
  for (UChar32 character = 0; character <= 0x10ffff; ++character) {
    if (character >= 0xd800 && character <= 0xdfff) continue;
    const std::string text = "1 " + utf8(character);
    const auto type = u_charType(character);
    const bool hidden = type == U_CONTROL_CHAR || type == U_FORMAT_CHAR ||
                        type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR ||
                        type == U_PRIVATE_USE_CHAR || type == U_UNASSIGNED ||
                        u_hasBinaryProperty(character, UCHAR_DEFAULT_IGNORABLE_CODE_POINT) ||
                        u_hasBinaryProperty(character, UCHAR_BIDI_CONTROL);
    ASSERT_EQ(escapedControls(text) != text, hidden) << std::hex << character;
  }
}

TEST(ATerminalSentence, OmitsDirectionMarks) {
  EXPECT_EQ(escapedSentence("Tracked \u200f١٥٠٫٠٠ ج.م.\u200f at Carrefour"),
            "Tracked ١٥٠٫٠٠ ج.م. at Carrefour");
  EXPECT_EQ(escapedSentence("\u061c-\u200e1"), "-1");
}

TEST(ATerminalJSON, DecodesToTheSameValue) {
  const std::string text = "{\"dialog\":\"a\x7f\u009b\u202e\u200f\U000e0041 \\n\"}";
  const std::string shown = escapedJSON(text);
  EXPECT_EQ(shown, R"({"dialog":"a\u007f\u009b\u202e\u200f\udb40\udc41 \n"})");
  EXPECT_EQ(platform::JSONDecoder::object(shown).decodeString("dialog"),
            platform::JSONDecoder::object(text).decodeString("dialog"));
}

TEST(ATerminalSentence, EscapesOtherControls) {
  EXPECT_EQ(escapedSentence("at \u202eorange\x1b[2J\n"), "at \\u202eorange\\x1b[2J\\n");
}

}  // namespace
}  // namespace kivo::linux_platform
