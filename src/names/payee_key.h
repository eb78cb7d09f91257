// The form of a payee's name by which payees are compared.
#pragma once

#include <string>
#include <string_view>

#include "names/name_fold.h"

namespace kivo::names {

/// Equal for all ways to write one payee's name (`foldedName`).
class PayeeKey {
 public:
  /// Of `name` in UTF-8. Throws what `foldedName` throws.
  explicit PayeeKey(std::string_view name) : folded_(foldedName(name)) {}

  /// The folded name; empty for no name.
  [[nodiscard]] const std::string& text() const { return folded_; }

  bool operator==(const PayeeKey&) const = default;

 private:
  std::string folded_;
};

}  // namespace kivo::names
