#include "overview/exports/hledger_export.h"

#include <cstdint>
#include <map>
#include <set>
#include <string_view>
#include <utility>

#include "book/book_command.h"
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

std::string opening(const AccountBalances& account) {
  money::Money opposite = account.opening;
  opposite.minorUnits = -opposite.minorUnits;
  return "\n" + account.first.text() + " * " + openingDescription + "\n" +
         posting(bankAccount(account.account, name), sumText(account.opening)) +
         posting(openingAccount, sumText(opposite));
}

// The assertions that follow postings: by the account, and the entry of the movement.
class Assertions {
 public:
  explicit Assertions(const std::vector<AccountBalances>& balances) {
    for (const AccountBalances& account : balances) {
      for (const AssertedBalance& one : account.asserted) {
        balances_.insert({{account.account, one.after}, one.balance});
      }
    }
  }
  // Empty where there is none.
  [[nodiscard]] std::string after(const std::string& account, const LedgerEntry& entry) const {
    const auto found = balances_.find({account, entry.id});
    return found == balances_.end() ? "" : " = " + sumText(found->second);
  }

 private:
  std::map<std::pair<std::string, std::int64_t>, money::Money> balances_;
};

}  // namespace

std::string hledgerExport(const std::vector<LedgerEntry>& entries,
                          const std::vector<AccountBalances>& balances) {
  std::set<std::string> accounts;
  std::set<money::CurrencyCode> currencies;
  std::string transactions;
  const Assertions assertions(balances);
  for (const AccountBalances& account : balances) {
    accounts.insert(openingAccount);
    transactions += opening(account);
  }
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
    const std::string ofOther =
        movement.into == nullptr ? "" : assertions.after(movement.into->account, entry);
    transactions.append(posting(made.otherAccount, otherSumText(made) + ofOther));
    transactions.append(
        posting(made.ownAccount, sumText(made.toOwn) + assertions.after(entry.account, entry)));
  }
  std::string journal =
      "; Written by " + book::bookProgram() + ". Another export replaces it.\ndecimal-mark .\n";
  for (const money::CurrencyCode& currency : currencies) {
    journal += "commodity " + currency.text() + "\n";
  }
  for (const std::string& account : accounts) journal += "account " + account + "\n";
  return journal + transactions;
}

}  // namespace kivo::overview
