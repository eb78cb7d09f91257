// A message as the stages of recognition pass it on: its text, its items and their wordings.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "recognition/message_items.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

/// A message, or the sentences of it that count.
struct AnalysedMessage {
  /// The readable form (spelling.h) of the whole message, which the places of the items refer to.
  /// Has to outlive this.
  std::string_view text;
  /// With their sums.
  Items items;
  /// The wordings in `items` from left to right. They do not overlap.
  std::vector<Found> wordings;
};

/// A sentence or line of a message.
struct Sentence {
  /// Its items are [`begin`, `end`).
  std::size_t begin = 0;
  std::size_t end = 0;
  /// Its wordings; they live as long as the message.
  std::span<const Found> wordings = {};
};

/// The sentences of `message`, in order.
std::vector<Sentence> sentencesOf(const AnalysedMessage& message);

}  // namespace kivo::recognition
