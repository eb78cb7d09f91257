// The books of a server as files of one machine.
#pragma once

#include <memory>

#include "server/shelf.h"

namespace kivo::server {

/// Opens `app.kivo.server` in `dataHome`: a file of the directory, and the folders of the books
/// beside it, each with the files that kivo-ledger keeps for one person.
std::unique_ptr<Shelf> openFileShelf();

}  // namespace kivo::server
