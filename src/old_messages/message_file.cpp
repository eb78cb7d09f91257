#include "old_messages/message_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <utility>

#include "old_messages/chatty_history.h"
#include "old_messages/csv_messages.h"
#include "old_messages/sms_backup.h"

namespace kivo::old_messages {
namespace {

using linux_platform::Failure;

constexpr std::array<std::pair<const char*, Format>, 3> names = {
    {{"sms-backup", Format::smsBackup}, {"chatty", Format::chatty}, {"csv", Format::csv}}};

std::string placeOf(const std::filesystem::path& path) { return path.string() + ": "; }

// Opens a regular file: it is read twice, and its size is needed.
std::ifstream opened(const std::filesystem::path& path) {
  std::error_code error;
  const auto status = std::filesystem::status(path, error);
  if (error) throw Failure(placeOf(path) + error.message());
  if (!std::filesystem::is_regular_file(status)) {
    throw Failure(placeOf(path) + "it is no regular file; save the messages in one first");
  }
  errno = 0;
  std::ifstream file(path, std::ios::binary);
  if (!file) throw Failure(placeOf(path) + std::strerror(errno));
  return file;
}

Format formatOf(const std::filesystem::path& path) {
  std::ifstream file = opened(path);
  std::array<char, 64> begin{};
  file.read(begin.data(), begin.size());
  const std::string_view front(begin.data(), static_cast<std::size_t>(file.gcount()));
  if (front.starts_with("SQLite format 3")) return Format::chatty;
  const std::size_t first = front.find_first_not_of("\xEF\xBB\xBF \t\r\n");
  const bool isXml = first != std::string_view::npos && front[first] == '<';
  return isXml ? Format::smsBackup : Format::csv;
}

}  // namespace

std::optional<Format> formatFromText(std::string_view name) {
  for (const auto& [known, format] : names) {
    if (name == known) return format;
  }
  return std::nullopt;
}

std::vector<std::string> formatNames() {
  std::vector<std::string> all;
  for (const auto& [name, format] : names) all.emplace_back(name);
  return all;
}

MessageFile::MessageFile(std::filesystem::path path, std::optional<Format> format)
    : path_(std::move(path)), format_(format ? *format : formatOf(path_)) {
  opened(path_);
}

void MessageFile::read(const MessageUse& use, const std::function<void(double)>& progress) const {
  std::ifstream file = opened(path_);
  const auto size = static_cast<double>(std::max<std::uintmax_t>(1, file_size(path_)));
  std::string piece(std::size_t{1} << 16U, '\0');
  double done = 0;
  const ByteSource bytes = [&]() -> std::string_view {
    file.read(piece.data(), static_cast<std::streamsize>(piece.size()));
    if (file.bad()) {
      throw BrokenFile("byte " + std::to_string(static_cast<std::int64_t>(done)) +
                       ": it cannot be read");
    }
    const auto count = static_cast<std::size_t>(file.gcount());
    done += static_cast<double>(count);
    progress(std::min(1.0, done / size));
    return {piece.data(), count};
  };
  try {
    if (format_ == Format::smsBackup) readSmsBackup(bytes, use);
    if (format_ == Format::csv) readCsv(bytes, use);
    if (format_ == Format::chatty) readChatty(path_, use);
  } catch (const BrokenFile& broken) {
    throw BrokenFile(placeOf(path_) + broken.what());
  } catch (const OtherFile& other) {
    throw OtherFile(placeOf(path_) + other.what());
  }
}

}  // namespace kivo::old_messages
