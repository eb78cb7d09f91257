#include "recognition/movements.h"

#include <algorithm>
#include <array>

#include "names/standard_categories.h"

namespace kivo::recognition {

using money::Kind;

namespace {

constexpr auto movements = std::to_array<Movement>({
    {Meaning::spent, Kind::expense, Strength::verb, "Card payment", ""},
    {Meaning::purchase, Kind::expense, Strength::noun, "Card payment", ""},
    {Meaning::paid, Kind::expense, Strength::verb, "Payment", ""},
    {Meaning::payment, Kind::expense, Strength::noun, "Payment", ""},
    {Meaning::sent, Kind::expense, Strength::verb, "Transfer", "Transfer"},
    {Meaning::transferOut, Kind::expense, Strength::noun, "Transfer", "Transfer"},
    {Meaning::withdrew, Kind::expense, Strength::verb, "Cash withdrawal", "Cash"},
    {Meaning::withdrawal, Kind::expense, Strength::noun, "Cash withdrawal", "Cash"},
    {Meaning::machine, Kind::expense, Strength::hint, "Cash withdrawal", "Cash"},
    {Meaning::debited, Kind::expense, Strength::verb, "Payment", ""},
    {Meaning::debit, Kind::expense, Strength::noun, "Payment", ""},
    {Meaning::fee, Kind::expense, Strength::noun, "Bank fee", "Fees"},
    {Meaning::transaction, Kind::expense, Strength::hint, "Card payment", ""},
    {Meaning::creditTaken, Kind::expense, Strength::takenBack, "Reversed credit", ""},
    {Meaning::credited, Kind::income, Strength::verb, "Deposit", "Income"},
    {Meaning::credit, Kind::income, Strength::noun, "Deposit", "Income"},
    {Meaning::received, Kind::income, Strength::verb, "Transfer", "Income"},
    {Meaning::transferIn, Kind::income, Strength::noun, "Transfer", "Transfer"},
    {Meaning::deposit, Kind::income, Strength::noun, "Deposit", "Income"},
    {Meaning::salary, Kind::income, Strength::noun, "Salary", "Salary"},
    {Meaning::refund, Kind::income, Strength::refund, "Refund", "Refund"},
    {Meaning::cashback, Kind::income, Strength::noun, "Cashback", "Refund"},
    {Meaning::ownTransfer, Kind::transfer, Strength::transfer, "Own transfer", "Transfer"},
    {Meaning::cardSettlement, Kind::transfer, Strength::transfer, "Credit card",
     "Credit Card Settlement"},
});

static_assert(std::ranges::all_of(movements, [](const Movement& movement) {
  return movement.category.empty() || names::isStandardCategory(movement.category);
}));

}  // namespace

const Movement* movementOf(Meaning meaning) {
  const auto* const found =
      std::find_if(movements.begin(), movements.end(),
                   [meaning](const Movement& movement) { return movement.meaning == meaning; });
  return found == movements.end() ? nullptr : &*found;
}

const Movement* strongestMovement(std::span<const Found> found) {
  const Movement* strongest = nullptr;
  for (const Found& wording : found) {
    const Movement* const movement = movementOf(wording.meaning);
    if (movement == nullptr) continue;
    if (strongest == nullptr || movement->strength > strongest->strength) strongest = movement;
  }
  return strongest;
}

const Movement& namingMovement(std::span<const Found> found, const Movement& strongest) {
  if (strongest.strength > Strength::verb) return strongest;
  constexpr auto telling =
      std::to_array<Meaning>({Meaning::salary, Meaning::cashback, Meaning::withdrew,
                              Meaning::withdrawal, Meaning::machine, Meaning::fee});
  for (const Found& wording : found) {
    const Movement* const movement = movementOf(wording.meaning);
    const bool tells = std::find(telling.begin(), telling.end(), wording.meaning) != telling.end();
    if (tells && movement->kind == strongest.kind) return *movement;
  }
  return strongest;
}

}  // namespace kivo::recognition
