#include "demo/merchant_categories.h"

#include <algorithm>
#include <array>
#include <span>

#include "demo/message_text.h"

namespace kivo {
namespace {

using Words = std::span<const std::string_view>;

constexpr std::string_view groceries[] = {
    "market",   "supermarket", "hypermarket", "minimarket", "grocer~", "grocery", "foods", "baker~",
    "butcher~", "carrefour",   "lulu",        "سوق",        "ماركت",   "بقال~",   "مخبز",  "هايبر"};
constexpr std::string_view dining[] = {
    "cafe",     "café",  "coffee", "restaurant", "kitchen", "grill", "pizza", "burger",
    "roastery", "diner", "eatery", "bistro",     "مطعم",    "كافيه", "مقهي",  "قهوه"};
constexpr std::string_view transport[] = {
    "taxi", "cab",     "metro", "bus",     "rail~", "uber", "careem", "fuel", "petrol", "petroleum",
    "gas",  "parking", "ride~", "station", "تاكسي", "مترو", "بنزين",  "وقود", "محطه"};
constexpr std::string_view health[] = {"pharmac~", "clinic", "hospital", "dental", "medical",
                                       "lab",      "صيدلي~", "مستشفي",   "عياده"};
constexpr std::string_view utilities[] = {"electric~", "water",   "telecom", "mobile",
                                          "internet",  "energy",  "bill",    "كهرباء",
                                          "مياه",      "اتصالات", "فاتوره"};
constexpr std::string_view entertainment[] = {"cinema~", "theatre", "stream~", "music", "games",
                                              "gaming",  "netflix", "spotify", "سينما"};
constexpr std::string_view travel[] = {"hotel",  "airline~", "airways", "travel~",
                                       "hostel", "resort",   "فندق",    "طيران"};
constexpr std::string_view education[] = {"school",  "university", "college", "academy",
                                          "course~", "مدرسه",      "جامعه"};
constexpr std::string_view shopping[] = {
    "store~",      "mall",      "shop~",  "boutique", "fashion", "books~", "bookshop",
    "electronics", "furniture", "amazon", "noon",     "متجر",    "مكتبه",  "مول"};

struct Category {
  std::string_view name;
  Words words;
};

// The first that fits counts.
constexpr std::array<Category, 9> categories{{{"Groceries", groceries},
                                              {"Dining", dining},
                                              {"Health", health},
                                              {"Utilities", utilities},
                                              {"Entertainment", entertainment},
                                              {"Travel", travel},
                                              {"Education", education},
                                              {"Transport", transport},
                                              {"Shopping", shopping}}};

}  // namespace

std::string_view merchantCategory(std::string_view foldedName) {
  const auto found = std::find_if(
      categories.begin(), categories.end(),
      [foldedName](const Category& category) { return holdsAny(foldedName, category.words); });
  return found == categories.end() ? std::string_view() : found->name;
}

}  // namespace kivo
