// The one error of the book. Knows no database.
#pragma once

#include <stdexcept>
#include <string>

namespace kivo::book {

/// The book could not be read or written. `what` is a reason for the user, and contains no stored
/// data.
class BookFailure : public std::runtime_error {
 public:
  enum class Cause { damagedFile, other };

  explicit BookFailure(const std::string& why, Cause cause = Cause::other)
      : std::runtime_error(why), cause_(cause) {}

  [[nodiscard]] Cause cause() const { return cause_; }

 private:
  Cause cause_;
};

}  // namespace kivo::book
