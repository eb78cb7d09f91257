// The words in which a saved transaction is told, live and from the queue alike. Posts nothing.
#pragma once

#include <string>
#include <string_view>

#include "store/shared_store.h"

namespace kivo {

/// Which way the money of a saved transaction went.
enum class MoneyFlow { spent, received };

/// The flow of a transaction of the backend's kind `transactionType`: received for exactly
/// "income", spent for every other kind.
MoneyFlow moneyFlow(std::string_view transactionType);

/// A saved transaction as it is told.
struct ToldTransaction {
  MoneyFlow flow;
  double amount;
  std::string description;
  std::string category;
};

namespace TransactionWords {

/// "💸 Expense Tracked" or "💰 Income Received".
std::string notificationTitle(const ToldTransaction& transaction);
/// Such as "EGP 150.00 at Carrefour (Groceries)".
std::string notificationBody(const SharedStore& store, const ToldTransaction& transaction);
/// Such as "Tracked EGP 150.00 at Carrefour".
std::string dialog(const SharedStore& store, const ToldTransaction& transaction);

}  // namespace TransactionWords
}  // namespace kivo
