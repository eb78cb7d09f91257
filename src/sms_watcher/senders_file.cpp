#include "sms_watcher/senders_file.h"

#include <cerrno>
#include <sstream>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>

#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/process/descriptor.h"
#include "platform/linux/store/database_folder.h"
#include "platform/linux/store/private_file.h"

namespace kivo::SendersFile {

using linux_platform::Descriptor;
namespace {

constexpr const char* sendersKey = "senders";
constexpr std::size_t longest = 1 << 20;  // bytes
constexpr const char* introduction =
    "# The senders whose messages are handed to Kivo: exact, or with * for any characters.\n"
    "# `kivo-phone watch add` and `remove` rewrite this file without other comments.\n";

// Returns the content of the file; nullopt when it is too long or cannot be read.
std::optional<std::string> bytesOf(int file) {
  std::string bytes(longest + 1, '\0');
  std::size_t length = 0;
  while (length < bytes.size()) {
    const ssize_t count = ::read(file, bytes.data() + length, bytes.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  if (length > longest) return std::nullopt;
  bytes.resize(length);
  return bytes;
}

std::string atLine(const toml::source_position& position) {
  return "line " + std::to_string(position.line) + ": ";
}

// Parses the file; the result has either the senders or the error.
Content parsed(const std::string& bytes) {
  const toml::parse_result result = toml::parse(bytes);
  // The library's message would quote the file.
  if (!result) return {.error = atLine(result.error().source().begin) + "this is not valid TOML"};
  Content content;
  for (const auto& [key, value] : result.table()) {
    const std::string line = atLine(value.source().begin);
    if (key.str() != sendersKey) return {.error = line + "unknown key; the only one is senders"};
    const toml::array* const senders = value.as_array();
    if (senders == nullptr) return {.error = line + "senders must be a list of texts in quotes"};
    for (const toml::node& sender : *senders) {
      const auto text = sender.value_exact<std::string>();
      if (!text)
        return {.error = atLine(sender.source().begin) + "a sender must be a text in quotes"};
      content.senders.push_back(*text);
    }
  }
  return content;
}

std::string textOf(const std::vector<std::string>& senders) {
  toml::array array;
  for (const std::string& sender : senders) array.push_back(sender);
  std::ostringstream out;
  out << introduction << toml::table{{sendersKey, std::move(array)}} << '\n';
  return out.str();
}

}  // namespace

std::optional<std::filesystem::path> place() {
  const auto home = linux_platform::configHome();
  if (!home) return std::nullopt;
  return *home / "kivo" / "sms-watcher.toml";
}

Content read() {
  const auto path = place();
  if (!path) return {};
  const Descriptor file(open(path->c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (file.number() < 0 && (errno == ENOENT || errno == ENOTDIR)) return {};
  struct stat found {};
  const bool isFile =
      file.number() >= 0 && fstat(file.number(), &found) == 0 && S_ISREG(found.st_mode);
  const auto bytes = isFile ? bytesOf(file.number()) : std::nullopt;
  Content content = bytes ? parsed(*bytes) : Content{.error = "it cannot be read"};
  if (content.error) content.error = path->string() + ": " + *content.error;
  content.changed = platform::Moment(std::chrono::seconds(found.st_mtim.tv_sec) +
                                     std::chrono::microseconds(found.st_mtim.tv_nsec / 1000));
  return content;
}

bool write(const std::vector<std::string>& senders) {
  const auto path = place();
  if (!path) return false;
  std::error_code failure;
  std::filesystem::create_directories(path->parent_path(), failure);
  const std::filesystem::path real = std::filesystem::weakly_canonical(*path, failure);
  if (failure) return false;
  linux_platform::syncFoldersAbove(real.parent_path());  // which may be new
  return !linux_platform::writePrivateFile(real, textOf(senders));
}

}  // namespace kivo::SendersFile
