// The fields by which a person states a payment: name, sum, currency, day, kind and category.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <adwaita.h>

#include "book/ledger_entry.h"
#include "money/currency_code.h"
#include "money/day.h"
#include "money/kind.h"
#include "money/money.h"

namespace kivo::app {

/// A group of rows to type in and to pick from. Lives as long as its rows are shown.
class EntryFields {
 public:
  /// The fields of a payment, at first in `currency`, with `categories` to pick from.
  EntryFields(const char* heading, const money::CurrencyCode& currency,
              const std::vector<std::string>& categories);

  [[nodiscard]] GtkWidget* group() const { return group_; }
  void set(const book::LedgerEntry& entry);
  void setDay(const money::Day& day);
  /// Adds a field that says whether an income gives back a payment. Shown for an income alone.
  void addRefund(bool isRefund);

  /// Return what the fields say; absent, after a mark beside the field, when it cannot be. An empty
  /// category is one.
  [[nodiscard]] std::optional<std::string> name() const;
  [[nodiscard]] std::optional<money::Money> sum() const;
  [[nodiscard]] std::optional<money::Day> day() const;
  [[nodiscard]] money::Kind kind() const;
  /// False for what is no income.
  [[nodiscard]] bool refund() const;
  [[nodiscard]] std::string category() const;

 private:
  void addCalendar();

  GtkWidget* group_;
  GtkWidget* name_;
  GtkWidget* sum_;
  GtkWidget* currency_;
  GtkWidget* day_;
  GtkWidget* kind_;
  GtkWidget* category_;
  GtkWidget* refund_ = nullptr;
};

}  // namespace kivo::app
