#include "platform/foundation/uuid.h"

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kivo::platform {
namespace {

TEST(AUuid, IsVersionFourInUpperCase) {
  for (int i = 0; i < 1000; ++i) {
    const std::string text = UUID::uuidString();
    ASSERT_EQ(text.size(), 36u);
    ASSERT_THAT(text, testing::MatchesRegex("[0-9A-F]+-[0-9A-F]+-4[0-9A-F]+-[89AB][0-9A-F]+-"
                                            "[0-9A-F]+"));
    for (const std::size_t hyphen : {8u, 13u, 18u, 23u}) ASSERT_EQ(text[hyphen], '-');
  }
}

TEST(AUuid, IsUniqueEachTime) {
  std::set<std::string> all;
  for (int i = 0; i < 10000; ++i) all.insert(UUID::uuidString());
  EXPECT_EQ(all.size(), 10000u);
}

TEST(AUuid, UsesEveryDigitInEveryRandomPosition) {
  std::array<std::set<char>, 36> seen;
  for (int i = 0; i < 1000; ++i) {
    const std::string text = UUID::uuidString();
    for (std::size_t place = 0; place < text.size(); ++place) seen[place].insert(text[place]);
  }
  for (std::size_t place = 0; place < seen.size(); ++place) {
    const bool isHyphen = place == 8 || place == 13 || place == 18 || place == 23;
    const std::size_t digits = isHyphen || place == 14 ? 1 : place == 19 ? 4 : 16;
    EXPECT_EQ(seen[place].size(), digits) << "place " << place;
  }
}

}  // namespace
}  // namespace kivo::platform
