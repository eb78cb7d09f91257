#include "ledger/recognition/wordings.h"

#include <array>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "unit/ledger/reading_text.h"

namespace kivo::ledger {
namespace {

// Holds views: g++ takes minutes to compile thousands of std::string.
struct Example {
  std::string_view words;
  std::string_view message;
  std::string_view reading;
};

constexpr auto examples = std::to_array<Example>({
#define WORDING(meaning, words, example, reading) {words, example, reading},
#include "ledger/recognition/wordings.def"
#undef WORDING
});

TEST(EachWording, IsReadInItsExample) {
  constexpr std::size_t codeLength = 3;
  for (const Example& example : examples) {
    const std::string book(example.reading.substr(0, codeLength));
    const bool payee = example.reading.find(" |") != std::string_view::npos;
    EXPECT_EQ(book + " " + readingText(read(example.message, book), book, payee), example.reading)
        << "«" << example.words << "»: " << example.message;
  }
}

TEST(EachWording, HasOneMeaning) {
  std::set<std::string_view> seen;
  for (const Example& example : examples) {
    EXPECT_TRUE(seen.insert(example.words).second) << example.words;
  }
}

}  // namespace
}  // namespace kivo::ledger
