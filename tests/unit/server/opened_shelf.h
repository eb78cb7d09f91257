// The shelf of a test's server.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "server/shelf.h"

namespace kivo::server {

/// Where the shelf of the private folders of the moment is: a database's URL. Empty where it is in
/// files.
inline std::function<std::string()> shelfDatabase;

/// Opens it, as each server does.
inline std::unique_ptr<Shelf> openedShelf() {
  return Shelf::open(shelfDatabase ? shelfDatabase() : "");
}

}  // namespace kivo::server
