#include "phone/value_listing.h"

#include <gtest/gtest.h>

namespace kivo {
namespace {

using Controls = ValueListing::Controls;

TEST(AValueListing, ShowsKeyTypeAndValueInColumns) {
  EXPECT_EQ(ValueListing::text({{"currency", "EGP"},
                                {"integer", std::int64_t{42}},
                                {"smsQueueDrainLock", 0.0},
                                {"unknown", std::monostate{}}},
                               Controls::asTheyAre),
            "currency           text     EGP\n"
            "integer            integer  42\n"
            "smsQueueDrainLock  float    0.0\n"
            "unknown            other    (neither text nor number)\n");
}

TEST(AValueListing, ShowsThatNothingIsStored) {
  EXPECT_EQ(ValueListing::text({}, Controls::escaped), "Nothing is stored.\n");
}

TEST(AValueListing, EscapesControlCharactersOnlyWhenAsked) {
  const std::map<std::string, platform::UserDefaults::Value> values{{"a\tb", "c\n\x1b[2Jd"},
                                                                    {"key", "x"}};
  EXPECT_EQ(ValueListing::text(values, Controls::escaped),
            "a\\tb  text     c\\n\\x1b[2Jd\n"
            "key   text     x\n");
  EXPECT_EQ(ValueListing::text(values, Controls::asTheyAre),
            "a\tb   text     c\n\x1b[2Jd\n"
            "key  text     x\n");
}

TEST(AValueText, IsAbsentForAValueThatIsNotATextOrNumber) {
  EXPECT_EQ(ValueListing::valueText(std::monostate{}), std::nullopt);
  EXPECT_EQ(ValueListing::valueText(1e16), "1e+16");
  EXPECT_EQ(ValueListing::valueText(std::int64_t{-3}), "-3");
  EXPECT_EQ(ValueListing::valueText(""), "");
}

}  // namespace
}  // namespace kivo
