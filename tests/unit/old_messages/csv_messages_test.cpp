// CSV files with old messages.
#include "old_messages/csv_messages.h"

#include <cstdlib>

#include "old_messages/csv_date.h"
#include "unit/old_messages/old_message_test.h"

namespace kivo::old_messages {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class ACsvFile : public OldMessageTest {
 protected:
  static std::vector<std::string> textsIn(const std::string& records, std::size_t length = 65'536) {
    std::vector<std::string> texts;
    for (const auto& message : read(readCsv, "date,sender,text\n" + records, length)) {
      texts.push_back(message.text);
    }
    return texts;
  }
  static Broken broken(const std::string& records) {
    return readBroken(readCsv, "date,sender,text\n" + records);
  }
};

TEST_F(ACsvFile, HasSenderTimeAndTextOfEachMessage) {
  EXPECT_THAT(
      read(readCsv, "date,sender,text\n1763719200000,MyBank,Paid 5\n"),
      ElementsAre(OldMessage{.sender = "MyBank", .moment = at(1763719200000), .text = "Paid 5"}));
}

TEST_F(ACsvFile, ReadsQuotedFields) {
  EXPECT_THAT(
      textsIn("1,A,\"one, two\"\n2,A,\"say \"\"hi\"\"\"\n3,A,\"first\nsecond\r\nthird\"\n"
              "4,A,\"\"\n5,A,a \"quote\" inside\n"),
      ElementsAre("one, two", "say \"hi\"", "first\nsecond\r\nthird", "", "a \"quote\" inside"));
}

TEST_F(ACsvFile, ReadsTheSameInPiecesOfAnyLength) {
  for (std::size_t length = 1; length < 20; ++length) {
    EXPECT_THAT(textsIn("1,A,\"a\"\"b\r\nc\"\r\n2,A,d\r\n", length), ElementsAre("a\"b\r\nc", "d"))
        << "in pieces of " << length;
  }
}

TEST_F(ACsvFile, MayHaveAnyLineEndsEmptyLinesAndAByteOrderMark) {
  const std::string mark = "\xEF\xBB\xBF";
  EXPECT_THAT(read(readCsv, mark + "date,sender,text\r\n1,A,x\r\n\r\n\n2,A,y"), SizeIs(2));
  EXPECT_THAT(read(readCsv, mark + "\"date\",\"sender\",\"text\"\n1,A,x"), SizeIs(1));
  EXPECT_THAT(read(readCsv, "date,sender,text"), IsEmpty());
  EXPECT_THAT(textsIn("1,A,a\rb\n"), ElementsAre("a\rb"));
}

TEST_F(ACsvFile, RepairsTextThatIsNotUtf8) {
  EXPECT_THAT(textsIn("1,A,caf\xE9\n"), ElementsAre("caf\xEF\xBF\xBD"));
}

TEST_F(ACsvFile, SaysInWhichLineADateIsWrongAndKeepsTheMessagesBefore) {
  const Broken wrong = broken("2026-11-21,A,\"one\ntwo\"\n2026-02-30,A,three\n2026-11-21,A,four\n");
  EXPECT_THAT(wrong.messages, ElementsAre(Field(&OldMessage::text, "one\ntwo")));
  EXPECT_THAT(wrong.error, HasSubstr("line 4: the date cannot be read"));
}

TEST_F(ACsvFile, SaysInWhichLineARecordIsWrong) {
  EXPECT_THAT(broken("1,A,x\n2,A,one, two\n").error, HasSubstr("line 3: it has 4 fields"));
  EXPECT_THAT(broken("1,A\n").error, HasSubstr("line 2: it has 2 fields"));
  EXPECT_THAT(broken("1,A,x\n\n2,A,\"open\nand so on\n").error,
              HasSubstr("line 4: a quote is not closed"));
  EXPECT_THAT(broken("1,A,\"x\"y\n").error, HasSubstr("line 2: a comma is missing"));
  EXPECT_THAT(broken("1,A,\"" + std::string(std::size_t{1} << 20U, 'x') + "\"\n").error,
              HasSubstr("line 2: it has more than 1 MiB"));
}

TEST_F(ACsvFile, IsNoFileWithAnotherHeader) {
  for (const char* const content : {"", "\n", "date;sender;text\n", "sender,date,text\n", "x"}) {
    EXPECT_THROW(read(readCsv, content), OtherFile) << content;
  }
}

class ACsvDate : public OldMessageTest {
 protected:
  ACsvDate() {
    setenv("TZ", "Africa/Cairo", 1);
    tzset();
  }
  ~ACsvDate() override {
    unsetenv("TZ");
    tzset();
  }
};

TEST_F(ACsvDate, MayHaveATimeAndAnOffset) {
  constexpr std::int64_t second = 1763719200;  // 2025-11-21T10:00:00Z
  for (const char* const text :
       {"1763719200000", "2025-11-21T10:00:00Z", "2025-11-21 10:00Z", "2025-11-21T12:00:00+02:00",
        "2025-11-21T12:00:00.000+0200", "2025-11-21T04:30:00-05:30", "2025-11-21T12:00:00+02"}) {
    EXPECT_EQ(momentFromCsv(text), at(second * 1'000)) << text;
  }
  EXPECT_EQ(momentFromCsv("2025-11-21T10:00:00.25Z"), at(second * 1'000 + 250));
}

TEST_F(ACsvDate, IsInTheDevicesTimeZoneWithoutAnOffset) {
  EXPECT_EQ(momentFromCsv("2025-11-21T12:00:00"), at(1763719200000));
  EXPECT_EQ(momentFromCsv("2025-11-21"), at(1763719200000));
  EXPECT_EQ(momentFromCsv("2025-07-01 12:00"), at(1751360400000));  // summer time
}

TEST_F(ACsvDate, IsRefusedWhenItDoesNotExist) {
  for (const char* const text :
       {"", "2026-02-30", "2026-13-01", "2026-11-21T", "2026-11-21T24:00", "2026-11-21T10:60",
        "2026-11-21T10:00:00+25:00", "2026-11-21T10:00:00 Z", "21-11-2026", "2026-11-21x", "12.5",
        "99999999999999999", "2026-11-21T10:00:00."}) {
    EXPECT_EQ(momentFromCsv(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace kivo::old_messages
