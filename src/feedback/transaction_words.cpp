#include "feedback/transaction_words.h"

#include "feedback/amount_formatter.h"

namespace kivo {
namespace {

struct Words {
  std::string_view title;
  std::string_view verb;
  std::string_view preposition;
};

Words wordsFor(MoneyFlow flow) {
  if (flow == MoneyFlow::received) return {"💰 Income Received", "Received ", " from "};
  return {"💸 Expense Tracked", "Tracked ", " at "};
}

std::string amountAndParty(const SharedStore& store, const ToldTransaction& transaction) {
  return AmountFormatter::format(store, transaction.amount) +
         std::string(wordsFor(transaction.flow).preposition) + transaction.description;
}

}  // namespace

MoneyFlow moneyFlow(std::string_view transactionType) {
  return transactionType == "income" ? MoneyFlow::received : MoneyFlow::spent;
}

std::string TransactionWords::notificationTitle(const ToldTransaction& transaction) {
  return std::string(wordsFor(transaction.flow).title);
}

std::string TransactionWords::notificationBody(const SharedStore& store,
                                               const ToldTransaction& transaction) {
  return amountAndParty(store, transaction) + " (" + transaction.category + ")";
}

std::string TransactionWords::dialog(const SharedStore& store, const ToldTransaction& transaction) {
  return std::string(wordsFor(transaction.flow).verb) + amountAndParty(store, transaction);
}

}  // namespace kivo
