// SQL on the tables of the open book, past its calls.
#pragma once

#include <functional>
#include <string>

namespace kivo::testkit {

/// How SQL runs on a book that is in no file: as `RawStore::run`, on the book that `Book::open`
/// opens. Empty where books are files.
inline std::function<std::string(const std::string& sql)> rawBook;

}  // namespace kivo::testkit
