#include "platform/linux/terminal/nearest_word.h"

#include <gtest/gtest.h>

namespace kivo::linux_platform {
namespace {

const std::vector<std::string> commands{"sign-in", "sign-out", "status", "queue",
                                        "ProcessSMSIntent"};

TEST(TheNearestWord, ToleratesAddedMissingChangedOrSwappedLetters) {
  EXPECT_EQ(nearestWord("queuee", commands), "queue");
  EXPECT_EQ(nearestWord("quue", commands), "queue");
  EXPECT_EQ(nearestWord("quaue", commands), "queue");
  EXPECT_EQ(nearestWord("sing-in", commands), "sign-in");
}

TEST(TheNearestWord, IsFoundInAnyLetterCase) {
  EXPECT_EQ(nearestWord("processsmsintent", commands), "ProcessSMSIntent");
}

TEST(TheNearestWord, IsTheOneWithTheFewestDifferences) {
  EXPECT_EQ(nearestWord("sign-ou", commands), "sign-out");
  EXPECT_EQ(nearestWord("stats", {"state", "stats"}), "stats");
  EXPECT_EQ(nearestWord("cat", {"car", "can"}), "car");
}

TEST(TheNearestWord, IsNotFoundWhenMoreThanAThirdDiffers) {
  EXPECT_EQ(nearestWord("dance", commands), std::nullopt);
  EXPECT_EQ(nearestWord("", commands), std::nullopt);
  EXPECT_EQ(nearestWord("on", {"in"}), std::nullopt);
  EXPECT_EQ(nearestWord("queue", {}), std::nullopt);
}

}  // namespace
}  // namespace kivo::linux_platform
