// Catches the error of a decoding that must fail.
#pragma once

#include <gtest/gtest.h>

#include "platform/foundation/errors.h"

namespace kivo::testkit {

/// The DecodingError that the callable `reading` throws. The test fails when it throws none.
template <typename Reading>
platform::DecodingError decodingErrorOf(Reading reading) {
  try {
    static_cast<void>(reading());
  } catch (const platform::DecodingError& error) {
    return error;
  }
  ADD_FAILURE() << "no DecodingError was thrown";
  return {platform::DecodingError::Kind::dataCorrupted, "none was thrown"};
}

}  // namespace kivo::testkit
