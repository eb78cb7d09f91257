#include "money/kind.h"

namespace kivo::money {

const char* kindText(Kind kind) {
  switch (kind) {
    case Kind::expense:
      return "expense";
    case Kind::income:
      return "income";
    case Kind::transfer:
      return "transfer";
  }
  return "";
}

std::optional<Kind> kindFromText(std::string_view text) {
  for (const Kind kind : {Kind::expense, Kind::income, Kind::transfer}) {
    if (text == kindText(kind)) return kind;
  }
  return std::nullopt;
}

}  // namespace kivo::money
