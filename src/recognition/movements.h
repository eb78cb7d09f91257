// The movements of money that wordings report: direction, description and category.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

#include "recognition/reading.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

/// How reliably a wording tells the direction, the least reliable first.
enum class Strength { hint, noun, verb, refund, transfer, takenBack };

/// A kind of movement.
struct Movement {
  Move move;
  money::Kind kind;
  Strength strength;
  /// The description of a transaction that names no payee.
  std::string_view description;
  /// Empty when the payee's name decides.
  std::string_view category;
};

/// The movement of `move`. Lives as long as the program.
const Movement& movementOf(Move move);

/// Whether one of `found` in front of item `begin` or from item `end` on reports a movement.
bool movesOutside(std::span<const Found> found, std::size_t begin, std::size_t end);

/// The movement of a message with these wordings: the strongest, of equals the first. Null when no
/// wording reports one.
const Movement* strongestMovement(std::span<const Found> found);

/// The movement that describes a transaction of `strongest` most exactly: "Salary" rather than
/// "Deposit".
const Movement& namingMovement(std::span<const Found> found, const Movement& strongest);

}  // namespace kivo::recognition
