// What an open book holds. Only for the files that define Book.
#pragma once

#include "book/book.h"
#include "book/history.h"
#include "platform/linux/store/sqlite_database.h"

namespace kivo::book {

struct Book::File {
  linux_platform::Database owner;
  sqlite3* database = owner.get();
  bool wasChecked = false;
  bool isInStep = false;
  /// Whether the step that runs deletes texts.
  bool owesErasure = false;
  /// Notes for the command whose step runs.
  ChangeNotes notes{database};
};

}  // namespace kivo::book
