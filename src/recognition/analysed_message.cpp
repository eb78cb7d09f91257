#include "recognition/analysed_message.h"

namespace kivo::recognition {

std::vector<Sentence> sentencesOf(const AnalysedMessage& message) {
  const Items& items = message.items;
  const std::span<const Found> wordings = message.wordings;
  std::vector<Sentence> sentences;
  std::size_t next = 0;
  for (std::size_t begin = 0, end = 1; begin < items.size(); begin = end++) {
    while (end < items.size() && !items[end].startsSentence) ++end;
    const std::size_t first = next;
    while (next < wordings.size() && wordings[next].begin < end) ++next;
    sentences.push_back(
        {.begin = begin, .end = end, .wordings = wordings.subspan(first, next - first)});
  }
  return sentences;
}

}  // namespace kivo::recognition
