// The page "This Month": sums, categories, budgets, days and what comes again. Changes nothing.
#pragma once

#include <optional>

#include <adwaita.h>

#include "app/shown_page.h"
#include "app/signals.h"
#include "app/sum_texts.h"
#include "overview/month_summary.h"

namespace kivo::app {

class AppWindow;

/// Shows the current month, and others by a swipe or an arrow.
class MonthPage {
 public:
  explicit MonthPage(AppWindow& window);

  [[nodiscard]] GtkWidget* widget() const { return page_; }
  void refresh() { shown_.refresh(); }

 private:
  using Figures = overview::MonthSummary;

  GtkWidget* navigation();
  void listenToSwipes();
  void show(int monthsBack);
  void read();
  void build(const Figures& figures, const std::vector<money::Money>& days);
  void addSums(const Figures& figures);
  void addNotes(const Figures& figures);
  void addBudgets(const Figures& figures);
  void addCategories(const Figures& figures);
  void addDays(const Figures& figures, const std::vector<money::Money>& days);
  void addPayees(const Figures& figures);
  void addOtherCurrencies(const Figures& figures);
  void readRecurring();
  void addRecurring(const Figures& figures);

  AppWindow& window_;
  GtkWidget* page_;
  GtkWidget* title_ = nullptr;
  GtkWidget* next_ = nullptr;
  GtkWidget* content_ = nullptr;
  GtkWidget* recurring_ = nullptr;
  /// 0 is the current month, whichever that is at the time.
  int monthsBack_ = 0;
  SumTexts sums_;
  ShownPage shown_;
  Later readingRecurring_;
};

}  // namespace kivo::app
