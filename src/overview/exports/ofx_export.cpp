#include "overview/exports/ofx_export.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "overview/exports/export_text.h"
#include "overview/exports/exported_movement.h"
#include "platform/linux/foundation/markup_text.h"

namespace kivo::overview {

using book::LedgerEntry;
using money::Kind;
using money::Money;

namespace {

constexpr std::string_view header =
    "OFXHEADER:100\nDATA:OFXSGML\nVERSION:102\nSECURITY:NONE\nENCODING:UTF-8\nCHARSET:NONE\n"
    "COMPRESSION:NONE\nOLDFILEUID:NONE\nNEWFILEUID:NONE\n\n";
constexpr std::string_view status = "<STATUS><CODE>0</CODE><SEVERITY>INFO</SEVERITY></STATUS>\n";

// Lengths that the format allows, in characters.
constexpr std::size_t longestName = 32;
constexpr std::size_t longestMemo = 255;
constexpr std::size_t longestReference = 32;
constexpr std::size_t longestAccount = 22;

using Statement = std::vector<const LedgerEntry*>;

// The first `longest` characters.
std::string cut(const std::string& text, std::size_t longest) {
  std::size_t at = 0;
  for (; at < text.size(); ++at) {
    const bool begins = (static_cast<unsigned char>(text[at]) & 0xC0U) != 0x80U;
    if (begins && longest-- == 0) break;
  }
  return text.substr(0, at);
}

std::string element(const char* name, const std::string& text) {
  if (text.empty()) return "";
  return std::string("<") + name + ">" + linux_platform::escapedMarkup(text) + "</" + name + ">\n";
}

std::string day(const money::Day& date) {
  std::string digits = date.text();
  std::erase(digits, '-');
  return digits;
}

Money signedSum(const LedgerEntry& entry) {
  Money sum = *entry.amount;
  if (!entry.incoming) sum.minorUnits = -sum.minorUnits;
  return sum;
}

const char* typeOf(Kind kind) {
  if (kind == Kind::transfer) return "XFER";
  return kind == Kind::income ? "CREDIT" : "DEBIT";
}

std::string transaction(const LedgerEntry& entry) {
  const std::string description = oneLine(entry.description);
  const std::string name = cut(description, longestName);
  std::string memo = oneLine(entry.category);
  if (name != description) memo = memo.empty() ? description : description + " - " + memo;
  const std::string reference = oneLine(entry.reference);
  return "<STMTTRN>\n" + element("TRNTYPE", typeOf(countedKind(entry))) +
         element("DTPOSTED", day(entry.date)) + element("TRNAMT", amountText(signedSum(entry))) +
         element("FITID", importId(entry)) + element("REFNUM", cut(reference, longestReference)) +
         element("NAME", name) + element("MEMO", cut(memo, longestMemo)) + "</STMTTRN>\n";
}

// Absent when it does not fit 64 bits.
std::optional<Money> sumOf(const Statement& entries) {
  Money sum{0, entries.front()->amount->currency};
  try {
    for (const LedgerEntry* entry : entries) sum += signedSum(*entry);
  } catch (const std::overflow_error&) {
    return std::nullopt;
  }
  return sum;
}

// The balance of the account of `entries` where it is known, else their sum.
std::optional<Money> balanceOf(const Statement& entries,
                               const std::vector<AccountBalances>& balances) {
  const LedgerEntry& first = *entries.front();
  const auto known = std::find_if(balances.begin(), balances.end(), [&](const auto& one) {
    return one.account == first.account && one.last.currency == first.amount->currency;
  });
  return known == balances.end() ? sumOf(entries) : known->last;
}

std::string balance(const std::optional<Money>& sum, const Statement& entries) {
  if (!sum) return "";
  return "<LEDGERBAL>\n" + element("BALAMT", amountText(*sum)) +
         element("DTASOF", day(entries.back()->date)) + "</LEDGERBAL>\n";
}

// Programs keep an account by its bank and number, and in one currency: the bank names it.
void append(std::string& file, const std::string& account, const Statement& entries,
            const std::optional<Money>& sum) {
  const std::string currency = entries.front()->amount->currency.text();
  file.append("<STMTTRNRS>\n").append(element("TRNUID", "0")).append(status).append("<STMTRS>\n");
  file.append(element("CURDEF", currency)).append("<BANKACCTFROM>\n");
  file.append(element("BANKID", "KIVO-" + currency)).append(element("ACCTID", account));
  file.append(element("ACCTTYPE", "CHECKING")).append("</BANKACCTFROM>\n<BANKTRANLIST>\n");
  file.append(element("DTSTART", day(entries.front()->date)));
  file.append(element("DTEND", day(entries.back()->date)));
  for (const LedgerEntry* entry : entries) file += transaction(*entry);
  file.append("</BANKTRANLIST>\n")
      .append(balance(sum, entries))
      .append("</STMTRS>\n</STMTTRNRS>\n");
}

}  // namespace

std::string ofxExport(const std::vector<LedgerEntry>& entries,
                      const std::vector<AccountBalances>& balances) {
  std::map<std::pair<std::string, money::CurrencyCode>, Statement> statements;
  for (const LedgerEntry& entry : entries) {
    const std::string digits = cut(oneLine(entry.account), longestAccount);
    const std::string account = digits.empty() ? "unknown" : digits;
    statements[{account, entry.amount->currency}].push_back(&entry);
  }
  std::string file(header);
  file.append("<OFX>\n<SIGNONMSGSRSV1>\n<SONRS>\n").append(status);
  // The same book gives the same file.
  file.append(element("DTSERVER", entries.empty() ? "19700101" : day(entries.back().date)));
  file.append(element("LANGUAGE", "ENG")).append("</SONRS>\n</SIGNONMSGSRSV1>\n");
  if (!statements.empty()) file += "<BANKMSGSRSV1>\n";
  for (const auto& [account, ofIt] : statements) {
    append(file, account.first, ofIt, balanceOf(ofIt, balances));
  }
  if (!statements.empty()) file += "</BANKMSGSRSV1>\n";
  return file + "</OFX>\n";
}

}  // namespace kivo::overview
