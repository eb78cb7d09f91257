#include "overview/exports/beancount_export.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string_view>

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include "book/book_command.h"
#include "overview/exports/double_entry.h"
#include "overview/exports/export_text.h"

namespace kivo::overview {

using book::LedgerEntry;

namespace {

// Beancount 2 has its own tables of letters: of an old version of Unicode, and without Chinese and
// Korean.
bool isLetterOrDigit(UChar32 c) {
  UVersionInfo since{};
  u_charAge(c, since);
  return (u_isalpha(c) || u_isdigit(c)) && since[0] <= 3 && c <= 0xFFFF &&
         !u_hasBinaryProperty(c, UCHAR_IDEOGRAPHIC) &&
         u_getIntPropertyValue(c, UCHAR_HANGUL_SYLLABLE_TYPE) == U_HST_NOT_APPLICABLE;
}

// Scripts that Unicode added later have capitals that it does not know.
bool mayBegin(UChar32 c) {
  return c < 0x1000 && isLetterOrDigit(c) && (u_isupper(c) || u_isdigit(c));
}

std::string level(std::string_view text) {
  const auto whole = icu::UnicodeString::fromUTF8(text);
  icu::UnicodeString made;
  bool separated = false;
  for (std::int32_t at = 0; at < whole.length(); at = whole.moveIndex32(at, 1)) {
    UChar32 c = whole.char32At(at);
    if (!isLetterOrDigit(c)) {
      separated = !made.isEmpty();
      continue;
    }
    if (separated) made.append(u'-');
    separated = false;
    if (made.isEmpty() && mayBegin(u_toupper(c))) c = u_toupper(c);
    if (made.isEmpty() && !mayBegin(c)) made = u"X-";
    made.append(c);
  }
  std::string name;
  return made.toUTF8String(name);
}

std::string string(const std::string& text) {
  std::string made = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') made += '\\';
    made += c;
  }
  return made + '"';
}

std::string metadata(const char* key, const std::string& value) {
  return value.empty() ? "" : std::string("  ") + key + ": " + string(value) + "\n";
}

std::string posting(const std::string& account, const std::string& sum) {
  return "  " + account + "  " + sum + "\n";
}

std::string opening(const AccountBalances& account) {
  money::Money opposite = account.opening;
  opposite.minorUnits = -opposite.minorUnits;
  return "\n" + account.first.text() + " * " + string(openingDescription) + " \"\"\n" +
         posting(bankAccount(account.account, level), sumText(account.opening)) +
         posting(openingAccount, sumText(opposite));
}

// Beancount asserts the balance at the beginning of a day.
std::string assertions(const AccountBalances& account) {
  std::string lines;
  for (const AssertedBalance& one : account.asserted) {
    lines += one.date.before(-1).text() + " balance " + bankAccount(account.account, level) + "  " +
             sumText(one.balance) + "\n";
  }
  return lines;
}

}  // namespace

std::string beancountExport(const std::vector<LedgerEntry>& entries,
                            const std::vector<AccountBalances>& balances) {
  std::map<std::string, std::string> opened;  // on which day
  std::string transactions;
  std::string asserted;
  for (const AccountBalances& account : balances) {
    const auto [first, isFirst] = opened.try_emplace(openingAccount, account.first.text());
    if (!isFirst) first->second = std::min(first->second, account.first.text());
    transactions += opening(account);
    asserted += assertions(account);
  }
  for (const ExportedMovement& movement : movementsOf(entries)) {
    const LedgerEntry& entry = *movement.entry;
    const DoubleEntry made = doubleEntryOf(movement, level);
    opened.try_emplace(made.otherAccount, entry.date.text());
    opened.try_emplace(made.ownAccount, entry.date.text());
    transactions.append("\n").append(entry.date.text()).append(" * ");
    transactions.append(string(oneLine(entry.description))).append(" \"\"\n");
    transactions.append(metadata("kivo-id", importId(entry)));
    transactions.append(metadata("category", made.unnamedCategory));
    transactions.append(metadata("reference", oneLine(entry.reference)));
    transactions.append(posting(made.otherAccount, otherSumText(made)));
    transactions.append(posting(made.ownAccount, sumText(made.toOwn)));
  }
  std::string file = "; Written by " + book::bookProgram() + ". Another export replaces it.\n";
  for (const auto& [account, day] : opened) {
    file.append(day).append(" open ").append(account).append("\n");
  }
  return file + transactions + (asserted.empty() ? "" : "\n" + asserted);
}

}  // namespace kivo::overview
