#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "unit/recognition/reading_text.h"

// Names that hold the words and sums of bank messages. The shops and people do not exist.

namespace kivo::recognition {
namespace {

TEST(AName, BehindAtMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("Purchase of EGP 50.00 at Discount Store on card ending 1234."),
            "expense 50.00 | Discount Store");
  EXPECT_EQ(readingOf("Purchase of EGP 50.00 at Denied Jeans on card ending 1234."),
            "expense 50.00 | Denied Jeans");
  EXPECT_EQ(readingOf("EGP 50.00 spent at Due Amici with card 1234"), "expense 50.00 | Due Amici");
  EXPECT_EQ(readingOf("EGP 50.00 spent at Limit Break Arcade. Balance EGP 9,000.00"),
            "expense 50.00 | Limit Break Arcade");
  EXPECT_EQ(readingOf("Purchase of EGP 50.00 at OTP Bank ATM on card 1234. Balance EGP 9,000"),
            "expense 50.00 | OTP Bank ATM");
}

TEST(AName, BehindFromMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("You received EGP 50.00 from Will Smith. Balance EGP 60.00"),
            "income 50.00 | Will Smith");
  EXPECT_EQ(readingOf("You received EGP 50.00 from Payment Street. Balance EGP 60.00"),
            "income 50.00 | Payment Street");
}

TEST(AName, BehindALabelMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("EGP 50.00 debited. Merchant: Refund Fashion, card 1234"),
            "expense 50.00 | Refund Fashion");
}

TEST(AName, InFrontOfSentYouMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("Declined Dreams sent you EGP 75.00. Ref 1234"),
            "income 75.00 | Declined Dreams");
}

TEST(AName, BetweenQuotesMayHoldAnyWordAndSum) {
  EXPECT_EQ(readingOf("You paid EGP 5.00 to \"refund of EGP 900.00 received\" on 21-11-2026"),
            "expense 5.00 | refund of EGP 900.00 received");
}

TEST(AName, InCapitalsMayBeginWithAnyWordOfABank) {
  EXPECT_EQ(readingOf("PURCHASE OF EGP 75.00 AT DENIED JEANS ON CARD 1234"),
            "expense 75.00 | DENIED JEANS");
}

TEST(AName, OfTheBankMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("Credit Garrigue - card payment of EGP 12.60 at MARIUS, 21/12"),
            "expense 12.60 | MARIUS");
  EXPECT_EQ(readingOf("Refund Alert: EGP 12.60 credited to card 1234"), "income 12.60 | -");
}

TEST(AName, BetweenTheSumAndTheCardNeedsNoVerb) {
  EXPECT_EQ(readingOf("EGP 132.00 VOID WHERE PROHIBITED TATTOO, card *0933, 21 Dec 14:41"),
            "expense 132.00 | VOID WHERE PROHIBITED TATTOO");
  EXPECT_EQ(readingOf("EGP 20.50 FERN STORES, card *0933, 21 Dec 14:41"),
            "expense 20.50 | FERN STORES");
}

TEST(AName, AsASentenceBehindTheSumMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("Payment EGP 72.00. Cafe Refund. 21.12.26 19:02. Balance EGP 90.00"),
            "expense 72.00 | Cafe Refund");
}

TEST(AName, BetweenChineseBracketsMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingText(read("快捷支付28.00元（退款咖啡），余额1,849.20元", "CNY"), "CNY", true),
            "expense 28.00 | 退款咖啡");
}

TEST(AName, InArabicMayBeginWithAnyWordOfABank) {
  EXPECT_EQ(readingOf("تم الدفع بمبلغ 75.00 جنيه لدى مرفوض ستور بتاريخ 12/11"),
            "expense 75.00 | مرفوض ستور");
}

TEST(AName, MayHoldASum) {
  EXPECT_EQ(readingOf("Spent EGP 75.00 at 5 Dollar Bakery on card 1234"),
            "expense 75.00 | 5 Dollar Bakery");
  EXPECT_EQ(readingOf("Spent EGP 75.00 at EGP 100 Shop on card 1234"),
            "expense 75.00 | EGP 100 Shop");
}

TEST(AName, MayBeginWithANumber) {
  EXPECT_EQ(readingOf("Card 1234 was used for EGP 50.00 at 7-Eleven on 12/11"),
            "expense 50.00 | 7-Eleven");
  EXPECT_EQ(readingOf("Card 1234 was used for EGP 50.00 at 19011 Pharmacies on 12/11"),
            "expense 50.00 | 19011 Pharmacies");
}

TEST(AName, EndsBeforeALabelWithItsNumber) {
  EXPECT_EQ(readingOf("Card 1234: EGP 50.00 spent at Fern Cafe Available Balance EGP 10.00"),
            "expense 50.00 | Fern Cafe");
  EXPECT_EQ(readingOf("EGP 50.00 spent at Fern Cafe Card ending 1234"),
            "expense 50.00 | Fern Cafe");
  EXPECT_EQ(readingOf("Merchant: Fern Cafe Amount: EGP 50.00 Card: 1234 purchase"),
            "expense 50.00 | Fern Cafe");
}

TEST(AName, WithAnOutcomeAtItsEndIsForReview) {
  EXPECT_EQ(readingOf("Txn of EGP 75.00 at Access Denied. Balance EGP 100.00"),
            "review 75.00 | Access Denied");
  EXPECT_EQ(readingOf("Txn of EGP 75.00 at Access Denied on card 1234"),
            "expense 75.00 | Access Denied");
  EXPECT_EQ(readingOf("Txn of EGP 75.00 at Fern Cafe Successful. Balance EGP 100.00"),
            "expense 75.00 | Fern Cafe");
}

TEST(ASum, WhereANameIsExpectedIsForReview) {
  EXPECT_EQ(readingOf("Transfer from EGP 9000.00. Fee: EGP 1.00 credited to your account 12 Amount "
                      "EGP 5.00")
                .substr(0, 6),
            "review");
}

TEST(ASumInFrontOfAName, IsTheSumBehindAVerb) {
  EXPECT_EQ(readingText(read("Pagamento de R$ 45,00 LUZ AZUL 21/11/26", "BRL"), "BRL", true),
            "expense 45.00 | LUZ AZUL");
}

TEST(AName, GoesOnToTheDateWhereSmallWordsHaveCapitals) {
  EXPECT_EQ(readingOf("Spent EGP 4999 On Fern Bank Card 7781 At Refund EGP 4999 credited On "
                      "2025-03-11:19:04:22"),
            "expense 4999.00 | Refund EGP 4999 credited");
  EXPECT_EQ(readingOf("Sent EGP 4999.00\nFrom Fern Bank A/C *0931\nTo Cashback Credited EGP 4999\n"
                      "On 16/07/26\nRef 610900220033"),
            "expense 4999.00 | Cashback Credited EGP 4999");
}

TEST(AName, BehindAPurchaseInCapitalsMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("EGP 11.25 PURCHASE MINIMUM DUE CAFE CARD **9920 13/07/26 BAL EGP 402.10"),
            "expense 11.25 | MINIMUM DUE CAFE");
}

TEST(AName, BehindAPurchaseAtATerminalMayHoldAnyWordOfABank) {
  EXPECT_EQ(
      readingOf("EGP 145.75 POS purchase PICK N PAY MAADI 14/03/2026 acc **3301. Bal EGP 910.10"),
      "expense 145.75 | PICK N PAY MAADI");
}

TEST(AName, GoesOnBehindAnInitial) {
  EXPECT_EQ(readingOf("You have sent EGP 15.00 to NOEL V. CANCELADO on 07-22-2026. Ref. 8001998"),
            "expense 15.00 | NOEL V. CANCELADO");
}

TEST(AName, KeepsThePointOfItsLastInitial) {
  EXPECT_EQ(readingOf("You have sent EGP 15.00 to JO****N D. on 07-22-2026. Ref. 8001998"),
            "expense 15.00 | JO****N D.");
  EXPECT_EQ(readingOf("You paid EGP 15.00 at Fern 4 U. Ref 901125. Balance: EGP 801.00"),
            "expense 15.00 | Fern 4 U");
}

TEST(AName, KeepsTheMaskAtItsEnd) {
  EXPECT_EQ(readingOf("EGP 20.00 sent to MONA S**** K**** with reference 5b1f0d at 30-05 14:07"),
            "expense 20.00 | MONA S**** K****");
}

TEST(AnArabicName, MayHoldTheWordsOfABankBehindAShopsNoun) {
  EXPECT_EQ(
      readingOf(
          "تمت عملية شراء بقيمة 58.00 جنيه ببطاقتك 6612 لدى مخبز رمز الوفاء. الرصيد 3,002.00 جنيه"),
      "expense 58.00 | مخبز رمز الوفاء");
  EXPECT_EQ(readingOf("تم خصم 3.75 جنيه من بطاقتك 9012 لدى حلويات عرض اليوم بتاريخ 12/11/2026"),
            "expense 3.75 | حلويات عرض اليوم");
  EXPECT_EQ(readingOf("تم دفع 75 جنيه الى كشري الساعة 12 من محفظتك. رقم العملية 005599001"),
            "expense 75.00 | كشري الساعة 12");
  EXPECT_EQ(
      readingOf("تم خصم 85.00 جنيه من بطاقتكم 4410 لدى كافيه رصيد والرصيد المتاح 1,220.00 جنيه"),
      "expense 85.00 | كافيه رصيد");
}

TEST(AnArabicName, MayBeginWithSeveralWordings) {
  EXPECT_EQ(
      readingOf("تم خصم مبلغ 700.00 جنيه من بطاقتكم رقم **2207 لدى لم يتم الخصم ستور يوم 22/07"),
      "expense 700.00 | لم يتم الخصم ستور");
}

TEST(AnArabicName, EndsBeforeTheOutcomeAndTheBalance) {
  EXPECT_EQ(readingOf("عملية شراء بمبلغ 20 جنيه لدى مطعم الورد مرفوضة"), "declined");
  EXPECT_EQ(readingOf("تم خصم 20 جنيه لدى مطعم الورد الرصيد 300 جنيه"),
            "expense 20.00 | مطعم الورد");
  EXPECT_EQ(readingOf("تم خصم 20 جنيه لدى متجر الورد الساعة 12"), "expense 20.00 | متجر الورد");
}

TEST(ASum, ThatMayBePartOfANameIsNotProposed) {
  EXPECT_EQ(readingOf("Transfer from EGP 9000.00. Fee: EGP 1.00 credited to your account 12 Amount "
                      "EGP 5.00"),
            "review ?");
}

TEST(AName, BetweenASumAndFromMayHoldAnyWordOfABank) {
  EXPECT_EQ(
      readingOf(
          "ACH withdrawal EGP 210.00 Return To Sender Storage LLC from CHK 4410 posted 07/27"),
      "expense 210.00 | Return To Sender Storage LLC");
}

TEST(AName, MayHoldTheWordsDateAndNow) {
  EXPECT_EQ(
      readingOf("Refund of EGP 875.00 from Due Date Fruits has been processed to your Card 77"),
      "income 875.00 | Due Date Fruits");
  EXPECT_EQ(readingOf("EGP 128.00 debited on Card 11**98 @ AVAILABLE NOW TAILORS 12-Jul-26 18:02"),
            "expense 128.00 | AVAILABLE NOW TAILORS");
}

TEST(AnArabicName, MayHoldTheWordsOfABankBehindIn) {
  EXPECT_EQ(
      readingOf(
          "خصمت 13.20 جنيه من حسابك 03XX19 لعملية شراء في محلات القسط للأثاث بتاريخ 11-07-26"),
      "expense 13.20 | محلات القسط للأثاث");
}

TEST(AnOutcome, BehindAPurchaseIsNoName) {
  EXPECT_EQ(readingOf("POS PURCHASE DECLINED EGP 50.00 CARD **12 AT FERN MART"), "declined");
  EXPECT_EQ(readingOf("EGP 50.00 PURCHASE DECLINED CARD **9920 13/07/26 BAL EGP 402.10"),
            "declined");
  EXPECT_EQ(readingOf("EGP 50.00 PURCHASE FAILED AT FERN MART CARD **9920"), "declined");
  EXPECT_EQ(readingOf("EGP 50.00 PURCHASE FERN MART DECLINED CARD **9920"), "declined");
  EXPECT_EQ(readingOf("Purchase EGP 50.00 Declined Fern Mart from card 12"), "declined");
}

TEST(AnOutcome, BehindANameIsNotBooked) {
  EXPECT_NE(read("Spent EGP 50 On Card 12 At Fern Declined On 2025-03-11", "EGP").outcome,
            Outcome::transaction);
}

TEST(AName, BetweenAndAndCreditedMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("Your a/c XX12 is debited for EGP 50.00 on 12-11-26 and Denied Jeans "
                      "credited. UPI:63112"),
            "expense 50.00 | Denied Jeans");
}

TEST(AName, MayHoldALabelsWordAmongItsCapitals) {
  EXPECT_EQ(readingOf("EGP 50.00 charged to your card 12 at LAST CALL PROMO BAR on 11/13/26"),
            "expense 50.00 | LAST CALL PROMO BAR");
  EXPECT_EQ(readingOf("EGP 50.00 spent at GIVE AND GO ON card 12"),
            "expense 50.00 | GIVE AND GO ON");
}

TEST(AName, MayBeginWithAPrepositionsObject) {
  EXPECT_EQ(readingOf("You paid EGP 50.00 to Block Party using card 12"),
            "expense 50.00 | Block Party");
  EXPECT_EQ(readingOf("EGP 50.00 was spent at Dear John Pub on 12-11-26 with card 12"),
            "expense 50.00 | Dear John Pub");
}

TEST(AName, MayBeginWithAnOrdinalOrAPercentage) {
  EXPECT_EQ(readingOf("Purchase of EGP 50.00 at 3RD NOTICE BOOKS with card 12"),
            "expense 50.00 | 3RD NOTICE BOOKS");
  EXPECT_EQ(readingOf("Purchase of EGP 50.00 at 50% OFF DONUTS with card 12"),
            "expense 50.00 | 50% OFF DONUTS");
}

TEST(AName, MayBeginWithTheNameOfACurrency) {
  EXPECT_EQ(
      readingText(read("Purchase R640.00 RAND VALUE FUELS; Card 881; Avail Bal R218.90", "ZAR"),
                  "ZAR", true),
      "expense 640.00 | RAND VALUE FUELS");
}

TEST(AName, BehindASumEndsInFrontOfTheCard) {
  EXPECT_EQ(readingOf("Trx approved: EGP 42.00 OFFER 7 MALL card **2210 15/11/26 16:00"),
            "expense 42.00 | OFFER 7 MALL");
}

TEST(AName, InChineseMayHoldTheWordsOfABank) {
  EXPECT_EQ(readingText(read("您尾号4410的储蓄卡在余额面馆消费人民币45.00元", "CNY"), "CNY", true),
            "expense 45.00 | 余额面馆");
}

TEST(AnArabicName, OnItsLineMayHoldTheWordsOfABank) {
  EXPECT_EQ(readingOf("شراء\nلدى محلات استرداد للأثاث\nمبلغ 35.00 جنيه\nالرصيد 210.00 جنيه"),
            "expense 35.00 | محلات استرداد للأثاث");
}

TEST(AnArabicName, ThatMayBeAnOutcomeIsForReview) {
  EXPECT_EQ(readingOf("تم استخدام بطاقتك **12 بمبلغ 23.00 جنيه عند كافيه مرفوض يوم 12/11"),
            "review 23.00 | كافيه مرفوض");
}

TEST(AnOutcome, InFrontOfANameOnASlipIsForReview) {
  EXPECT_EQ(readingOf("EGP 50.00 PURCHASE DECLINED DINER CARD **9920 BAL EGP 402.10").substr(0, 6),
            "review");
}

TEST(AName, BetweenCommasOrSlashesMayBeginWithALabelsWord) {
  EXPECT_EQ(readingOf("Purchase approved on card 12, EGP 57.80, CALL CENTRE CAFE, 12/11 07:52"),
            "expense 57.80 | CALL CENTRE CAFE");
  EXPECT_EQ(readingOf("Purchase EGP 11.50 / Info Point / card 7710 / balance EGP 828.65"),
            "expense 11.50 | Info Point");
  EXPECT_EQ(readingOf("UPI/DR/630922/Balance Yoga: EGP 50.00 debited from A/c XX12 on 07-11-2026"),
            "expense 50.00 | Balance Yoga");
}

TEST(AName, BehindPaidToMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("EGP 50.00 paid to VOID WHERE PROHIBITED acc 14220077812 from your a/c 12"),
            "expense 50.00 | VOID WHERE PROHIBITED");
  EXPECT_EQ(readingOf("EGP 50.00 paid to Your Corner Cafe on 13/11/26. Balance EGP 8.00"),
            "expense 50.00 | Your Corner Cafe");
}

TEST(AName, BehindAnAlertMayHoldAnyWordOfABank) {
  EXPECT_EQ(readingOf("Transaction alert: Reversed Denim EGP 50.00 on card 12 at 12:44"),
            "expense 50.00 | Reversed Denim");
}

TEST(AName, InFrontOfSentYouMayBeginWithInfo) {
  EXPECT_EQ(readingOf("Money: Info Tech Store sent you EGP 20.00 to your account ending 118"),
            "income 20.00 | Info Tech Store");
}

TEST(ALine, WithASumIsTheNameOfItsLabelEvenIfItSpeaksOfAnAccount) {
  EXPECT_EQ(readingOf("Purchase\nAt: CAFE. Refund EGP 700 credited to your account\nAmount EGP "
                      "29.99\nCard 7719")
                .substr(0, 13),
            "expense 29.99");
}

TEST(ARefund, InAnotherSentenceThanThePaymentIsForReview) {
  EXPECT_EQ(
      readingOf("You paid EGP 16.00 to CAFE. REFUND 700 CREDITED TO YOUR ACCOUNT using card 12")
          .substr(0, 12),
      "review 16.00");
}

TEST(AName, BehindASumMayHoldAnotherOne) {
  EXPECT_EQ(readingOf("Trx approved: EGP 1.00 WIN EGP 9000 TODAY CAIRO card **2210 15/11/26 16:00"),
            "expense 1.00 | WIN EGP 9000 TODAY CAIRO");
}

TEST(ANameInCapitals, DoesNotMakeThePaymentInFrontItsSubject) {
  EXPECT_EQ(readingOf("TidePesa QX1: EGP 30.00 paid to till HAS SENT YOU EGP 9000 on 21-11-26. "
                      "Bal EGP 640.15")
                .substr(0, 12),
            "review 30.00");
}

}  // namespace
}  // namespace kivo::recognition
