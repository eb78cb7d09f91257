// The files of SMS Backup & Restore.
#include "old_messages/sms_backup.h"

#include "old_messages/xml_references.h"
#include "unit/old_messages/old_message_test.h"

// The banks, merchants and people below do not exist.

namespace kivo::old_messages {
namespace {

using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

const std::string face = "\xF0\x9F\x98\x80";
const std::string replaced = "\xEF\xBF\xBD";

class AnSmsBackup : public OldMessageTest {
 protected:
  static std::string sms(const std::string& attributes) { return "  <sms " + attributes + " />\n"; }
  static std::string received(const std::string& body) {
    return sms(R"(protocol="0" address="TULIPBNK" date="1763719200123" type="1" body=")" + body +
               R"(" read="1")");
  }
  static std::string file(const std::string& content) {
    return "<?xml version='1.0' encoding='UTF-8' standalone='yes' ?>\n"
           "<!--File Created By SMS Backup & Restore-->\n<smses count=\"2\">\n" +
           content + "</smses>\n";
  }
  static std::vector<OldMessage> messagesIn(const std::string& content,
                                            std::size_t length = 65'536) {
    return read(readSmsBackup, file(content), length);
  }
  static std::string textIn(const std::string& body, std::size_t length = 65'536) {
    const auto messages = messagesIn(received(body), length);
    return messages.size() == 1 ? messages[0].text : "not one message";
  }
};

TEST_F(AnSmsBackup, HasSenderTimeAndTextOfEachMessage) {
  EXPECT_THAT(messagesIn(received("Paid EGP 5.00 at &lt;Kiosk&gt; &amp; Co&#10;Ref 1") +
                         sms(R"(address="+201001" date="0" type="1" body="شكرا")")),
              ElementsAre(OldMessage{.sender = "TULIPBNK",
                                     .moment = at(1763719200123),
                                     .text = "Paid EGP 5.00 at <Kiosk> & Co\nRef 1"},
                          OldMessage{.sender = "+201001", .moment = at(0), .text = "شكرا"}));
}

TEST_F(AnSmsBackup, LeavesSentMessagesAndDraftsOut) {
  EXPECT_THAT(messagesIn(sms(R"(address="A" date="1" type="2" body="sent")") +
                         sms(R"(address="A" date="1" type="3" body="draft")") +
                         sms(R"(address="A" date="1" body="of no type")") + received("mine")),
              ElementsAre(Field(&OldMessage::text, "mine")));
}

TEST_F(AnSmsBackup, LeavesMultimediaMessagesOut) {
  EXPECT_THAT(messagesIn(R"(<mms address="A" date="1" msg_box="1"><parts>
      <part ct="image/jpeg" data="/9j/4AAQ" /><part ct="text/plain" text="Look" /></parts>
      <addrs><addr address="A" type="137" /></addrs></mms>)" +
                         received("mine")),
              ElementsAre(Field(&OldMessage::text, "mine")));
}

TEST_F(AnSmsBackup, JoinsTheTwoHalvesOfAnEmoji) {
  EXPECT_EQ(textIn("Hi &#55357;&#56832;!"), "Hi " + face + "!");
  EXPECT_EQ(textIn("&#xD83D;&#xDE00;&#xd83d;&#xde00;"), face + face);
}

TEST_F(AnSmsBackup, KeepsAnEmojiThatIsOneReferenceOrPlain) {
  EXPECT_EQ(textIn("&#128512;&#x1F600;" + face), face + face + face);
}

TEST_F(AnSmsBackup, ReplacesHalvesThatAreAlone) {
  EXPECT_EQ(textIn("a&#55357;b"), "a" + replaced + "b");
  EXPECT_EQ(textIn("a&#56832;b"), "a" + replaced + "b");
  EXPECT_EQ(textIn("&#55357;"), replaced);
  EXPECT_EQ(textIn("&#55357;&#55357;&#56832;"), replaced + face);
  EXPECT_EQ(textIn("&#56832;&#55357;"), replaced + replaced);
  EXPECT_EQ(textIn("&#55357;&amp;&#56832;"), replaced + "&" + replaced);
}

TEST_F(AnSmsBackup, ReplacesReferencesToCharactersThatXmlForbids) {
  EXPECT_EQ(textIn("a&#0;&#8;&#xFFFE;&#x110000;&#99999999999;b"),
            "a" + replaced + replaced + replaced + replaced + replaced + "b");
}

TEST_F(AnSmsBackup, ReadsTheSameInPiecesOfAnyLength) {
  const std::string body = "Hi &#55357;&#56832; &amp; &#55357; &#xD83D;&#xDE00; ok";
  for (std::size_t length = 1; length < 40; ++length) {
    EXPECT_EQ(textIn(body, length), "Hi " + face + " & " + replaced + " " + face + " ok")
        << "in pieces of " << length;
  }
}

TEST_F(AnSmsBackup, KeepsALongText) {
  std::string body;
  for (int word = 0; word < 50'000; ++word) body += "word &#10; ";
  const std::string text = textIn(body, 4'096);
  EXPECT_EQ(text.size(), 50'000U * 7);
  EXPECT_THAT(text, testing::StartsWith("word \n word"));
}

TEST_F(AnSmsBackup, DropsTheRestOfAPicture) {
  XmlReferences references;
  const std::string kept(XmlReferences::longestRun, 'x');
  EXPECT_EQ(references.filtered(kept + "yyy"), kept);
  EXPECT_EQ(references.filtered("yyy\"&lt;yyy"), "\"&lt;yyy");
  EXPECT_THAT(messagesIn("<mms><part data=\"" + kept + kept + "\" /></mms>" + received("mine")),
              SizeIs(1));
}

TEST_F(AnSmsBackup, ReadsAMessageWithoutSomeAttributes) {
  EXPECT_THAT(messagesIn(sms(R"(type="1")")), ElementsAre(OldMessage{}));
}

TEST_F(AnSmsBackup, HasNoTimeWhereItsDateCannotBeRead) {
  for (const char* const date : {"", "yesterday", "12.5", "99999999999999999"}) {
    EXPECT_THAT(messagesIn(sms(std::string(R"(type="1" date=")") + date + "\"")),
                ElementsAre(Field(&OldMessage::moment, std::nullopt)))
        << date;
  }
}

TEST_F(AnSmsBackup, SaysInWhichLineItBreaksOffAndKeepsTheMessagesBefore) {
  const Broken cut = readBroken(readSmsBackup, "<smses>\n" + received("one") + "<sms type=\"1\"");
  EXPECT_THAT(cut.messages, ElementsAre(Field(&OldMessage::text, "one")));
  EXPECT_THAT(cut.error, HasSubstr("line 3: "));
  const Broken wrong =
      readBroken(readSmsBackup, "<smses>\n" + received("one") + "\n<sms <\n" + received("two"));
  EXPECT_THAT(wrong.messages, ElementsAre(Field(&OldMessage::text, "one")));
  EXPECT_THAT(wrong.error, HasSubstr("line 4: "));
  EXPECT_THAT(readBroken(readSmsBackup, "<smses>\n" + received("one")).error,
              HasSubstr("line 3: "));
}

TEST_F(AnSmsBackup, RefusesATagThatDoesNotEnd) {
  std::string endless = "<smses><mms text=\"";
  for (int piece = 0; piece < 20 * 1'024; ++piece) endless += std::string(1'023, 'x') + " ";
  const Broken broken = readBroken(readSmsBackup, endless);
  EXPECT_THAT(broken.messages, IsEmpty());
  EXPECT_THAT(broken.error, HasSubstr("no tag begins in the next 16 MiB"));
}

TEST_F(AnSmsBackup, IsNoOtherXml) {
  EXPECT_THROW(read(readSmsBackup, "<html><body/></html>"), OtherFile);
}

}  // namespace
}  // namespace kivo::old_messages
