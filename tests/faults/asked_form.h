// Chooses between the long and the short form of a test.
#pragma once

#include <cstdlib>

namespace kivo::testkit {

/// `longForm` when KIVO_LONG is set, else `shortForm`.
inline int inAskedForm(int shortForm, int longForm) {
  return std::getenv("KIVO_LONG") == nullptr ? shortForm : longForm;
}

}  // namespace kivo::testkit
