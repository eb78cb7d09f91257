#include "ledger/commands/written_file.h"

#include "platform/linux/foundation/failure.h"
#include "platform/linux/store/private_file.h"

namespace kivo::ledger {

void writeFile(const std::filesystem::path& path, std::string_view text) {
  try {
    linux_platform::writePrivateFile(path, text);
  } catch (const linux_platform::Failure& failure) {
    throw linux_platform::Failure("cannot write \"" + path.string() + "\": " + failure.what());
  }
}

}  // namespace kivo::ledger
