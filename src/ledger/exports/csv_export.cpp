#include "ledger/exports/csv_export.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>

namespace kivo::ledger {
namespace {

// Spreadsheets run a cell that begins with one of these, some after blanks or in full width.
constexpr std::array<std::string_view, 8> formulaSigns = {"=",  "+",  "-",  "@",
                                                          "＝", "＋", "－", "＠"};

std::string withoutFormula(const std::string& text) {
  const std::string_view rest =
      std::string_view(text).substr(std::min(text.find_first_not_of("' \t\r\n"), text.size()));
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
  for (const LedgerEntry& entry : entries) {
    csv.append(entry.date).append(",").append(kindText(entry.kind)).append(",");
    csv.append(amountText(*entry.amount)).append(",").append(entry.amount->currency).append(",");
    for (const std::string* text :
         {&entry.description, &entry.category, &entry.account, &entry.reference}) {
      csv.append(quoted(withoutFormula(*text))).append(",");
    }
    csv.append(std::to_string(entry.id)).append("\n");
  }
  return csv;
}

}  // namespace kivo::ledger
