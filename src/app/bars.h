// Bars and charts in the theme's colours. Each has its figures as text beside it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <adwaita.h>

#include "app/sum_texts.h"
#include "money/day.h"
#include "money/money.h"

namespace kivo::app {

enum class Bar {
  within,
  /// More than there is, in the colour of warnings.
  over,
};

/// Returns a bar of `part` of `whole`, two sums of one currency. It is empty when one of them is
/// not above zero.
GtkWidget* shareBar(const money::Money& part, const money::Money& whole, Bar bar);

/// Returns a row with a title, a figure at its end, a second line, and `bar` below. With `clicked`
/// it is a row to tap.
GtkWidget* barRow(const std::string& title, const std::string& figure, const std::string& detail,
                  GtkWidget* bar, std::function<void()> clicked = {});

/// Returns a chart with a bar for each of `days` of `month`, the first day's first. Its text
/// alternative names the largest.
GtkWidget* dayChart(const std::vector<money::Money>& days, const money::Month& month,
                    SumTexts& sums);

}  // namespace kivo::app
