// A file of old messages of any content yields the same messages in pieces of any length, each with
// valid UTF-8, and one clear error at most. The last byte chooses the format, the one before it the
// length of the pieces.
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>

#include "old_messages/chatty_history.h"
#include "old_messages/csv_messages.h"
#include "old_messages/message_key.h"
#include "old_messages/sms_backup.h"
#include "platform/foundation/utf8.h"
#include "property.h"
#include "testkit/private_folders.h"

namespace {

using namespace kivo;
using namespace kivo::old_messages;
using fuzz::require;

struct Read {
  std::vector<OldMessage> messages;
  std::string error;

  bool operator==(const Read&) const = default;
};

template <typename Reader>
Read readBy(const Reader& reader) {
  Read read;
  try {
    reader([&](OldMessage message) { read.messages.push_back(std::move(message)); });
  } catch (const BrokenFile& broken) {
    read.error = broken.what();
    require(!read.error.empty(), "an error says why");
  } catch (const OtherFile& other) {
    read.error = other.what();
    require(read.messages.empty(), "no message is from a file of another kind");
  }
  for (const OldMessage& message : read.messages) {
    require(platform::repairedUtf8(message.sender) == message.sender, "a sender is UTF-8");
    require(platform::repairedUtf8(message.text) == message.text, "a text is UTF-8");
    require(keyOf(message).size() == 56, "each message has a key");
  }
  return read;
}

using StreamReader = void (*)(const ByteSource&, const MessageUse&);

Read readInPieces(StreamReader reader, const std::string& content, std::size_t length) {
  return readBy([&](const MessageUse& use) {
    std::string_view left = content;
    reader(
        [&] {
          const std::string_view piece = left.substr(0, length);
          left.remove_prefix(piece.size());
          return piece;
        },
        use);
  });
}

void readStore(const std::string& content) {
  static const testkit::TemporaryFolder folder;
  const auto path = folder.path() / "chatty-history.db";
  std::ofstream(path, std::ios::binary) << content;
  const Read first = readBy([&](const MessageUse& use) { readChatty(path, use); });
  require(readBy([&](const MessageUse& use) { readChatty(path, use); }) == first,
          "a store that does not change is read the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size) {
  FuzzedDataProvider data(bytes, size);
  // Taken from the end, so that the content of a file begins an input.
  const int format = data.ConsumeIntegralInRange(0, 2);
  const auto length = data.ConsumeIntegralInRange<std::size_t>(1, 64);
  const std::string content = data.ConsumeRemainingBytesAsString();
  if (format == 2) {
    readStore(content);
  } else {
    const StreamReader reader = format == 0 ? readSmsBackup : readCsv;
    require(
        readInPieces(reader, content, length) == readInPieces(reader, content, content.size() + 1),
        "the length of the pieces does not matter");
  }
  return 0;
}
