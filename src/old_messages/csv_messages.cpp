#include "old_messages/csv_messages.h"

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "old_messages/csv_date.h"
#include "platform/foundation/utf8.h"

namespace kivo::old_messages {
namespace {

// A quote that is never closed must not fill the memory.
constexpr std::size_t longestRecord = std::size_t{1} << 20U;

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
const std::vector<std::string> header = {"date", "sender", "text"};

class CsvReader {
 public:
  explicit CsvReader(const MessageUse& use) : use_(use) {}

  void read(const ByteSource& bytes) {
    for (std::string_view next = bytes(); !next.empty(); next = bytes()) {
      for (const char byte : next) take(byte);
    }
    if (place_ == Place::quoted) throw broken("a quote is not closed");
    if (place_ != Place::recordBegin) endRecord();
    if (isFirst_) throw otherFile();
  }

 private:
  enum class Place {
    recordBegin,
    fieldBegin,
    /// In a field without quotes.
    plain,
    quoted,
    /// Behind a quote in a field with quotes: its end, or one of two.
    quote,
    /// Behind a CR that a LF should follow.
    carriageReturn,
  };

  void take(char byte) {
    if (byte == '\n') ++line_;
    if (++size_ > longestRecord) throw broken("it has more than 1 MiB; is a quote missing?");
    switch (place_) {
      case Place::quoted:
        if (byte == '"') place_ = Place::quote;
        if (byte != '"') field_ += byte;
        return;
      case Place::quote:
        if (byte == '"') {
          field_ += byte;
          place_ = Place::quoted;
          return;
        }
        if (byte != ',' && byte != '\r' && byte != '\n') {
          throw broken("a comma is missing behind a quote");
        }
        return takePlain(byte);
      case Place::carriageReturn:
        if (byte == '\n') return endRecord();
        field_ += '\r';
        place_ = Place::plain;
        return takePlain(byte);
      case Place::recordBegin:
        if (byte == '\n') return beginRecord();
        [[fallthrough]];
      case Place::fieldBegin:
        if (byte == '"' && (field_.empty() || field_ == byteOrderMark)) {
          place_ = Place::quoted;
          return;
        }
        [[fallthrough]];
      case Place::plain:
        return takePlain(byte);
    }
  }

  void takePlain(char byte) {
    if (byte == '\n') return endRecord();
    if (byte == '\r') {
      place_ = Place::carriageReturn;
    } else if (byte == ',') {
      fields_.push_back(std::exchange(field_, {}));
      place_ = Place::fieldBegin;
    } else {
      field_ += byte;
      // The mark of the file's encoding may stand in front of a quote.
      const bool isMark = isFirst_ && fields_.empty() && byteOrderMark.starts_with(field_);
      place_ = isMark ? Place::fieldBegin : Place::plain;
    }
  }

  void beginRecord() {
    fields_.clear();
    field_.clear();
    size_ = 0;
    begin_ = line_;
    place_ = Place::recordBegin;
  }

  void endRecord() {
    fields_.push_back(std::exchange(field_, {}));
    const bool isEmpty = fields_.size() == 1 && fields_[0].empty();
    if (isFirst_) {
      takeHeader();
    } else if (!isEmpty) {
      use_(message());
    }
    beginRecord();
  }

  void takeHeader() {
    if (fields_[0].starts_with(byteOrderMark)) fields_[0].erase(0, byteOrderMark.size());
    if (fields_ != header) throw otherFile();
    isFirst_ = false;
  }

  OldMessage message() {
    if (fields_.size() != header.size()) {
      throw broken("it has " + std::to_string(fields_.size()) +
                   (fields_.size() == 1 ? " field" : " fields") +
                   " instead of three; a text with a comma needs quotes");
    }
    const auto moment = momentFromCsv(fields_[0]);
    if (!moment) {
      throw broken(
          "the date cannot be read; it must be like 2026-11-21, 2026-11-21T10:05:00+02:00 "
          "or 1763719200000");
    }
    return {.sender = platform::repairedUtf8(fields_[1]),
            .moment = moment,
            .text = platform::repairedUtf8(fields_[2])};
  }

  [[nodiscard]] BrokenFile broken(const std::string& why) const {
    return BrokenFile("line " + std::to_string(begin_) + ": " + why);
  }
  static OtherFile otherFile() {
    return OtherFile(
        "its first line is not date,sender,text, and it is neither a file of SMS Backup & Restore "
        "nor the store of Chatty");
  }

  const MessageUse& use_;
  Place place_ = Place::recordBegin;
  std::string field_;
  std::vector<std::string> fields_;
  bool isFirst_ = true;
  std::size_t size_ = 0;
  // The number of this line, and of the one in which the record begins.
  std::int64_t line_ = 1;
  std::int64_t begin_ = 1;
};

}  // namespace

void readCsv(const ByteSource& bytes, const MessageUse& use) { CsvReader(use).read(bytes); }

}  // namespace kivo::old_messages
