// The page "Review": the payments that wait for a decision, transfers that may be one, and messages
// that were not booked.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include <adwaita.h>

#include "app/shown_page.h"
#include "app/sum_texts.h"
#include "book/book.h"

namespace kivo::app {

class AppWindow;

/// Shows each payment in review with its message beside its reading.
class ReviewPage {
 public:
  explicit ReviewPage(AppWindow& window);

  [[nodiscard]] GtkWidget* widget() const { return page_; }
  void refresh() { shown_.refresh(); }

 private:
  using Pair = std::pair<book::LedgerEntry, book::LedgerEntry>;

  void read();
  void addCards(const std::vector<book::LedgerEntry>& entries, std::int64_t waiting);
  GtkWidget* card(const book::LedgerEntry& entry);
  GtkWidget* reading(const book::LedgerEntry& entry);
  GtkWidget* buttons(const book::LedgerEntry& entry);
  void addPairs(const std::vector<Pair>& pairs);
  GtkWidget* pairRow(const Pair& pair);
  void addIgnored(const std::vector<book::IgnoredMessage>& messages);

  AppWindow& window_;
  GtkWidget* page_;
  GtkWidget* content_;
  SumTexts sums_;
  ShownPage shown_;
};

}  // namespace kivo::app
