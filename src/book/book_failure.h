// The one error of the book. Knows no database.
#pragma once

#include <string>

#include "platform/linux/foundation/failure.h"

namespace kivo::book {

/// The book could not be read or written. `what` is a reason for the user, and contains no stored
/// data.
class BookFailure : public linux_platform::Failure {
 public:
  enum class Cause {
    damagedFile,
    /// Another change came at the same time, or another server took over: the same steps may
    /// succeed when they are taken again.
    crossed,
    other,
  };

  explicit BookFailure(const std::string& why, Cause cause = Cause::other)
      : Failure(why), cause_(cause) {}

  [[nodiscard]] Cause cause() const { return cause_; }

 private:
  Cause cause_;
};

}  // namespace kivo::book
