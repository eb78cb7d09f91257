// The texts that announce a saved transaction, the same for a live one and a resent one.
#pragma once

#include <string>
#include <string_view>

#include "store/shared_store.h"

namespace kivo {

/// Whether a saved transaction's money was spent or received.
enum class MoneyFlow { spent, received };

/// Returns `received` for exactly "income" and `spent` for any other kind from the backend.
MoneyFlow moneyFlow(std::string_view transactionType);

/// The parts of a saved transaction that its texts mention.
struct ToldTransaction {
  MoneyFlow flow;
  double amount;
  std::string description;
  std::string category;
};

namespace TransactionWords {

/// Returns "💸 Expense Tracked" or "💰 Income Received".
std::string notificationTitle(const ToldTransaction& transaction);
/// Returns, for example, "EGP 150.00 at Carrefour (Groceries)".
std::string notificationBody(const SharedStore& store, const ToldTransaction& transaction);
/// Returns, for example, "Tracked EGP 150.00 at Carrefour".
std::string dialog(const SharedStore& store, const ToldTransaction& transaction);

}  // namespace TransactionWords
}  // namespace kivo
