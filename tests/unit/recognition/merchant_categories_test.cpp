#include "recognition/merchant_categories.h"

#include <array>
#include <set>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "names/name_words.h"
#include "recognition/reading.h"

namespace kivo::recognition {
namespace {

struct Row {
  std::string_view name;
  std::string_view category;
};

#define CHAIN(name, category) Row{name, #category},
constexpr auto chains = std::to_array<Row>({
#include "recognition/chain_names.def"
});
constexpr auto known = std::to_array<Row>({
#include "recognition/known_merchants.def"
});
#undef CHAIN

const std::set<std::string_view> categories = {
    "Groceries", "Dining",    "Shopping", "Transport", "Entertainment", "Health",  "Travel",
    "Education", "Utilities", "Phone",    "Loan",      "Insurance",     "Charity", "Subscriptions"};

std::string foldedKey(std::string_view name) {
  std::string key;
  for (const std::string& word : names::foldedWords(name)) key += word;
  return key;
}

template <typename Rows>
void expectToBeFound(const Rows& rows) {
  std::string_view before;
  for (const Row& row : rows) {
    EXPECT_LT(before, row.name) << "the rows are sorted, each once";
    EXPECT_EQ(foldedKey(row.name), row.name);
    EXPECT_EQ(merchantCategory(row.name), row.category) << row.name;
    EXPECT_TRUE(categories.contains(row.category)) << row.name;
    before = row.name;
  }
}

TEST(EachKnownMerchant, IsFoundByItsName) { expectToBeFound(known); }

TEST(EachKnownMerchant, SaysMoreThanTheChains) {
  std::set<std::pair<std::string_view, std::string_view>> rows;
  for (const Row& chain : chains) rows.emplace(chain.name, chain.category);
  for (const Row& merchant : known) {
    EXPECT_FALSE(rows.contains({merchant.name, merchant.category})) << merchant.name;
  }
}

TEST(EachChain, IsFoundByItsNameUnlessAKnownMerchantHasIt) {
  std::set<std::string_view> byHand;
  for (const Row& merchant : known) byHand.insert(merchant.name);
  std::string_view before;
  for (const Row& row : chains) {
    EXPECT_LT(before, row.name) << "the rows are sorted, each once";
    before = row.name;
    EXPECT_EQ(foldedKey(row.name), row.name);
    EXPECT_TRUE(categories.contains(row.category)) << row.name;
    if (byHand.contains(row.name)) continue;
    EXPECT_EQ(merchantCategory(row.name), row.category) << row.name;
  }
}

TEST(AMerchant, IsOfItsChainWhateverFollowsTheName) {
  EXPECT_EQ(merchantCategory("STARBUCKS 0123 CAIRO EG"), "Dining");
  EXPECT_EQ(merchantCategory("IKEA CAIRO FESTIVAL"), "Shopping");
  EXPECT_EQ(merchantCategory("Booking.com Amsterdam"), "Travel");
  EXPECT_EQ(merchantCategory("كارفور المعادي"), "Groceries");
  EXPECT_EQ(merchantCategory("ПЯТЁРОЧКА 4821"), "Groceries");
}

TEST(AMerchant, IsOfTheLongestChainThatFits) {
  EXPECT_EQ(merchantCategory("UBER EATS HELP.UBER.COM"), "Dining");
  EXPECT_EQ(merchantCategory("UBER TRIP"), "Transport");
  EXPECT_EQ(merchantCategory("Amazon Prime*2K4"), "Subscriptions");
  EXPECT_EQ(merchantCategory("AMAZON.EG"), "Shopping");
}

TEST(AMerchant, IsFoundInAllSpellingsOfItsName) {
  for (const auto* name : {"7-Eleven", "7 ELEVEN", "7eleven 0042"}) {
    EXPECT_EQ(merchantCategory(name), "Groceries") << name;
  }
  for (const auto* name : {"McDonald's", "MCDONALDS", "Mc Donald’s"}) {
    EXPECT_EQ(merchantCategory(name), "Dining") << name;
  }
  EXPECT_EQ(merchantCategory("WWW.TALABAT.COM"), "Dining");
}

TEST(AMerchant, FollowsThePaymentService) {
  EXPECT_EQ(merchantCategory("PAYPAL *SPOTIFY"), "Subscriptions");
  EXPECT_EQ(merchantCategory("SQ *IKEA"), "Shopping");
}

TEST(AMerchant, IsAPharmacyRatherThanOfTheChainThatItsNameBeginsWith) {
  EXPECT_EQ(merchantCategory("Orange Pharmacy"), "Health");
  EXPECT_EQ(merchantCategory("Emirates Hospital"), "Health");
}

TEST(AMerchant, HasTheCategoryOfAWordForItsKindOfShop) {
  EXPECT_EQ(merchantCategory("Diwan Bookshop"), "Shopping");
  EXPECT_EQ(merchantCategory("الصيدلية الحديثة"), "Health");
  EXPECT_EQ(merchantCategory("مطعم أبو طارق"), "Dining");
  EXPECT_EQ(merchantCategory("СОСНА АЗС"), "Transport");
  EXPECT_EQ(merchantCategory("Panadería El Trigal"), "Groceries");
  EXPECT_EQ(merchantCategory("Asha Rao"), "");
  EXPECT_EQ(merchantCategory(""), "");
}

TEST(ARecipient, IsNotAChainByAFirstName) {
  EXPECT_EQ(merchantCategory("ZARA 4821"), "Shopping");
  EXPECT_EQ(recipientCategory("Zara Ahmed"), "");
  EXPECT_EQ(recipientCategory("ZARA"), "Shopping");
  EXPECT_EQ(recipientCategory("Green Landlord LLC"), "Rent");
}

TEST(ACashWithdrawal, IsCashWhereverTheMachineIs) {
  const Reading reading =
      read("Cash withdrawal of EGP 500.00 at CITY STARS MALL from card *4821. Balance EGP 9,000.00",
           "EGP");
  EXPECT_EQ(reading.category, "Cash");
  EXPECT_EQ(reading.payee, "");
}

TEST(ATransfer, IsNoPurchaseAtAChainWithThatFirstName) {
  EXPECT_EQ(read("You sent EGP 500.00 to Zara Ahmed from a/c *4821", "EGP").category, "Transfer");
}

TEST(ACategory, IsToldByTheEndOfAChineseOrKoreanName) {
  EXPECT_EQ(merchantCategory("东方超市"), "Groceries");
  EXPECT_EQ(merchantCategory("까치커피 역삼점"), "Dining");
}

}  // namespace
}  // namespace kivo::recognition
