#include "ledger/recognition/standard_categories.h"

#include "ledger/recognition/merchant_categories.h"
#include "ledger/recognition/movements.h"

namespace kivo::ledger {

std::vector<std::string_view> standardCategories() {
  std::vector<std::string_view> names = merchantCategories();
  for (const Movement& movement : allMovements()) {
    if (!movement.category.empty()) names.push_back(movement.category);
  }
  names.emplace_back("Other");
  return names;
}

}  // namespace kivo::ledger
