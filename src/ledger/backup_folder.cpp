#include "ledger/backup_folder.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <sys/stat.h>

#include "book/current_day.h"
#include "money/day.h"
#include "platform/foundation/date.h"
#include "platform/foundation/date_formatter.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/store/database_folder.h"

namespace kivo::ledger {

namespace fs = std::filesystem;

namespace {

using linux_platform::Failure;

constexpr std::size_t dailyKept = 30;
constexpr std::string_view dailyFront = "kivo-";
constexpr std::string_view ending = ".kivo";

bool isDaily(const std::string& name) {
  if (!name.starts_with(dailyFront) || !name.ends_with(ending)) return false;
  const auto length = name.size() - dailyFront.size() - ending.size();
  return money::Day::fromText(std::string_view(name).substr(dailyFront.size(), length)).has_value();
}

}  // namespace

fs::path BackupFolder::usual() {
  const auto home = linux_platform::dataHome();
  if (!home) throw Failure("HOME is not set, so there is no place for backups; name a folder");
  std::error_code ignored;
  fs::create_directories(*home, ignored);
  fs::path folder = *home / "kivo-backups";
  create(folder);
  return folder;
}

void BackupFolder::create(const fs::path& folder) {
  const int error = mkdir(folder.c_str(), 0700) == 0 ? 0 : errno;
  std::error_code ignored;
  if (!fs::is_directory(folder, ignored)) {
    const std::string why =
        error == EEXIST ? "it is not a folder" : std::generic_category().message(error);
    throw Failure("cannot use the folder \"" + folder.string() + "\": " + why);
  }
  if (error == 0) linux_platform::syncFoldersAbove(fs::absolute(folder));
}

fs::path BackupFolder::ofToday(const fs::path& folder) {
  return folder / (std::string(dailyFront) + book::currentDay().text() + std::string(ending));
}

fs::path BackupFolder::beforeRestore(const fs::path& folder) {
  const platform::DateFormatter formatter{.dateFormat = "yyyy-MM-dd-HHmmss",
                                          .locale = "en_US_POSIX"};
  const std::string front = "before-restore-" + formatter.string(platform::Date::now());
  fs::path path = folder / (front + std::string(ending));
  std::error_code ignored;
  for (int nth = 2; fs::exists(fs::symlink_status(path, ignored)); ++nth) {
    path = folder / (front + "-" + std::to_string(nth) + std::string(ending));
  }
  return path;
}

void BackupFolder::removeOld(const fs::path& folder, const fs::path& kept) {
  std::vector<fs::path> found;
  std::error_code failure;
  for (fs::directory_iterator file(folder, failure), end; !failure && file != end;
       file.increment(failure)) {
    std::error_code ignored;
    const bool isFile = fs::is_regular_file(file->symlink_status(ignored));
    if (isFile && isDaily(file->path().filename())) found.push_back(file->path());
  }
  std::sort(found.begin(), found.end(), std::greater<>());
  for (std::size_t nth = dailyKept; nth < found.size(); ++nth) {
    if (found[nth].filename() != kept.filename()) fs::remove(found[nth], failure);
  }
}

}  // namespace kivo::ledger
