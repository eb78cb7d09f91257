// What an open book holds. Only for the files that define Book.
#pragma once

#include <memory>

#include "book/book.h"
#include "book/database.h"
#include "book/history.h"

namespace kivo::book {

struct Book::File {
  std::unique_ptr<Database> owner;
  Database& database = *owner;
  bool isInStep = false;
  /// Whether the step that runs deletes texts.
  bool owesErasure = false;
  /// Notes for the command whose step runs.
  ChangeNotes notes{database};
};

}  // namespace kivo::book
