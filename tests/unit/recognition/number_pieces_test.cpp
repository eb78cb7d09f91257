#include "recognition/number_pieces.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace kivo::recognition {
namespace {

template <class IsPiece>
std::string numbersThat(std::string_view text, IsPiece isPiece) {
  Items items = itemsOf(text);
  markPieces(items);
  std::string numbers;
  for (std::size_t at = 0; at < items.size(); ++at) {
    if (items[at].kind != Item::Kind::number || !isPiece(items, at)) continue;
    if (!numbers.empty()) numbers += ' ';
    numbers += items[at].text;
  }
  return numbers;
}

// The numbers of `text` that are parts of dates and times.
std::string dateIn(std::string_view text) { return numbersThat(text, isDatePiece); }

// The numbers of `text` that are parts of anything.
std::string piecesIn(std::string_view text) {
  return numbersThat(text, [](const Items& items, std::size_t at) { return items[at].isPiece; });
}

TEST(ADateInAMessage, IsThreeNumbersWithTheSameMark) {
  EXPECT_EQ(dateIn("21-11-2026"), "21 11 2026");
  EXPECT_EQ(dateIn("on 2026/11/21 at"), "2026 11 21");
  EXPECT_EQ(dateIn("12345-11-2026"), "");
  EXPECT_EQ(dateIn("121-11/2026"), "");
  EXPECT_EQ(dateIn("21 -11-2026"), "");
  EXPECT_EQ(dateIn("21- 11-2026"), "");
}

TEST(ADateInAMessage, MayBeADayAndAMonth) {
  EXPECT_EQ(dateIn("12/10"), "12 10");
  EXPECT_EQ(dateIn("on 12/10"), "12 10");
  EXPECT_EQ(dateIn("123/10"), "");
  EXPECT_EQ(dateIn("12/"), "");
  EXPECT_EQ(dateIn("12/103"), "");
  EXPECT_EQ(dateIn("12 /10"), "");
  EXPECT_EQ(dateIn("12/ 10"), "");
}

TEST(ADateInAMessage, MayNameItsMonth) {
  EXPECT_EQ(dateIn("21 Nov 2026"), "21 2026");
  EXPECT_EQ(dateIn("21-Nov-2026"), "21 2026");
  EXPECT_EQ(dateIn("21. November"), "21");
  EXPECT_EQ(dateIn("21 ноября 2026"), "21 2026");
  EXPECT_EQ(dateIn("21 de noviembre de 2026"), "21 2026");
  EXPECT_EQ(dateIn("pago de 45"), "");
  EXPECT_EQ(dateIn("Nov 21"), "21");
  EXPECT_EQ(dateIn("on Nov-21"), "21");
  EXPECT_EQ(dateIn("on Nov 21, 2026"), "21 2026");
  EXPECT_EQ(dateIn("on Nov 21, 26"), "21 26");
  EXPECT_EQ(dateIn("Nov 21 2026"), "21 2026");
  EXPECT_EQ(dateIn("Nov 21, 202"), "21");
  EXPECT_EQ(dateIn("Nov 21 20265"), "21");
  EXPECT_EQ(dateIn("121 Nov"), "");
  EXPECT_EQ(dateIn("21 No 2026"), "");
}

TEST(ADateInAMessage, MayHavePoints) {
  EXPECT_EQ(dateIn("21.11.2026"), "21.11.2026");
  EXPECT_EQ(dateIn("1.2.26"), "1.2.26");
  EXPECT_EQ(dateIn("121.11.2026"), "");
  EXPECT_EQ(dateIn("21.111.2026"), "");
  EXPECT_EQ(dateIn("21.11.202"), "");
  EXPECT_EQ(dateIn("21.11"), "");
  EXPECT_EQ(dateIn("21.11.26,50"), "");
  EXPECT_EQ(dateIn("1,1.2.26"), "");
}

TEST(ATimeOfDay, IsTwoNumbersWithAColon) {
  EXPECT_EQ(dateIn("14:32"), "14 32");
  EXPECT_EQ(dateIn("at 14:32:05"), "14 32 05");
  EXPECT_EQ(dateIn("14:132"), "14");
  EXPECT_EQ(dateIn("114:32"), "32");
  EXPECT_EQ(dateIn("14 :32"), "");
  EXPECT_EQ(dateIn("14: 32"), "");
  EXPECT_EQ(dateIn("14.32 5"), "");
  EXPECT_EQ(dateIn("14:ab"), "");
  EXPECT_EQ(dateIn("ab:14"), "");
}

TEST(AMaskedNumber, IsGluedToItsMask) {
  EXPECT_EQ(piecesIn("xx1234"), "1234");
  EXPECT_EQ(piecesIn("*1234"), "1234");
  EXPECT_EQ(piecesIn("#1234"), "1234");
  EXPECT_EQ(piecesIn("1234* 5"), "1234");
  EXPECT_EQ(piecesIn("1234x 5"), "1234");
  EXPECT_EQ(piecesIn("..1234"), "1234");
  EXPECT_EQ(piecesIn("•1234"), "1234");
  EXPECT_EQ(piecesIn("xx 1234 * 5 x"), "");
  EXPECT_EQ(piecesIn(".. 1234"), "");
  EXPECT_EQ(piecesIn("-1234 (5) 6."), "");
}

TEST(APercentage, IsAPiece) {
  EXPECT_EQ(piecesIn("50%"), "50");
  EXPECT_EQ(piecesIn("50 % 7"), "50");
}

TEST(ANumber, MayBeFollowedByDebitOrCredit) { EXPECT_EQ(piecesIn("50Dr 60cr 70usd"), "70"); }

TEST(ANumberInAWord, IsAPiece) {
  EXPECT_EQ(piecesIn("a/1234 b"), "1234");
  EXPECT_EQ(piecesIn("a-1234-5 b"), "1234 5");
  EXPECT_EQ(piecesIn("7-Eleven"), "7");
  EXPECT_EQ(piecesIn("1234/100"), "1234 100");
  EXPECT_EQ(piecesIn("a:1234 b"), "");
  EXPECT_EQ(piecesIn("a.1234 b"), "");
  EXPECT_EQ(piecesIn("1234:ab"), "");
  EXPECT_EQ(piecesIn("a- 1234 -b"), "");
  EXPECT_EQ(piecesIn("/1234"), "");
  EXPECT_EQ(piecesIn("a -1234- b"), "");
}

TEST(AMinus, IsNoHyphenInFrontOfGroupedDigits) {
  EXPECT_EQ(piecesIn("x-500,000"), "");
  EXPECT_EQ(piecesIn("x-500"), "500");
}

}  // namespace
}  // namespace kivo::recognition
