#include "ledger/recognition/merchant_categories.h"

#include <algorithm>
#include <array>

#include "ledger/recognition/message_items.h"
#include "ledger/recognition/spelling.h"

namespace kivo::ledger {
namespace {

struct Category {
  std::string_view name;
  /// Separated by blanks; a word with a closing "~" may go on.
  std::string_view words;
};

// The first that fits counts.
constexpr auto categories = std::to_array<Category>({
    {"Groceries",
     "market supermarket hypermarket minimarket grocer~ grocery foods baker~ butcher~ carrefour "
     "lulu mart "
     "kirana سوق ماركت بقال~ مخبز هايبر"},
    {"Dining",
     "cafe coffee restaurant~ kitchen grill pizza burger roastery diner eatery bistro مطعم كافيه "
     "مقهي قهوه"},
    {"Health", "pharmac~ clinic hospital dental medical lab صيدلي~ مستشفي عياده"},
    {"Utilities",
     "electric~ water telecom mobile internet energy bill power broadband airtime كهرباء مياه "
     "المياه "
     "اتصالات فاتوره"},
    {"Entertainment", "cinema~ theatre stream~ music games gaming netflix spotify سينما"},
    {"Travel", "hotel~ airline~ airways travel~ hostel resort فندق طيران"},
    {"Education", "school university college academy course~ مدرسه جامعه"},
    {"Transport",
     "taxi cab metro bus rail~ uber careem fuel gas petrol petroleum parking ride~ station تاكسي "
     "مترو "
     "بنزين وقود "
     "محطه"},
    {"Shopping",
     "store~ mall shop~ boutique fashion books~ bookshop electronics furniture amazon noon متجر "
     "مكتبه مول"},
});

bool holdsWord(std::string_view words, std::string_view word) {
  while (!words.empty()) {
    const std::size_t end = std::min(words.find(' '), words.size());
    const std::string_view candidate = words.substr(0, end);
    const bool fits = candidate.ends_with('~')
                          ? word.starts_with(candidate.substr(0, candidate.size() - 1))
                          : word == candidate;
    if (fits) return true;
    words.remove_prefix(std::min(end + 1, words.size()));
  }
  return false;
}

}  // namespace

std::string_view merchantCategory(std::string_view name) {
  const Items items = itemsOf(readableForm(name));
  for (const Category& category : categories) {
    for (const Item& item : items) {
      if (item.kind == Item::Kind::word && holdsWord(category.words, item.text))
        return category.name;
    }
  }
  return {};
}

}  // namespace kivo::ledger
