#include "server/shelf.h"

#include "server/file_shelf.h"
#include "server/postgres_shelf.h"

namespace kivo::server {

std::unique_ptr<Shelf> Shelf::open(const std::string& database) {
  return database.empty() ? openFileShelf() : openPostgresShelf(database);
}

}  // namespace kivo::server
