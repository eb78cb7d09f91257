// The movements of money that wordings stand for: their directions and the words for them.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "recognition/reading.h"
#include "recognition/wordings.h"

namespace kivo::recognition {

/// How sure a wording is of its direction.
enum class Strength { hint, noun, verb, refund, transfer, takenBack };

/// A kind of movement.
struct Movement {
  Move move;
  money::Kind kind;
  Strength strength;
  /// For a transaction that names no payee.
  std::string_view description;
  /// Empty where the payee's name decides.
  std::string_view category;
};

/// The movement of `move`. Lives as long as the program.
const Movement& movementOf(Move move);

/// The movement of a message with these wordings: the strongest, of equals the first. Null for
/// none.
const Movement* strongestMovement(std::span<const Found> found);

/// The movement that names a transaction of `strongest` best: "Salary" rather than "Deposit".
const Movement& namingMovement(std::span<const Found> found, const Movement& strongest);

}  // namespace kivo::recognition
