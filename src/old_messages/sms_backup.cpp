#include "old_messages/sms_backup.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <expat.h>

#include "old_messages/xml_references.h"
#include "platform/foundation/number_text.h"

namespace kivo::old_messages {
namespace {

// The parser keeps a tag in memory until its end.
constexpr std::size_t longestTag = std::size_t{16} << 20U;

constexpr std::string_view root = "smses";
constexpr std::string_view received = "1";

std::optional<platform::Moment> momentFrom(std::string_view milliseconds) {
  constexpr std::int64_t most = 1'000'000'000'000'000;  // of the year 33658
  const auto number = platform::integerFromText(milliseconds);
  if (!number || *number < -most || *number > most) return std::nullopt;
  return platform::Moment(std::chrono::milliseconds(*number));
}

class BackupReader {
 public:
  explicit BackupReader(const MessageUse& use) : use_(use) {
    XML_SetUserData(parser_.get(), this);
    XML_SetStartElementHandler(parser_.get(), [](void* self, const char* name, const char** list) {
      static_cast<BackupReader*>(self)->begin(name, list);
    });
  }

  void read(const ByteSource& bytes) {
    std::string waiting;
    for (std::string_view next = bytes(); !next.empty(); next = bytes()) {
      waiting += references_.filtered(next);
      // For each piece the parser reads a tag from its beginning: with pieces of one length, the
      // time for a long one would grow by the square of its length.
      if (waiting.size() < sinceTag_) continue;
      parse(waiting, XML_FALSE);
      waiting.clear();
    }
    parse(waiting + references_.rest(), XML_TRUE);
  }

 private:
  struct Free {
    void operator()(XML_Parser parser) const { XML_ParserFree(parser); }
  };

  // Called from C, so it passes nothing on, which might throw.
  void begin(std::string_view name, const char* const* attributes) {
    sinceTag_ = 0;
    if (!isBackup_) {
      isBackup_ = name == root;
      if (!isBackup_) XML_StopParser(parser_.get(), XML_FALSE);
      return;
    }
    if (name != "sms") return;
    OldMessage message;
    bool isReceived = false;
    for (; *attributes != nullptr; attributes += 2) {
      const std::string_view attribute = attributes[0];
      const std::string_view value = attributes[1];
      if (attribute == "address") message.sender = value;
      if (attribute == "date") message.moment = momentFrom(value);
      if (attribute == "type") isReceived = value == received;
      if (attribute == "body") message.text = value;
    }
    if (isReceived) messages_.push_back(std::move(message));
  }

  [[nodiscard]] std::string place() const {
    return "line " + std::to_string(XML_GetCurrentLineNumber(parser_.get())) + ": ";
  }

  void parse(const std::string& piece, XML_Bool isLast) {
    sinceTag_ += piece.size();
    const auto status =
        XML_Parse(parser_.get(), piece.data(), static_cast<int>(piece.size()), isLast);
    for (OldMessage& message : std::exchange(messages_, {})) use_(std::move(message));
    if (status == XML_STATUS_OK) {
      if (sinceTag_ >= longestTag) throw BrokenFile(place() + "no tag begins in the next 16 MiB");
      return;
    }
    const XML_Error error = XML_GetErrorCode(parser_.get());
    if (error == XML_ERROR_ABORTED) {
      throw OtherFile(
          "it is XML, but no file of SMS Backup & Restore: it does not begin with <smses>");
    }
    throw BrokenFile(place() + XML_ErrorString(error));
  }

  const MessageUse& use_;
  std::unique_ptr<XML_ParserStruct, Free> parser_{XML_ParserCreate(nullptr)};
  XmlReferences references_;
  std::vector<OldMessage> messages_;
  bool isBackup_ = false;
  // The bytes that were parsed since the last piece in which a tag began.
  std::size_t sinceTag_ = 0;
};

}  // namespace

void readSmsBackup(const ByteSource& bytes, const MessageUse& use) {
  BackupReader(use).read(bytes);
}

}  // namespace kivo::old_messages
