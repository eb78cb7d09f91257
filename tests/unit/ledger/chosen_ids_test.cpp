#include "ledger/commands/chosen_ids.h"

#include <gmock/gmock.h>

#include "platform/linux/terminal/command_failure.h"

namespace kivo::ledger {
namespace {

using linux_platform::BadUsage;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

TEST(TheChosenIds, AreSingleIdsAndRangesInAnyMixture) {
  EXPECT_THAT(idRangesFrom("3"), ElementsAre(IdRange{3, 3}));
  EXPECT_THAT(idRangesFrom("3 5 7-9"), ElementsAre(IdRange{3, 3}, IdRange{5, 5}, IdRange{7, 9}));
  EXPECT_THAT(idRangesFrom(" 4-4  2 "), ElementsAre(IdRange{4, 4}, IdRange{2, 2}));
}

TEST(TheChosenIds, AreRefusedWithTheWordThatIsNone) {
  for (const char* word :
       {"x", "3,5", "3-", "-3", "3--5", "3-5-7", "+3", "3..5", "٣", "99999999999999999999"}) {
    EXPECT_THAT([&] { idRangesFrom(std::string("1 ") + word); },
                ThrowsMessage<BadUsage>(HasSubstr(std::string("invalid ID \"") + word +
                                                  "\": it must be a number such as 3")))
        << word;
  }
  EXPECT_THROW(idRangesFrom(" "), BadUsage);
  EXPECT_THROW(idRangesFrom(""), BadUsage);
}

TEST(TheChosenIds, AreRefusedWhenARangeIsReversed) {
  EXPECT_THAT([] { idRangesFrom("9-3"); },
              ThrowsMessage<BadUsage>(HasSubstr("a range with the smaller number first")));
}

TEST(TheChosenIds, AreRefusedWhenARangeIsHuge) {
  EXPECT_THAT(idRangesFrom("1-1000"), ElementsAre(IdRange{1, 1000}));
  for (const char* word : {"1-1001", "0-9223372036854775807"}) {
    EXPECT_THAT([&] { idRangesFrom(word); },
                ThrowsMessage<BadUsage>(HasSubstr("a range of 1000 numbers at most")))
        << word;
  }
}

}  // namespace
}  // namespace kivo::ledger
