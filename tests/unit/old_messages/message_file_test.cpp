// Files of old messages by their format, the store of Chatty among them.
#include "old_messages/message_file.h"

#include <filesystem>
#include <fstream>

#include "old_messages/message_key.h"
#include "testkit/chatty_store.h"
#include "testkit/private_folders.h"
#include "testkit/raw_store.h"
#include "unit/old_messages/old_message_test.h"

namespace kivo::old_messages {
namespace {

using linux_platform::Failure;
using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testkit::chattyMessage;

class AMessageFile : public OldMessageTest {
 protected:
  [[nodiscard]] std::filesystem::path written(const std::string& content) const {
    const auto path = folders_.home() / "messages";
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }
  // A store of Chatty with these messages.
  [[nodiscard]] std::filesystem::path chatty(const std::string& messages) const {
    const auto path = folders_.home() / "chatty-history.db";
    testkit::makeChattyStore(path, messages);
    return path;
  }
  static std::vector<OldMessage> messagesIn(const std::filesystem::path& path,
                                            std::optional<Format> format = std::nullopt) {
    std::vector<OldMessage> messages;
    MessageFile(path, format)
        .read([&](OldMessage message) { messages.push_back(std::move(message)); }, [](double) {});
    return messages;
  }
  static std::string failureOf(const std::filesystem::path& path,
                               std::optional<Format> format = std::nullopt) {
    try {
      messagesIn(path, format);
    } catch (const Failure& failure) {
      return failure.what();
    }
    return "none";
  }

  testkit::PrivateFolders folders_;
};

TEST_F(AMessageFile, IsReadInTheFormatThatItsContentShows) {
  EXPECT_THAT(messagesIn(written("\n <smses><sms type=\"1\" body=\"a\"/></smses>")),
              ElementsAre(Field(&OldMessage::text, "a")));
  EXPECT_THAT(messagesIn(written("date,sender,text\n1,A,b\n")),
              ElementsAre(Field(&OldMessage::text, "b")));
  EXPECT_THAT(messagesIn(chatty(chattyMessage(1, "c"))),
              ElementsAre(Field(&OldMessage::text, "c")));
}

TEST_F(AMessageFile, IsReadInTheFormatThatIsGiven) {
  EXPECT_THAT(failureOf(written("date,sender,text\n1,A,b\n"), Format::smsBackup),
              HasSubstr("line 1: "));
}

TEST_F(AMessageFile, SaysWhichFileIsNone) {
  const auto missing = folders_.home() / "missing.xml";
  EXPECT_EQ(failureOf(missing), missing.string() + ": No such file or directory");
  EXPECT_THAT(failureOf(folders_.home()),
              AllOf(HasSubstr(folders_.home().string()), HasSubstr("no regular file")));
  const auto other = written("hello\n");
  EXPECT_THAT(failureOf(other), HasSubstr(other.string() + ": its first line is not date,"));
}

TEST_F(AMessageFile, OfChattyHasItsReceivedMessages) {
  const auto store =
      chatty(chattyMessage(1, "one") + chattyMessage(-1, "sent") + chattyMessage(0, "a note") +
             chattyMessage(1, "two") + chattyMessage(1, "of a chat", 2));
  EXPECT_THAT(
      messagesIn(store),
      ElementsAre(OldMessage{.sender = "MyBank", .moment = at(1763719200000), .text = "one"},
                  Field(&OldMessage::text, "two")));
}

TEST_F(AMessageFile, OfChattyIsNotChanged) {
  const auto store = chatty(chattyMessage(1, "one"));
  std::filesystem::permissions(store, std::filesystem::perms::owner_read);
  const auto before = std::filesystem::last_write_time(store);
  EXPECT_THAT(messagesIn(store), SizeIs(1));
  EXPECT_EQ(std::filesystem::last_write_time(store), before);
  EXPECT_FALSE(std::filesystem::exists(store.string() + "-wal"));
}

TEST_F(AMessageFile, IsNoOtherDatabase) {
  const auto path = folders_.home() / "other.db";
  testkit::RawStore(path).run("CREATE TABLE messages (a)");
  EXPECT_THAT(failureOf(path), HasSubstr("no store of Chatty 0.7 or later"));
}

TEST_F(AMessageFile, OfChattyThatIsDamagedSaysAfterHowManyMessages) {
  std::string insertions;
  for (int number = 0; number < 2'000; ++number) {
    insertions += chattyMessage(1, std::string(90, 'x'));
  }
  const auto store = chatty(insertions);
  constexpr std::streamoff middle = 100 * 1'024;
  std::fstream(store, std::ios::in | std::ios::out | std::ios::binary).seekp(middle)
      << std::string(middle, '\xFF');
  std::vector<OldMessage> messages;
  try {
    MessageFile(store).read([&](OldMessage message) { messages.push_back(std::move(message)); },
                            [](double) {});
    FAIL() << "the damage was not noticed";
  } catch (const BrokenFile& broken) {
    EXPECT_THAT(broken.what(), HasSubstr("after " + std::to_string(messages.size()) + " messages"));
  }
  EXPECT_THAT(messages, testing::Not(IsEmpty()));
}

TEST(TheKeyOfAMessage, IsMadeOfSenderTimeAndText) {
  const OldMessage message{.sender = "A", .moment = platform::Moment(), .text = "Bc"};
  EXPECT_EQ(keyOf(message), keyOf(OldMessage(message)));
  EXPECT_EQ(keyOf(message).size(), 7U + 16U + 1U + 32U);
  EXPECT_TRUE(keyOf(message).starts_with("import-"));
  OldMessage other = message;
  other.sender = "AB";
  other.text = "c";
  EXPECT_NE(keyOf(message), keyOf(other));
  other = message;
  other.moment = platform::Moment(std::chrono::milliseconds(1));
  EXPECT_NE(keyOf(message), keyOf(other));
}

}  // namespace
}  // namespace kivo::old_messages
