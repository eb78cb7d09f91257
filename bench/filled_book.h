// Books of many transactions, as benchmarks need them.
#pragma once

#include <cstdint>

#include "testkit/private_folders.h"

namespace kivo::bench {

/// Creates a book of `count` transactions in `folders`: 55 a day up to 2026-11-21, of 200 payees,
/// in 19 categories, on four accounts whose balances two thirds of the messages state. A
/// transaction is missing now and then, so that there are gaps.
void fill(const testkit::PrivateFolders& folders, std::int64_t count);

}  // namespace kivo::bench
