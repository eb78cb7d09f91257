#include "overview/exports/hledger_export.h"

#include <set>
#include <string_view>

#include "overview/exports/double_entry.h"
#include "overview/exports/export_text.h"

namespace kivo::overview {

using book::LedgerEntry;

namespace {

// A semicolon would begin a comment, and a bar would divide a payee from a note.
std::string name(std::string_view text) {
  return withReplaced(withReplaced(oneLine(text), ';', ','), '|', '/');
}

// A tag ends at a comma.
std::string tag(const char* named, const std::string& value) {
  const std::string text = oneLine(withReplaced(value, ',', ' '));
  return text.empty() ? "" : std::string("    ; ") + named + ": " + text + "\n";
}

std::string posting(const std::string& account, const std::string& sum) {
  return "    " + account + "  " + sum + "\n";
}

}  // namespace

std::string hledgerExport(const std::vector<LedgerEntry>& entries) {
  std::set<std::string> accounts;
  std::set<money::CurrencyCode> currencies;
  std::string transactions;
  for (const ExportedMovement& movement : movementsOf(entries)) {
    const LedgerEntry& entry = *movement.entry;
    const DoubleEntry made = doubleEntryOf(movement, name);
    accounts.insert({made.otherAccount, made.ownAccount});
    currencies.insert(entry.amount->currency);
    if (made.original) currencies.insert(made.original->currency);
    transactions.append("\n")
        .append(entry.date.text())
        .append(" * (")
        .append(std::to_string(entry.id));
    transactions.append(") ").append(name(entry.description)).append("\n");
    transactions.append(tag("kivo-id", importId(entry)));
    transactions.append(tag("category", made.unnamedCategory));
    transactions.append(tag("reference", entry.reference));
    transactions.append(posting(made.otherAccount, otherSumText(made)));
    transactions.append(posting(made.ownAccount, sumText(made.toOwn)));
  }
  std::string journal = "; Written by kivo-ledger. Another export replaces it.\ndecimal-mark .\n";
  for (const money::CurrencyCode& currency : currencies) {
    journal += "commodity " + currency.text() + "\n";
  }
  for (const std::string& account : accounts) journal += "account " + account + "\n";
  return journal + transactions;
}

}  // namespace kivo::overview
