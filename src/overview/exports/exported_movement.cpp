#include "overview/exports/exported_movement.h"

#include <cstdint>
#include <unordered_map>

namespace kivo::overview {

using book::LedgerEntry;

std::vector<ExportedMovement> movementsOf(const std::vector<LedgerEntry>& entries) {
  std::unordered_map<std::int64_t, const LedgerEntry*> halves;
  for (const LedgerEntry& entry : entries) {
    if (entry.counterpart) halves.emplace(entry.id, &entry);
  }
  std::vector<ExportedMovement> movements;
  for (const LedgerEntry& entry : entries) {
    const auto other = entry.counterpart ? halves.find(*entry.counterpart) : halves.end();
    if (other == halves.end()) {
      movements.push_back({&entry});
    } else if (!entry.incoming) {
      movements.push_back({&entry, other->second});
    }
  }
  return movements;
}

money::Kind countedKind(const LedgerEntry& entry) {
  return entry.counterpart ? money::Kind::transfer : entry.kind;
}

}  // namespace kivo::overview
