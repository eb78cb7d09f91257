#include "platform/linux/store/suite_database.h"

#include <array>

namespace kivo::linux_platform {
namespace {

constexpr std::array versions = {DatabaseVersion{
    "CREATE TABLE defaults (key TEXT PRIMARY KEY NOT NULL, value ANY NOT NULL) STRICT"}};

}  // namespace

Database openSuiteDatabase(std::string_view suiteName) {
  return openDatabase({suiteName, "defaults.sqlite3", 0x4B69766F, versions});
}

}  // namespace kivo::linux_platform
