// An exchange rate as the book keeps it.
#pragma once

#include <string>

namespace kivo::book {

/// A rate as it is stored; of a damaged book, any texts.
struct StoredRate {
  /// Its ISO 4217 code.
  std::string currency;
  /// The first day on which it holds, as yyyy-MM-dd; empty when it holds from the beginning.
  std::string from;
  /// What one unit of the currency is worth in the book's, as `money::Rate` reads it.
  std::string rate;

  bool operator==(const StoredRate&) const = default;
};

}  // namespace kivo::book
