// The page "Payments": what is booked, by days, with search and filters. Changes nothing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <adwaita.h>

#include "app/payment_places.h"
#include "app/shown_page.h"
#include "app/signals.h"
#include "app/sum_texts.h"
#include "book/book.h"

namespace kivo::app {

class AppWindow;

/// Lists payments, of which only those on screen are read.
class PaymentsPage {
 public:
  explicit PaymentsPage(AppWindow& window);
  ~PaymentsPage();
  PaymentsPage(const PaymentsPage&) = delete;
  PaymentsPage& operator=(const PaymentsPage&) = delete;

  [[nodiscard]] GtkWidget* widget() const { return page_; }
  void refresh() { shown_.refresh(); }
  /// Shows the payments that match `filter` in the place of those before, and sets the cursor into
  /// the search.
  void show(const book::EntryFilter& filter);

 private:
  GtkWidget* filters();
  GtkWidget* kindChoice();
  void listenToFilters();
  GtkWidget* list();
  void read();
  void tellFilter();
  void bindRow(GtkListItem* item);
  void showRow(GtkListItem* item, const book::LedgerEntry& entry, guint position);

  AppWindow& window_;
  GtkWidget* page_;
  GtkWidget* search_ = nullptr;
  GtkWidget* kind_ = nullptr;
  GtkWidget* chosen_ = nullptr;
  GtkWidget* chosenText_ = nullptr;
  GtkWidget* found_ = nullptr;
  GtkWidget* scrolled_ = nullptr;
  book::EntryFilter filter_;
  PaymentPlaces* places_;
  SumTexts sums_;
  ShownPage shown_;
  Later searching_;
};

}  // namespace kivo::app
