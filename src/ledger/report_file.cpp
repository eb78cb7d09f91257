#include "ledger/report_file.h"

#include <chrono>
#include <string>

#include "ledger/private_folder.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/process/detached_programs.h"

namespace kivo::ledger {
namespace {

// xdg-open may run as long as the browser that it started, so a longer wait gains nothing.
constexpr std::chrono::seconds openingLimit(5);

}  // namespace

std::optional<std::filesystem::path> ReportFile::usualPlace() {
  const auto folder = linux_platform::runtimeFolder();
  if (!folder) return std::nullopt;
  openPrivateFolder(*folder, "name a file by --output");
  return *folder / "report.html";
}

void ReportFile::open(const std::filesystem::path& path) {
  linux_platform::DetachedPrograms programs;
  const auto status =
      programs.startAndWait({"xdg-open", std::filesystem::absolute(path).string()}, openingLimit);
  if (status == 0) return;
  const std::string why = status ? "xdg-open found no program for it" : "xdg-open is not installed";
  throw linux_platform::Failure("the report is written but not opened: " + why + "; open " +
                                path.string() + " in a browser");
}

}  // namespace kivo::ledger
