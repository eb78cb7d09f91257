#include "ledger/report_file.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/process/descriptor.h"
#include "platform/linux/process/detached_programs.h"

namespace kivo::ledger {
namespace {

using linux_platform::Descriptor;

// A browser that xdg-open starts itself keeps it running, so that a longer wait says nothing.
constexpr std::chrono::seconds openingLimit(5);

[[noreturn]] void fail(int code) { throw std::system_error(code, std::generic_category()); }

void writeAll(int file, std::string_view text) {
  while (!text.empty()) {
    const ssize_t count = ::write(file, text.data(), text.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail(errno);
    text.remove_prefix(static_cast<std::size_t>(count));
  }
}

}  // namespace

std::optional<std::filesystem::path> ReportFile::usualPlace() {
  auto folder = linux_platform::runtimeFolder();
  if (!folder) return std::nullopt;
  std::error_code shownByWrite;
  std::filesystem::create_directories(*folder, shownByWrite);
  return *folder / "report.html";
}

void ReportFile::write(const std::filesystem::path& path, const std::string& text) {
  struct stat found {};
  // Renaming would replace a device or a link by the report.
  if (lstat(path.c_str(), &found) == 0 && !S_ISREG(found.st_mode)) {
    fail(S_ISDIR(found.st_mode) ? EISDIR : EEXIST);
  }
  std::string fresh = path.string() + ".XXXXXX";
  const Descriptor file(mkostemp(fresh.data(), O_CLOEXEC));
  if (file.number() < 0) fail(errno);
  try {
    writeAll(file.number(), text);
    if (std::rename(fresh.c_str(), path.c_str()) != 0) fail(errno);
  } catch (const std::system_error&) {
    unlink(fresh.c_str());
    throw;
  }
}

std::string ReportFile::open(const std::filesystem::path& path) {
  linux_platform::DetachedPrograms programs;
  const auto status =
      programs.startAndWait({"xdg-open", std::filesystem::absolute(path).string()}, openingLimit);
  if (!status) return "xdg-open is not installed";
  return *status == 0 ? "" : "xdg-open found no program for it";
}

}  // namespace kivo::ledger
