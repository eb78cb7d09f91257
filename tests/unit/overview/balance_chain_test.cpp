#include "overview/balance_chain.h"

#include <algorithm>
#include <random>
#include <string>

#include <gmock/gmock.h>

namespace kivo::overview {

// For the messages of failed expectations.
void PrintTo(const Gap& gap, std::ostream* out) {
  *out << gap.from.text() << " to " << gap.to.text() << ": " << gap.amount;
}

namespace {

using money::Day;
using testing::ElementsAre;
using testing::IsEmpty;

Link stated(const Day& day, std::int64_t moved, std::int64_t balance) {
  return {.date = day, .moved = moved, .booked = moved, .balance = balance};
}

Link silent(const Day& day, std::int64_t moved) {
  return {.date = day, .moved = moved, .booked = moved};
}

TEST(ABalanceChain, OfNoLinksHasNoBalance) {
  EXPECT_FALSE(balanceChain({}).last);
  EXPECT_FALSE(balanceChain({silent("2026-11-03", -5)}).last);
}

TEST(ABalanceChain, HasNoGapWhenEachBalanceFollows) {
  const BalanceChain chain =
      balanceChain({stated("2026-11-03", -100, 900), stated("2026-11-05", -50, 850),
                    stated("2026-11-09", 400, 1250)});
  EXPECT_THAT(chain.gaps, IsEmpty());
  EXPECT_EQ(chain.last, 2U);
}

TEST(ABalanceChain, ShowsMissingMoneyAsAGapAboveZero) {
  EXPECT_THAT(balanceChain({stated("2026-11-03", -100, 900), stated("2026-11-05", -50, 350)}).gaps,
              ElementsAre(Gap{"2026-11-03", "2026-11-05", 500}));
}

TEST(ABalanceChain, ShowsMoneyThatNothingBroughtAsAGapBelowZero) {
  EXPECT_THAT(balanceChain({stated("2026-11-03", -100, 900), stated("2026-11-05", -50, 1350)}).gaps,
              ElementsAre(Gap{"2026-11-03", "2026-11-05", -500}));
}

TEST(ABalanceChain, CountsEntriesWithoutABalanceBetweenTwo) {
  EXPECT_THAT(balanceChain({stated("2026-11-03", -100, 900), silent("2026-11-04", -30),
                            silent("2026-11-04", 10), stated("2026-11-05", -50, 830)})
                  .gaps,
              IsEmpty());
}

TEST(ABalanceChain, CountsAnEntryWithoutABalanceAlsoWhereItArrivedLater) {
  EXPECT_THAT(balanceChain({stated("2026-11-03", -100, 900), stated("2026-11-03", -50, 820),
                            silent("2026-11-03", -30)})
                  .gaps,
              IsEmpty());
}

TEST(ABalanceChain, PutsMessagesOfOneDayInOrder) {
  const BalanceChain chain =
      balanceChain({stated("2026-11-03", -50, 800), stated("2026-11-03", -100, 900),
                    stated("2026-11-03", -50, 850)});
  EXPECT_THAT(chain.gaps, IsEmpty());
  EXPECT_EQ(chain.last, 0U);
}

TEST(ABalanceChain, FindsTheOrderAcrossMidnight) {
  EXPECT_THAT(balanceChain({stated("2026-11-03", -100, 900), stated("2026-11-03", -50, 800),
                            stated("2026-11-04", -50, 850), stated("2026-11-04", -1, 799)})
                  .gaps,
              IsEmpty());
}

TEST(ABalanceChain, DoesNotReorderDaysThatAreNotAdjacent) {
  EXPECT_THAT(balanceChain({stated("2026-11-03", -50, 800), stated("2026-11-05", -50, 850)}).gaps,
              ElementsAre(Gap{"2026-11-03", "2026-11-05", -100}));
}

TEST(ABalanceChain, KeepsGapsOfOneDayOnThatDay) {
  EXPECT_THAT(balanceChain({stated("2026-11-03", -50, 800), stated("2026-11-03", -50, 700)}).gaps,
              ElementsAre(Gap{"2026-11-03", "2026-11-03", 50}));
}

TEST(ABalanceChain, LeavesAGapForWhatIsNotBooked) {
  Link review = stated("2026-11-04", -100, 800);
  review.booked = 0;
  EXPECT_THAT(
      balanceChain({stated("2026-11-03", -100, 900), review, stated("2026-11-05", -50, 750)}).gaps,
      ElementsAre(Gap{"2026-11-03", "2026-11-04", 100}));
}

TEST(ABalanceChain, KeepsTheOrderOfArrivalWhenNoOtherIsBetter) {
  // The first day ends as it began, so that the second seems to come first.
  EXPECT_THAT(balanceChain({stated("2026-11-03", -100, 900), stated("2026-11-03", 100, 1000),
                            silent("2026-11-03", -30), stated("2026-11-04", -70, 900),
                            stated("2026-11-20", -10, 880)})
                  .gaps,
              ElementsAre(Gap{"2026-11-04", "2026-11-20", 10}));
}

// A payment that the random books below really had.
struct Payment {
  Link link;
  bool isLost = false;
};

// Payments with balances in their true order. Sums are powers of two with a random sign, none
// twice, so that no two balances are equal by chance.
std::vector<Payment> truePayments(std::mt19937& random) {
  std::vector<Payment> payments;
  std::vector<std::int64_t> sums;
  for (int bit = 0; bit < 40; ++bit) sums.push_back(std::int64_t{1} << bit);
  std::shuffle(sums.begin(), sums.end(), random);
  std::int64_t balance = 0;
  int daysAgo = 200;
  const Day last("2026-11-30");
  // Two losses close to each other, or one close to the begin, have no single order.
  int calmDays = 0;
  int lastDay = 0;
  for (const std::int64_t size : sums) {
    if (random() % 3 == 0) daysAgo -= static_cast<int>(1 + random() % 3);
    const std::int64_t sum = random() % 4 == 0 ? size : -size;
    balance += sum;
    const bool follows = !payments.empty() && payments.back().isLost && random() % 2 == 0;
    const bool isLost = follows || (calmDays > 2 && random() % 3 == 0);
    if (isLost) calmDays = 0;
    if (!isLost && lastDay != daysAgo) ++calmDays;
    lastDay = daysAgo;
    payments.push_back({stated(last.before(daysAgo), sum, balance), isLost});
  }
  return payments;
}

TEST(ABalanceChain, OfARandomBookHasExactlyTheGapsOfLostMessages) {
  for (unsigned seed = 1; seed <= 2000; ++seed) {
    std::mt19937 random(seed);
    const std::vector<Payment> payments = truePayments(random);
    std::vector<Gap> lost;
    std::vector<Link> links;
    std::int64_t missing = 0;
    for (const auto& [link, isLost] : payments) {
      if (isLost) {
        missing -= link.moved;
        continue;
      }
      if (missing != 0 && !links.empty()) {
        lost.push_back({links.back().date, link.date, missing});
      }
      missing = 0;
      links.push_back(link);
    }
    std::shuffle(links.begin(), links.end(), random);
    std::stable_sort(links.begin(), links.end(),
                     [](const Link& one, const Link& other) { return one.date < other.date; });
    EXPECT_EQ(balanceChain(links).gaps, lost) << "seed " << seed;
  }
}

}  // namespace
}  // namespace kivo::overview
