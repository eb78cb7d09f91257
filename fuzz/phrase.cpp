// Property: a spoken phrase means its intent whatever its blanks, letter case and final
// punctuation; and a sentence means an intent exactly when it has the words of one of its phrases.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "intents/expense_intents_extension.h"
#include "platform/linux/app_intents/spoken_phrases.h"
#include "property.h"

namespace {

using namespace kivo;

using Words = std::vector<std::string>;

struct Phrase {
  std::string intent;
  std::string said;
  Words words;
};

// The words of `sentence` in lower case, without final punctuation.
Words wordsOf(std::string_view sentence) {
  while (!sentence.empty() &&
         std::string_view(".,;:!? \t\r\n").find(sentence.back()) != std::string_view::npos) {
    sentence.remove_suffix(1);
  }
  Words words;
  bool inWord = false;
  for (const char letter : sentence) {
    const bool blank = std::string_view(" \t\r\n").find(letter) != std::string_view::npos;
    if (!blank && !inWord) words.emplace_back();
    if (!blank) {
      words.back() += static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter + 32 : letter);
    }
    inWord = !blank;
  }
  return words;
}

const platform::AppIntentsExtension& extension() {
  static const auto made = ExpenseIntentsExtension::make();
  return made;
}

std::vector<Phrase> declaredPhrases() {
  std::vector<Phrase> phrases;
  for (const auto& shortcut : extension().appShortcuts()) {
    for (const auto& phrase : shortcut.phrases) {
      const std::string said = phrase.said(extension().applicationName);
      phrases.push_back({std::string(shortcut.intent->typeName()), said, wordsOf(said)});
    }
  }
  return phrases;
}

std::string intentOf(std::string_view sentence) {
  const auto intent = linux_platform::intentSpokenOf(extension(), sentence);
  return intent ? std::string(intent->typeName()) : "";
}

// `said` with more blanks, other letter case and final punctuation, as the input chooses.
std::string varied(const std::string& said, FuzzedDataProvider& choices) {
  constexpr std::string_view blanks = " \t\r\n";
  const auto someBlanks = [&](int least) {
    std::string some;
    const int count = choices.ConsumeIntegralInRange(least, least + 2);
    for (int i = 0; i < count; ++i) some += choices.PickValueInArray({' ', '\t', '\r', '\n'});
    return some;
  };
  std::string sentence = someBlanks(0);
  for (const char letter : said) {
    const bool isLetter = (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z');
    if (blanks.find(letter) != std::string_view::npos) {
      sentence += someBlanks(1);
    } else {
      sentence += static_cast<char>(isLetter && choices.ConsumeBool() ? letter ^ 0x20 : letter);
    }
  }
  const int marks = choices.ConsumeIntegralInRange(0, 3);
  for (int i = 0; i < marks; ++i) {
    sentence += choices.PickValueInArray({'.', ',', ';', ':', '!', '?'}) + someBlanks(0);
  }
  return sentence + someBlanks(0);
}

std::string intentWithTheWordsOf(const std::vector<Phrase>& phrases, std::string_view sentence) {
  const Words words = wordsOf(sentence);
  std::string intent;
  for (const Phrase& phrase : phrases) {
    if (phrase.words != words) continue;
    fuzz::require(intent.empty() || intent == phrase.intent, "a sentence means one intent");
    intent = phrase.intent;
  }
  return intent;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  static const std::vector<Phrase> phrases = declaredPhrases();
  const std::string sentence(reinterpret_cast<const char*>(data), size);
  fuzz::require(intentOf(sentence) == intentWithTheWordsOf(phrases, sentence),
                "a sentence means an intent by its words");

  FuzzedDataProvider choices(data, size);
  const auto chosen = choices.ConsumeIntegralInRange<std::size_t>(0, phrases.size() - 1);
  const Phrase& phrase = phrases[chosen];
  fuzz::require(intentOf(varied(phrase.said, choices)) == phrase.intent,
                "a phrase means its intent however it is decorated");
  return 0;
}
