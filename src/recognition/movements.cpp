#include "recognition/movements.h"

#include <algorithm>
#include <array>

#include "names/standard_categories.h"

namespace kivo::recognition {

using money::Kind;

namespace {

// In the order of Move.
constexpr auto movements = std::to_array<Movement>({
    {Move::spent, Kind::expense, Strength::verb, "Card payment", ""},
    {Move::purchase, Kind::expense, Strength::noun, "Card payment", ""},
    {Move::paid, Kind::expense, Strength::verb, "Payment", ""},
    {Move::payment, Kind::expense, Strength::noun, "Payment", ""},
    {Move::sent, Kind::expense, Strength::verb, "Transfer", "Transfer"},
    {Move::transferOut, Kind::expense, Strength::noun, "Transfer", "Transfer"},
    {Move::withdrew, Kind::expense, Strength::verb, "Cash withdrawal", "Cash"},
    {Move::withdrawal, Kind::expense, Strength::noun, "Cash withdrawal", "Cash"},
    {Move::debited, Kind::expense, Strength::verb, "Payment", ""},
    {Move::debit, Kind::expense, Strength::noun, "Payment", ""},
    {Move::fee, Kind::expense, Strength::noun, "Bank fee", "Fees"},
    {Move::machine, Kind::expense, Strength::hint, "Cash withdrawal", "Cash"},
    {Move::transaction, Kind::expense, Strength::hint, "Card payment", ""},
    {Move::creditTaken, Kind::expense, Strength::takenBack, "Reversed credit", ""},
    {Move::credited, Kind::income, Strength::verb, "Deposit", "Income"},
    {Move::credit, Kind::income, Strength::noun, "Deposit", "Income"},
    {Move::received, Kind::income, Strength::verb, "Transfer", "Income"},
    {Move::transferIn, Kind::income, Strength::noun, "Transfer", "Transfer"},
    {Move::deposit, Kind::income, Strength::noun, "Deposit", "Income"},
    {Move::salary, Kind::income, Strength::noun, "Salary", "Salary"},
    {Move::refund, Kind::income, Strength::refund, "Refund", "Refund"},
    {Move::cashback, Kind::income, Strength::noun, "Cashback", "Refund"},
    {Move::cardSettlement, Kind::transfer, Strength::transfer, "Credit card",
     "Credit Card Settlement"},
    {Move::ownTransfer, Kind::transfer, Strength::transfer, "Own transfer", "Transfer"},
});

static_assert(std::ranges::all_of(movements, [](const Movement& movement) {
  return movement.category.empty() || names::isStandardCategory(movement.category);
}));

constexpr bool isInOrder() {
  for (std::size_t at = 0; at < movements.size(); ++at) {
    if (static_cast<std::size_t>(movements[at].move) != at) return false;
  }
  return true;
}
static_assert(isInOrder());
static_assert(movements.back().move == Move::ownTransfer);

}  // namespace

const Movement& movementOf(Move move) { return movements[static_cast<std::size_t>(move)]; }

bool movesOutside(std::span<const Found> found, std::size_t begin, std::size_t end) {
  return std::ranges::any_of(found, [&](const Found& wording) {
    return wording.as<Move>() != nullptr && (wording.end <= begin || wording.begin >= end);
  });
}

const Movement* strongestMovement(std::span<const Found> found) {
  const Movement* strongest = nullptr;
  for (const Found& wording : found) {
    const Move* const move = wording.as<Move>();
    if (move == nullptr) continue;
    const Movement& movement = movementOf(*move);
    if (strongest == nullptr || movement.strength > strongest->strength) strongest = &movement;
  }
  return strongest;
}

const Movement& namingMovement(std::span<const Found> found, const Movement& strongest) {
  if (strongest.strength > Strength::verb) return strongest;
  constexpr auto telling = std::to_array<Move>(
      {Move::salary, Move::cashback, Move::withdrew, Move::withdrawal, Move::machine, Move::fee});
  for (const Found& wording : found) {
    const Move* const move = wording.as<Move>();
    if (move == nullptr || std::ranges::find(telling, *move) == telling.end()) continue;
    const Movement& movement = movementOf(*move);
    if (movement.kind == strongest.kind) return movement;
  }
  return strongest;
}

}  // namespace kivo::recognition
