// The fixture of the tests of files of old messages.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "old_messages/old_message.h"

namespace kivo::old_messages {

class OldMessageTest : public testing::Test {
 protected:
  using Reader = void (*)(const ByteSource&, const MessageUse&);

  // The bytes of `content` in pieces of `length`.
  static ByteSource piecesOf(std::string_view content, std::size_t length) {
    return [content, length]() mutable {
      const std::string_view piece = content.substr(0, length);
      content.remove_prefix(piece.size());
      return piece;
    };
  }

  // The messages in `content`, which has no error.
  static std::vector<OldMessage> read(Reader reader, std::string_view content,
                                      std::size_t length = 65'536) {
    std::vector<OldMessage> messages;
    reader(piecesOf(content, length),
           [&](OldMessage message) { messages.push_back(std::move(message)); });
    return messages;
  }

  struct Broken {
    std::vector<OldMessage> messages = {};
    std::string error = {};
  };
  // The messages in front of the error in `content`, and that error.
  static Broken readBroken(Reader reader, std::string_view content) {
    Broken broken;
    try {
      reader(piecesOf(content, 65'536),
             [&](OldMessage message) { broken.messages.push_back(std::move(message)); });
    } catch (const BrokenFile& error) {
      broken.error = error.what();
    }
    return broken;
  }

  static platform::Moment at(std::int64_t milliseconds) {
    return platform::Moment(std::chrono::milliseconds(milliseconds));
  }
};

}  // namespace kivo::old_messages
