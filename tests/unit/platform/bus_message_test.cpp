// The values of a message, written and read one after the other.
#include "platform/linux/bus/bus_message.h"

#include <gmock/gmock.h>

namespace kivo {
namespace {

using linux_platform::BusMessage;
using linux_platform::BusReader;
using linux_platform::BusWriter;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

BusMessage messageOf(const BusWriter::Write& write) {
  BusMessage message =
      linux_platform::ownedMessage(dbus_message_new(DBUS_MESSAGE_TYPE_METHOD_CALL));
  BusWriter writer(message.get());
  write(writer);
  return message;
}

std::string signatureOf(const BusMessage& message) {
  return dbus_message_get_signature(message.get());
}

TEST(ABusMessage, ReturnsItsValuesInOrder) {
  const BusMessage message = messageOf([](BusWriter& values) {
    values.text("شركة");
    values.integer(-7);
    values.number(1.5);
    values.texts({"one", "two"});
    values.texts({});
    values.text("last");
  });
  EXPECT_EQ(signatureOf(message), "sidasass");
  BusReader reader(message.get());
  EXPECT_EQ(reader.text(), "شركة");
  EXPECT_EQ(reader.integer(), -7);
  EXPECT_EQ(reader.number(), 1.5);
  EXPECT_THAT(reader.texts(), ElementsAre("one", "two"));
  EXPECT_THAT(reader.texts(), IsEmpty());
  EXPECT_FALSE(reader.atEnd());
  EXPECT_EQ(reader.text(), "last");
  EXPECT_TRUE(reader.atEnd());
  EXPECT_EQ(reader.text(), std::nullopt);
}

TEST(ABusMessage, DoesNotAdvancePastAValueOfAnotherType) {
  const BusMessage message = messageOf([](BusWriter& values) { values.integer(3); });
  BusReader reader(message.get());
  EXPECT_EQ(reader.text(), std::nullopt);
  EXPECT_EQ(reader.number(), std::nullopt);
  EXPECT_EQ(reader.integer(), 3);
}

TEST(ABusMessage, IsEmptyAtFirst) {
  const BusMessage message = messageOf([](BusWriter&) {});
  BusReader reader(message.get());
  EXPECT_TRUE(reader.atEnd());
  EXPECT_EQ(reader.integer(), std::nullopt);
}

TEST(ABusMessage, MakesAnyBytesValidUtf8) {
  const BusMessage message = messageOf([](BusWriter& values) {
    values.text("Caf\xC3");
    values.text(std::string_view("a\0b", 3));
    values.array("{sv}", [](BusWriter& entries) { entries.textEntry("\xFF", "\xED\xA0\x80"); });
  });
  BusReader reader(message.get());
  EXPECT_EQ(reader.text(), "Caf\uFFFD");
  EXPECT_EQ(reader.text(), "a\uFFFDb");
  BusReader entry = reader.inside().inside();
  EXPECT_EQ(entry.text(), "\uFFFD");
  EXPECT_THAT(entry.inside().text(), testing::Optional(testing::StartsWith("\uFFFD")));
}

TEST(ABusMessage, HoldsDictEntriesStructsAndVariants) {
  const BusMessage message = messageOf([](BusWriter& values) {
    values.array("{ss}", [](BusWriter& entries) { entries.entry("key", "value"); });
    values.array("{sv}", [](BusWriter& entries) {
      entries.variantEntry("icon", "(sb)", [](BusWriter& variant) {
        variant.structure([](BusWriter& icon) {
          icon.text("themed");
          icon.flag(true);
        });
      });
    });
  });
  EXPECT_EQ(signatureOf(message), "a{ss}a{sv}");
  BusReader reader(message.get());
  BusReader pair = reader.inside().inside();
  EXPECT_EQ(pair.text(), "key");
  EXPECT_EQ(pair.text(), "value");
  reader.skip();
  BusReader entry = reader.inside().inside();
  EXPECT_EQ(entry.text(), "icon");
  BusReader icon = entry.inside().inside();
  EXPECT_EQ(icon.text(), "themed");
  EXPECT_FALSE(icon.atEnd());
}

}  // namespace
}  // namespace kivo
