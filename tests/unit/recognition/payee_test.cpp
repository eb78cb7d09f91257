#include <string>

#include <gtest/gtest.h>

#include "recognition/reading.h"

// Where the name of the other party begins and ends. The merchants and people do not exist.

namespace kivo::recognition {
namespace {

std::string payeeOf(std::string_view message) { return read(message, "EGP").payee; }

TEST(AName, BeginsBehindAMaskedAccount) {
  EXPECT_EQ(payeeOf("EGP 50.00 sent to *1234 Ahmad Samir"), "Ahmad Samir");
  EXPECT_EQ(payeeOf("EGP 50.00 sent to ****; Ahmad Samir"), "Ahmad Samir");
  EXPECT_EQ(payeeOf("EGP 50.00 sent to ****1234 - Ahmad Samir"), "Ahmad Samir");
  EXPECT_EQ(payeeOf("EGP 50.00 sent to 0722000000 - JANE DOE"), "JANE DOE");
  EXPECT_EQ(payeeOf("EGP 50.00 sent to ****"), "");
}

TEST(AName, MayBeginWithAHouseNumber) {
  EXPECT_EQ(payeeOf("EGP 50.00 spent at 1234 Fern Street on 21-11-2026"), "1234 Fern Street");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at 123456 Fern Street on 21-11-2026"), "Fern Street");
}

TEST(AName, MayHoldANumberOfFourDigits) {
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Route 6600 on 21-11-2026"), "Route 6600");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Route 66001 on 21-11-2026"), "Route");
}

TEST(AName, MayBeginWithATitleOfThreeLetters) {
  EXPECT_EQ(payeeOf("You paid EGP 50.00 to Mrs. Mona Samir on 21-11-2026"), "Mrs. Mona Samir");
}

TEST(AName, HasACapitalBehindAPreposition) {
  EXPECT_EQ(payeeOf("EGP 50.00 debited to another wallet"), "");
  EXPECT_EQ(payeeOf("EGP 50.00 debited to zero fee pots"), "");
  EXPECT_EQ(payeeOf("EGP 50.00 debited to anna@pay"), "anna@pay");
}

TEST(AName, HasACapitalInCyrillicToo) {
  EXPECT_EQ(read("Вы заплатили 500 р в СОСНА АЗС", "RUB").payee, "СОСНА АЗС");
  EXPECT_EQ(read("Вы заплатили 500 р в приложении", "RUB").payee, "");
  EXPECT_EQ(read("Получено 500 р от Анна К на карту 1234", "RUB").payee, "Анна К");
  EXPECT_EQ(read("Получено 500 р от клиента", "RUB").payee, "");
  EXPECT_EQ(read("Покупка товара 500 р, карта 1234", "RUB").payee, "");
  EXPECT_EQ(read("Перевод 500 р Анна К. Карта 1234", "RUB").payee, "Анна К");
}

TEST(AName, EndsBeforeTheVerbThatFollowsIt) {
  EXPECT_EQ(payeeOf("EGP 50.00 debited from a/c 4821; Mona Samir has just been credited"),
            "Mona Samir");
  EXPECT_EQ(payeeOf("Has been credited EGP 50.00"), "");
}

TEST(AName, MayEndWithAnInitialInCyrillic) {
  EXPECT_EQ(read("Мария Е. перевела вам 300 ₽", "RUB").payee, "Мария Е.");
}

TEST(AName, InPersianKeepsItsLetters) {
  EXPECT_EQ(read("واریز 500,000 ریال توسط علی کریمی", "IRR").payee, "علی کریمی");
}

TEST(AName, InChineseEndsBeforeTheVerb) {
  EXPECT_EQ(read("尾号1190在松果消费62.50元", "CNY").payee, "松果");
  EXPECT_EQ(read("您收到王五转账62.50元", "CNY").payee, "王五");
  EXPECT_EQ(read("您收到转账62.50元", "CNY").payee, "");
}

TEST(AName, EndsAtAMark) {
  EXPECT_EQ(payeeOf("EGP 20.00 spent at Sun Market (online) today"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 20.00 spent at SUN MARKET (online) today"), "SUN MARKET");
  EXPECT_EQ(payeeOf("EGP 20.00 spent at Sun Market; thanks"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 20.00 spent at SUN MARKET, APPROVED"), "SUN MARKET");
  EXPECT_EQ(payeeOf("EGP 20.00 spent at SUN MARKET, AUSTIN for food"), "SUN MARKET");
  EXPECT_EQ(payeeOf("EGP 20.00 spent at SUN MARKET (TST) was approved"), "SUN MARKET (TST)");
}

TEST(AName, MayHoldMarks) {
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun Market - City on 21-11-2026"), "Sun Market - City");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun-Market today"), "Sun-Market");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun.Market on 21-11-2026"), "Sun.Market");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun Market: City on 21-11-2026"), "Sun Market: City");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at PAYPAL*SPOTIFY on 21-11-2026"), "PAYPAL*SPOTIFY");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun Co. on 21-11-2026"), "Sun Co.");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun Co. Thanks"), "Sun Co");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at SUN L. MARKET on 21-11-2026"), "SUN L. MARKET");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at ORCHID/MART"), "ORCHID/MART");
}

TEST(AName, EndsAtASignatureAnEmojiOrATime) {
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun Market -Orchid Bank"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun Market 🎉 thanks"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun Market : thanks"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at PAYPAL *SPOTIFY on 21-11-2026"), "PAYPAL *SPOTIFY");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun Market 12:30"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun Market 21 Nov"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at Sun Market21 today"), "Sun Market21");
}

TEST(AName, MayBeInQuotesOrOnTheLineBelowItsLabel) {
  EXPECT_EQ(payeeOf("EGP 50.00 spent at: \"Sun Market\" today"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 50.00 spent\nMerchant:\nSun Market"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 50.00 spent\nInfo:\nSun Market"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at\nSun Market"), "");
  EXPECT_EQ(payeeOf("EGP 50.00 spent\nMerchant:\n"), "");
}

TEST(ANarration, HoldsANameBetweenChannelsAndNumbers) {
  EXPECT_EQ(payeeOf("EGP 50.00 debited. Info: UPI/P2M/4249/ORCHID MART"), "ORCHID MART");
  EXPECT_EQ(payeeOf("EGP 50.00 debited. Info: UPI/ORCHID MART/Bal EGP 90.00"), "ORCHID MART");
  EXPECT_EQ(payeeOf("EGP 50.00 debited. Info: ORCHID MART Bal EGP 90.00"), "ORCHID MART");
  EXPECT_EQ(payeeOf("EGP 50.00 debited. Info: ORCHID MART -CITY on 21-11-2026"),
            "ORCHID MART -CITY");
  EXPECT_EQ(payeeOf("EGP 50.00 debited. Info: ORCHID SMS STOP"), "ORCHID");
  EXPECT_EQ(payeeOf("EGP 50.00 debited. Info: UPI/XY/ORCHID MART"), "ORCHID MART");
  EXPECT_EQ(payeeOf("EGP 50.00 debited at UPI/ORCHID MART"), "ORCHID MART");
  EXPECT_EQ(payeeOf("EGP 50.00 debited to ORCHID/MART"), "ORCHID");
}

TEST(APayeeInAMessage, IsLookedForInAFixedOrder) {
  EXPECT_EQ(payeeOf("EGP 50.00 debited at Fern Cafe to Asha Rao"), "Fern Cafe");
  EXPECT_EQ(payeeOf("EGP 50.00 debited to Asha Rao at Fern Cafe"), "Fern Cafe");
  EXPECT_EQ(payeeOf("EGP 50.00 debited to Asha Rao, to Mona Samir"), "Asha Rao");
  EXPECT_EQ(payeeOf("EGP 50.00 debited at Fern Cafe. Merchant: Sun Market"), "Sun Market");
  EXPECT_EQ(payeeOf("EGP 50.00 debited from Fern Cafe to Asha Rao"), "Asha Rao");
}

TEST(APayeeOfAnIncome, IsTheSenderOrAShopThatGivesMoneyBack) {
  EXPECT_EQ(payeeOf("EGP 50.00 credited at Orchid Mart"), "");
  EXPECT_EQ(payeeOf("EGP 50.00 refund credited at Orchid Mart"), "Orchid Mart");
  EXPECT_EQ(payeeOf("EGP 50.00 cashback credited at Orchid Mart to account 4821"), "Orchid Mart");
  EXPECT_EQ(payeeOf("EGP 50.00 refund from Asha Rao at Orchid Mart"), "Asha Rao");
}

TEST(AName, MayHoldAnArticle) {
  EXPECT_EQ(payeeOf("Compra de EGP 20.00 en Panaderia El Sol"), "Panaderia El Sol");
}

TEST(AName, WithoutWordsMayStandBesideTheSum) {
  EXPECT_EQ(payeeOf("Purchase EGP 48.13 SUN MARKET card 1234"), "SUN MARKET");
  EXPECT_EQ(payeeOf("Purchase EGP 48.13, card 1234, SUN MARKET. Balance EGP 20.00"), "SUN MARKET");
  EXPECT_EQ(payeeOf("EGP 48.13 was debited. Utility services. Balance EGP 20.00"), "");
}

TEST(AName, WithoutCapitalsMayStandBetweenTheSumAndADate) {
  EXPECT_EQ(read("승인 6,700원 솔카페 04/12", "KRW").payee, "솔카페");
  EXPECT_EQ(read("출금 솔마트 잔액 9,000원 500원", "KRW").payee, "솔마트");
  EXPECT_EQ(read("승인 5,000원 일시불 승인 누적 9,000원", "KRW").payee, "");
}

TEST(AName, OfTheCardIsNotThePayees) {
  EXPECT_EQ(payeeOf("EGP 48.13 spent, Kite Bank Card 1234"), "");
}

TEST(AName, IsNotThePersonsBank) {
  EXPECT_EQ(payeeOf("EGP 50.00 debited from Lotus Bank card 1234"), "");
  EXPECT_EQ(payeeOf("EGP 50.00 spent on Lotus Bank card 1234"), "");
}

TEST(AName, IsNotAPronounOrAnArticle) {
  EXPECT_EQ(payeeOf("EGP 50.00 sent to You on 21-11-2026"), "");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at A new store"), "");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at A B Traders"), "A B Traders");
  EXPECT_EQ(payeeOf("EGP 50.00 spent at The Kettle"), "The Kettle");
}

TEST(AName, IsNotADate) {
  EXPECT_EQ(payeeOf("EGP 50.00 spent on Nov 6"), "");
  EXPECT_EQ(payeeOf("EGP 50.00 spent on 6 Nov"), "");
}

TEST(AMessage, MayEndWhereANameShouldFollow) {
  EXPECT_EQ(payeeOf("Balance EGP 900.00. EGP 20.00 at"), "");
  EXPECT_EQ(payeeOf("EGP 20.00 spent at\n"), "");
}

TEST(AName, IsNotLookedForInTheFooter) {
  EXPECT_EQ(payeeOf("EGP 50.00 debited from card 0042. Not you? SMS BLOCK to Orchid Care"), "");
  EXPECT_EQ(payeeOf("Not you? Call 19000. EGP 50.00 spent at Fern Cafe on card 0042"), "Fern Cafe");
}

TEST(ANarration, NamesItsPartyBehindTheBanksCode) {
  EXPECT_EQ(payeeOf("EGP 50.00 credited. Info: IMPS/HRNB/612204417733/PINE TRADERS"),
            "PINE TRADERS");
  EXPECT_EQ(payeeOf("EGP 50.00 credited. Info: NEFT-HRNBM8812004417-ARUN PINTO"), "ARUN PINTO");
  EXPECT_EQ(payeeOf("EGP 50.00 credited. Info: IMPS/HRNB/612204417733"), "HRNB");
}

TEST(AnAddress, IsOneName) {
  EXPECT_EQ(payeeOf("EGP 50.00 received from merchant@fern, UPI Ref 700412"), "merchant@fern");
  EXPECT_EQ(payeeOf("You sent EGP 50.00 to 9810000044@fern on 03-02-26"), "9810000044@fern");
  EXPECT_EQ(payeeOf("EGP 50.00 sent to pine.kiosk@heron.Ref No 70041"), "pine.kiosk@heron");
}

TEST(AName, LosesItsTurkishEnding) {
  EXPECT_EQ(payeeOf("EGP 20.00 spent at MIGROS'tan 12/03"), "MIGROS");
  EXPECT_EQ(payeeOf("EGP 20.00 spent at Wendy's today"), "Wendy's");
}

TEST(AName, EndsBeforeALabelWithANumberSign) {
  EXPECT_EQ(payeeOf("Bill Paid! K-ELECTRIC Consumer# 0400011223 Amt EGP 6,842"), "K-ELECTRIC");
}

TEST(AName, InCapitalsMayEndWithCom) {
  EXPECT_EQ(payeeOf("EGP 649.00 debited towards NETFLIX COM from A/c XX0931"), "NETFLIX COM");
}

TEST(AName, OfAScriptWithoutCapitalsMayStandOnALine) {
  EXPECT_EQ(payeeOf("خصم: 150.00 جنيه\nسوبر الريان\nبطاقة: *4410\nالرصيد 900.00 جنيه"),
            "سوبر الريان");
}

TEST(AName, BehindTheSumOfARefundIsTheShops) {
  EXPECT_EQ(payeeOf("Refund EGP 20.00 SUN MARKET. Card *7719, balance EGP 80.00"), "SUN MARKET");
}

TEST(AName, IsNoFee) {
  EXPECT_EQ(payeeOf("Debited by EGP 345.00 for SMS & maintenance charge with VAT on 30-10-2026"),
            "");
}

TEST(AName, ThatNoWordsIntroduceKeepsTheNumberOfItsBranch) {
  EXPECT_EQ(payeeOf("Card payment EGP 349.00, ALBERT 0331, 14.3.2026 18:20"), "ALBERT 0331");
  EXPECT_EQ(payeeOf("EGP 34.50 EVROOPT 221 14/03/26 card 4410 purchase"), "EVROOPT 221");
}

TEST(AName, MayBeAWordOfAnotherLanguage) {
  EXPECT_EQ(payeeOf("EGP 50.00 paid to Luc. Ref 12"), "Luc");
  EXPECT_EQ(payeeOf("EGP 50.00 paid at MESA CU CAFE with card 12"), "MESA CU CAFE");
}

TEST(AName, IsNoChannel) {
  EXPECT_EQ(
      payeeOf("EGP 850.00 paid from cheq a/c..8840 to J SHIKONGO @ App. Ref.rent. 8Jun 08:15"),
      "J SHIKONGO");
}

TEST(AWithdrawal, HasNoPayeeButAnAgentOrANamedMachine) {
  EXPECT_EQ(payeeOf("EGP 500.00 withdrawn at FERN ATM LEKKI PH1 with card 12"), "");
  EXPECT_EQ(payeeOf("EGP 500.00 withdrawn from card 12 at CITY BRANCH"), "");
  EXPECT_EQ(payeeOf("Cash withdrawal of EGP 500.00 at Heron Bank ATM using card 12"),
            "Heron Bank ATM");
  EXPECT_EQ(payeeOf("Confirmed. Withdraw EGP 500.00 from 22110 - KARIBU PHONES. Balance EGP 9.00"),
            "KARIBU PHONES");
}

TEST(ALoan, IsNoPayee) {
  EXPECT_EQ(payeeOf("EGP 500.00 debited from card 12 for Auto Loan AL 88123"), "");
  EXPECT_EQ(payeeOf("EGP 500.00 debited from card 12 for Loan Star Grill"), "Loan Star Grill");
}

TEST(AName, InCapitalsEndsInFrontOfASmallWord) {
  EXPECT_EQ(payeeOf("EGP 50.00 paid at SEN COFFEE luc 21:15"), "SEN COFFEE");
}

TEST(AName, MayBeginWithTheWordOfAChannel) {
  EXPECT_EQ(payeeOf("EGP 50.00 debited from card 12 towards Card Factory on 12-11-26"),
            "Card Factory");
}

TEST(AnEmployer, IsNamedBehindTheWordSalary) {
  EXPECT_EQ(payeeOf("EGP 900.00 credited to a/c 12. Remarks: SALARY FERN LOGISTICS"),
            "FERN LOGISTICS");
}

}  // namespace
}  // namespace kivo::recognition
