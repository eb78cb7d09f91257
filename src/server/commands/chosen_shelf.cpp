#include "server/commands/chosen_shelf.h"

#include <cstdlib>

namespace kivo::server {

using linux_platform::CommandParameter;

CommandParameter databaseOption() {
  return {databaseOptionName, "PostgreSQL, as postgresql://host/kivo; KIVO_DATABASE if not given",
          CommandParameter::Kind::optional};
}

std::unique_ptr<Shelf> openedShelf(const linux_platform::GivenParameters& given) {
  if (const auto database = given.find(databaseOptionName); database != given.end()) {
    return Shelf::open(database->second);
  }
  const char* const named = std::getenv("KIVO_DATABASE");
  return Shelf::open(named == nullptr ? "" : named);
}

}  // namespace kivo::server
