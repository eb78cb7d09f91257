#include "ledger/recognition/wordings.h"

#include <set>
#include <string>

#include <gtest/gtest.h>

#include "unit/ledger/reading_text.h"

namespace kivo::ledger {
namespace {

struct Example {
  std::string words;
  std::string message;
  std::string reading;
};

std::vector<Example> examples() {
  return {
#define WORDING(meaning, words, example, reading) {words, example, reading},
#include "ledger/recognition/wordings.def"
#undef WORDING
  };
}

TEST(EachWording, IsReadInItsExample) {
  constexpr std::size_t codeLength = 3;
  for (const Example& example : examples()) {
    const std::string book = example.reading.substr(0, codeLength);
    const bool payee = example.reading.find(" |") != std::string::npos;
    EXPECT_EQ(book + " " + readingText(read(example.message, book), book, payee), example.reading)
        << "«" << example.words << "»: " << example.message;
  }
}

TEST(EachWording, HasOneMeaning) {
  std::set<std::string> seen;
  for (const Example& example : examples()) {
    EXPECT_TRUE(seen.insert(example.words).second) << example.words;
  }
}

}  // namespace
}  // namespace kivo::ledger
