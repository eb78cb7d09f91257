// The shelf that a command line names.
#pragma once

#include <memory>

#include "platform/linux/terminal/command_line.h"
#include "server/shelf.h"

namespace kivo::server {

inline constexpr const char* databaseOptionName = "--database";

/// The option that names PostgreSQL.
linux_platform::CommandParameter databaseOption();

/// Opens the shelf in the database that was given, or that KIVO_DATABASE names, or else that of
/// files. Throws as `Shelf::open`.
std::unique_ptr<Shelf> openedShelf(const linux_platform::GivenParameters& given);

}  // namespace kivo::server
