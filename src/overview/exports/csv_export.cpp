#include "overview/exports/csv_export.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <string_view>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include "overview/exports/exported_movement.h"

namespace kivo::overview {

using book::LedgerEntry;

namespace {

// Spreadsheets run a cell that begins with one of these, some in full width or after characters
// that they drop.
constexpr std::array<std::string_view, 8> formulaSigns = {"=",  "+",  "-",  "@",
                                                          "＝", "＋", "－", "＠"};

bool isBlankOrInvisible(UChar32 character) {
  constexpr std::uint32_t categories =
      U_GC_ZS_MASK | U_GC_ZL_MASK | U_GC_ZP_MASK | U_GC_CC_MASK | U_GC_CF_MASK;
  return character >= 0 && (U_GET_GC_MASK(character) & categories) != 0;
}

// `text` (UTF-8) from its first character that is visible and no apostrophe.
std::string_view visiblePart(std::string_view text) {
  const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
  const auto size = static_cast<std::int64_t>(text.size());
  std::int64_t begin = 0;
  for (std::int64_t end = 0; end < size; begin = end) {
    UChar32 character = 0;
    U8_NEXT(bytes, end, size, character);
    if (character != '\'' && !isBlankOrInvisible(character)) break;
  }
  return text.substr(static_cast<std::size_t>(begin));
}

std::string withoutFormula(const std::string& text) {
  const std::string_view rest = visiblePart(text);
  const bool isFormula = std::any_of(formulaSigns.begin(), formulaSigns.end(),
                                     [&](std::string_view sign) { return rest.starts_with(sign); });
  return isFormula ? "'" + text : text;
}

// Also quotes characters that some readers take for separators, and blanks that they would trim.
std::string quoted(const std::string& field) {
  const bool isPlain = field.find_first_of("\",;\t\r\n") == std::string::npos &&
                       !field.starts_with(' ') && !field.ends_with(' ');
  if (isPlain) return field;
  std::string text = "\"";
  for (const char c : field) {
    if (c == '"') text += '"';
    text += c;
  }
  return text + '"';
}

}  // namespace

std::string csvExport(const std::vector<LedgerEntry>& entries) {
  std::string csv = "date,kind,amount,currency,description,category,account,reference,id\n";
  for (const ExportedMovement& movement : movementsOf(entries)) {
    const LedgerEntry& entry = *movement.entry;
    csv.append(entry.date.text()).append(",").append(kindText(countedKind(entry))).append(",");
    csv.append(amountText(*entry.amount))
        .append(",")
        .append(entry.amount->currency.text())
        .append(",");
    for (const std::string* text :
         {&entry.description, &entry.category, &entry.account, &entry.reference}) {
      csv.append(quoted(withoutFormula(*text))).append(",");
    }
    csv.append(std::to_string(entry.id)).append("\n");
  }
  return csv;
}

}  // namespace kivo::overview
