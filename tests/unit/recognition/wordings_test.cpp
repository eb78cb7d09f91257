#include "recognition/wordings.h"

#include <array>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "unit/recognition/reading_text.h"

namespace kivo::recognition {
namespace {

// Holds views: g++ takes minutes to compile thousands of std::string.
struct Example {
  std::string_view words;
  std::string_view message;
  std::string_view reading;
};

constexpr auto examples = std::to_array<Example>({
#define WORDING(meaning, words, example, reading) {words, example, reading},
#include "recognition/wordings.def"
#undef WORDING
});

money::CurrencyCode bookOf(const Example& example) {
  constexpr std::size_t codeLength = 3;
  return money::CurrencyCode::fromText(example.reading.substr(0, codeLength)).value();
}

TEST(EachWording, IsReadInItsExample) {
  for (const Example& example : examples) {
    const money::CurrencyCode book = bookOf(example);
    const bool payee = example.reading.find(" |") != std::string_view::npos;
    EXPECT_EQ(book.text() + " " + readingText(read(example.message, book), book, payee),
              example.reading)
        << "«" << example.words << "»: " << example.message;
  }
}

TEST(EachWording, IsNeededByItsExample) {
  for (std::size_t index = 0; index < examples.size(); ++index) {
    const Example& example = examples[index];
    const money::CurrencyCode book = bookOf(example);
    EXPECT_FALSE(readBy(Wordings::allBut(index), example.message, book) ==
                 read(example.message, book))
        << "«" << example.words << "» changes nothing in: " << example.message;
  }
}

TEST(EachWording, HasAMessageWithoutPlaceholdersAsItsExample) {
  for (const Example& example : examples) {
    EXPECT_EQ(example.message.find_first_of("^_"), std::string_view::npos)
        << "«" << example.words << "»: " << example.message;
  }
}

TEST(EachWording, HasOneMeaning) {
  std::set<std::string_view> seen;
  for (const Example& example : examples) {
    EXPECT_TRUE(seen.insert(example.words).second) << example.words;
  }
}

TEST(AWording, OfChineseKoreanOrThaiIsFoundWithinAWord) {
  EXPECT_EQ(readingText(read("บัญชีของท่านมีเงินเข้า 500.00 บาท", "THB"), "THB", false), "income 500.00");
  EXPECT_EQ(readingText(read("전자금융출금되었습니다 5,000원", "KRW"), "KRW", false),
            "expense 5000");
}

TEST(AWording, WithMoreLettersCounts) {
  EXPECT_EQ(read("45,00 TL yatırıldı", "TRY").outcome, Outcome::transaction);
  EXPECT_EQ(read("45,00 TL yatırılacaktır, 21/11/26", "TRY").outcome, Outcome::notATransaction);
}

TEST(AGapInAWording, SpansEightWordsOfOneSentence) {
  const auto outcome = [](const std::string& gap) {
    return read("Your refund of EGP 20.00 arrives in " + gap + " working days", "EGP").outcome;
  };
  EXPECT_EQ(outcome("1 2 3 4 5 6 7 8"), Outcome::notATransaction);
  EXPECT_EQ(outcome("1 2 3 4 5 6 7 8 9"), Outcome::transaction);
  EXPECT_EQ(outcome("3. Call"), Outcome::transaction);
}

}  // namespace
}  // namespace kivo::recognition
