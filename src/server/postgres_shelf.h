// The books of a server in PostgreSQL, for any number of servers on any machines.
#pragma once

#include <memory>
#include <string>

#include "server/shelf.h"

namespace kivo::server {

/// Opens the shelf in the database at `url`, a connection URI. Throws BadUsage when `url` holds a
/// password: libpq takes it from the file that PGPASSFILE names, or from ~/.pgpass.
std::unique_ptr<Shelf> openPostgresShelf(const std::string& url);

}  // namespace kivo::server
