// The page of a year: its months, categories and payees. Changes nothing.
#pragma once

#include "money/day.h"

namespace kivo::app {

class AppWindow;

/// Shows `year` beside the year before on a page of its own.
void openYearPage(AppWindow& window, const money::Year& year);

}  // namespace kivo::app
