// The report as one HTML page. Reads no book and writes no file.
#pragma once

#include <string>

#include "overview/report_figures.h"

namespace kivo::overview {

/// Returns `figures` as a self-contained HTML document without scripts.
/// Sums are in the device's locale, words in English.
std::string reportPage(const ReportFigures& figures);

}  // namespace kivo::overview
