// Opens the database of a suite of user defaults. Reads and writes no value.
#pragma once

#include <string_view>

#include "platform/linux/store/sqlite_database.h"

namespace kivo::linux_platform {

/// Opens `defaults.sqlite3` in the suite's folder of `dataHome`, as `openDatabase` does: a table
/// `defaults` of `key` and `value`, with application_id 0x4B69766F ("Kivo" in ASCII) and
/// user_version 1.
Database openSuiteDatabase(std::string_view suiteName);

}  // namespace kivo::linux_platform
