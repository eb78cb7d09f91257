// The report of a year as one HTML page. Reads no book and writes no file.
#pragma once

#include <string>

#include "overview/year_summary.h"

namespace kivo::overview {

/// Returns `summary` as a self-contained HTML document without scripts, as `reportPage` does.
std::string yearPage(const YearSummary& summary);

}  // namespace kivo::overview
