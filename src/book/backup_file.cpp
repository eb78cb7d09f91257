#include "book/backup_file.h"

#include <array>
#include <cerrno>
#include <optional>
#include <string_view>
#include <system_error>

#include <fcntl.h>
#include <openssl/sha.h>
#include <sys/stat.h>
#include <unistd.h>

#include "book/book_command.h"
#include "book/book_file.h"
#include "platform/linux/foundation/failure.h"
#include "platform/linux/foundation/safe_text.h"
#include "platform/linux/process/descriptor.h"

namespace kivo::book {
namespace {

using linux_platform::Descriptor;
using linux_platform::Failure;

// The numbers at the beginning of each SQLite file, as its format has them.
class Header {
 public:
  static constexpr std::size_t length = 100;
  // Absent when `bytes` are no beginning of a SQLite file.
  static std::optional<Header> in(const std::string& bytes) {
    using namespace std::string_view_literals;
    if (bytes.size() < length || !bytes.starts_with("SQLite format 3\0"sv)) return std::nullopt;
    return Header(bytes);
  }

  [[nodiscard]] std::int64_t version() const { return number(60, 4); }
  [[nodiscard]] std::int64_t applicationId() const { return number(68, 4); }
  // Whether the last commits may be in a WAL beside the file.
  [[nodiscard]] bool hasWal() const { return number(18, 1) == 2; }
  // Of the whole file, in bytes.
  [[nodiscard]] std::int64_t size() const {
    const std::int64_t page = number(16, 2);
    return (page == 1 ? 65536 : page) * number(28, 4);
  }

 private:
  explicit Header(const std::string& bytes) : bytes_(bytes.substr(0, length)) {}
  [[nodiscard]] std::int64_t number(std::size_t at, std::size_t count) const {
    std::int64_t value = 0;
    for (const char byte : bytes_.substr(at, count)) {
      value = value * 256 + static_cast<unsigned char>(byte);
    }
    return value;
  }

  std::string bytes_;
};

std::string systemReason() { return std::generic_category().message(errno); }

// The first bytes of a file, `most` at most; absent, with errno, when it cannot be read.
std::optional<std::string> bytesOf(const Descriptor& file, std::size_t most) {
  std::string bytes(most, '\0');
  std::size_t length = 0;
  while (length < most) {
    const ssize_t count =
        ::pread(file.number(), bytes.data() + length, most - length, static_cast<off_t>(length));
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return std::nullopt;
    if (count == 0) break;
    length += static_cast<std::size_t>(count);
  }
  bytes.resize(length);
  return bytes;
}

// SHA-256, as bytes.
std::string digestOf(std::string_view bytes) {
  std::string digest(SHA256_DIGEST_LENGTH, '\0');
  SHA256(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(),
         reinterpret_cast<unsigned char*>(digest.data()));
  return digest;
}

std::string quoted(const std::filesystem::path& path) {
  return '"' + linux_platform::escapedControls(path.string()) + '"';
}

// The reason why a file of these marks is no backup that can be read; empty when it is one.
std::string refusalOf(const std::optional<Header>& header) {
  const std::string advice =
      " and not a backup; " + bookCommand("backup FILE") + " writes a backup";
  if (header && header->applicationId() == bookApplicationId) return " is a book" + advice;
  if (header && header->hasWal()) return " is a database in use" + advice;
  if (!header || header->applicationId() != backupApplicationId) return " is no backup of Kivo";
  if (header->version() > backupVersion) {
    return " was written by a newer version of Kivo; update Kivo";
  }
  return "";
}

}  // namespace

std::string backupBytes(const std::filesystem::path& path) {
  const std::string name = quoted(path);
  const auto notRead = [&name] { return Failure("cannot read " + name + ": " + systemReason()); };
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  struct stat found {};
  if (file.number() < 0 || fstat(file.number(), &found) != 0) throw notRead();
  if (S_ISDIR(found.st_mode)) throw Failure(name + " is a folder; name a file in it");
  if (!S_ISREG(found.st_mode)) throw Failure(name + " is no backup of Kivo");
  const auto beginning = bytesOf(file, Header::length);
  if (!beginning) throw notRead();
  const auto header = Header::in(*beginning);
  if (const std::string refusal = refusalOf(header); !refusal.empty()) {
    throw Failure(name + refusal);
  }
  const std::int64_t written = header->size() + SHA256_DIGEST_LENGTH;
  if (written != found.st_size) {
    throw Failure(name + " is damaged: it has " + std::to_string(found.st_size) +
                  " bytes instead of " + std::to_string(written) + "; take another backup");
  }
  auto bytes = bytesOf(file, static_cast<std::size_t>(written));
  if (!bytes) throw notRead();
  const std::string digest = bytes->substr(static_cast<std::size_t>(header->size()));
  bytes->resize(static_cast<std::size_t>(header->size()));
  if (digest != digestOf(*bytes)) {
    throw Failure(name +
                  " is damaged: its bytes are not those that were written; "
                  "take another backup");
  }
  return *std::move(bytes);
}

void seal(const std::filesystem::path& path) {
  const Descriptor file(open(path.c_str(), O_RDWR | O_APPEND | O_NOFOLLOW | O_CLOEXEC));
  struct stat found {};
  if (file.number() < 0 || fstat(file.number(), &found) != 0) throw Failure(systemReason());
  const auto bytes = bytesOf(file, static_cast<std::size_t>(found.st_size));
  if (!bytes) throw Failure(systemReason());
  const std::string digest = digestOf(*bytes);
  const ssize_t count = ::write(file.number(), digest.data(), digest.size());
  if (count < 0) throw Failure(systemReason());
  if (count != static_cast<ssize_t>(digest.size())) throw Failure("the disk is full");
}

void requireReplaceable(const std::filesystem::path& path) {
  struct stat found {};
  if (lstat(path.c_str(), &found) != 0 || !S_ISREG(found.st_mode) || found.st_size == 0) return;
  const Descriptor file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC));
  const auto header = Header::in(bytesOf(file, Header::length).value_or(""));
  if (header && header->applicationId() == backupApplicationId) return;
  throw Failure("there is a file that is no backup of Kivo; name another, or delete it first");
}

}  // namespace kivo::book
