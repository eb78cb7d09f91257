#include "old_messages/chatty_history.h"

#include <cstdlib>
#include <memory>
#include <string>

#include <sqlite3.h>

#include "platform/foundation/utf8.h"
#include "platform/linux/store/sqlite_statement.h"

namespace kivo::old_messages {
namespace {

using linux_platform::Statement;

struct Close {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
};

// Protocol 1 is SMS and MMS over a modem, 2 is MMS; direction 1 is received.
constexpr const char* receivedMessages = R"(
  SELECT coalesce(users.username, threads.name), messages.time, messages.body FROM messages
    JOIN threads ON threads.id = messages.thread_id
    JOIN accounts ON accounts.id = threads.account_id
    LEFT JOIN users ON users.id = messages.sender_id
  WHERE messages.direction = 1 AND accounts.protocol IN (1, 2)
  ORDER BY messages.id)";

std::optional<platform::Moment> momentFrom(std::int64_t seconds) {
  constexpr std::int64_t most = 1'000'000'000'000;  // of the year 33658
  if (seconds < -most || seconds > most) return std::nullopt;
  return platform::Moment(std::chrono::seconds(seconds));
}

}  // namespace

std::optional<std::filesystem::path> chattyStore() {
  const char* const home = std::getenv("HOME");
  if (home == nullptr || *home != '/') return std::nullopt;
  return std::filesystem::path(home) / ".purple" / "chatty" / "db" / "chatty-history.db";
}

void readChatty(const std::filesystem::path& path, const MessageUse& use) {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &opened, SQLITE_OPEN_READONLY, nullptr);
  const std::unique_ptr<sqlite3, Close> database(opened);
  if (code != SQLITE_OK) throw OtherFile(linux_platform::errorText(code));
  constexpr int timeoutInMilliseconds = 10'000;
  sqlite3_busy_timeout(opened, timeoutInMilliseconds);
  Statement query(opened, receivedMessages);
  if (!query.isCompiled() && query.code() == SQLITE_ERROR) {
    throw OtherFile("it is a database, but no store of Chatty 0.7 or later");
  }
  std::int64_t messages = 0;
  while (query.step()) {
    use({.sender = platform::repairedUtf8(query.text(0)),
         .moment = query.type(1) == SQLITE_INTEGER ? momentFrom(query.integer(1)) : std::nullopt,
         .text = platform::repairedUtf8(query.text(2))});
    ++messages;
  }
  if (query.code() == SQLITE_OK) return;
  throw BrokenFile("after " + std::to_string(messages) +
                   " messages: " + linux_platform::errorText(query.code()));
}

}  // namespace kivo::old_messages
