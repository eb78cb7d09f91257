#include "recognition/reading.h"

#include <ostream>

#include <gtest/gtest.h>

#include "unit/recognition/reading_text.h"

// The banks, merchants and people below do not exist.

namespace kivo::recognition {

using money::Money;

namespace {

// Kind, sum, payee and category of a message for a book in Egyptian pounds.
std::string of(std::string_view message, const money::CurrencyCode& book = "EGP") {
  const Reading reading = read(message, book);
  const std::string text = readingText(reading, book, false);
  const bool moves =
      reading.outcome == Outcome::transaction || reading.outcome == Outcome::needsReview;
  return moves ? text + " | " + reading.description + " | " + reading.category : text;
}

TEST(ACardPayment, IsAnExpenseAtItsMerchant) {
  EXPECT_EQ(of("Nilo Bank: Your debit card ending 4821 was used for EGP 415.75 at Sunny Basket "
               "Market on 12/05/2026 14:32. Avail. Bal. EGP 9,310.20"),
            "expense 415.75 | Sunny Basket Market | Groceries");
}

TEST(ACardPayment, MayNameTheCurrencyBehindTheSum) {
  EXPECT_EQ(of("A transaction of 1,250.00 AED has been charged to your credit card **7713 at Palm "
               "Electronics. Available limit: 18,750.00 AED."),
            "review AED 1250.00 | Palm Electronics | Shopping");
}

TEST(ACardPayment, MayBeSpreadOverLabelledLines) {
  EXPECT_EQ(of("POS Purchase\nAmount: SAR 86.50\nMerchant: Oasis Coffee\nCard: *9902\nDate: "
               "2026-05-12 09:10\nBalance: SAR 4,120.00"),
            "review SAR 86.50 | Oasis Coffee | Dining");
}

TEST(ACardPayment, MayHaveADecimalComma) {
  EXPECT_EQ(of("Kartenzahlung? No: card payment of 1.234,56 EUR at Hotel Alpenblick on 03.05.2026"),
            "review EUR 1234.56 | Hotel Alpenblick | Travel");
}

TEST(ACardPayment, MayUseTheSignOfTheCurrency) {
  EXPECT_EQ(of("You spent $12.99 at StreamNest. Your balance is $240.10."),
            "review USD 12.99 | StreamNest | Entertainment");
  EXPECT_EQ(of("Purchase of £7.20 at The Copper Kettle Cafe, card 0042"),
            "review GBP 7.20 | The Copper Kettle Cafe | Dining");
  EXPECT_EQ(of("Debit alert! €45 at Blue Tram Tickets on 5 May"),
            "review EUR 45.00 | Blue Tram Tickets | Other");
}

TEST(ACardPayment, MayHaveThreeDecimals) {
  EXPECT_EQ(of("Dear customer, KWD 4.250 was debited from your card for purchase at Gulf Pharmacy"),
            "review KWD 4.250 | Gulf Pharmacy | Health");
}

TEST(ACardPayment, CountsInTheUsersCurrencyWhenBothAreStated) {
  EXPECT_EQ(of("Purchase USD 20.00 (EGP 980.00) at Cloud Shelf Books with card 3310"),
            "expense 980.00 | Cloud Shelf Books | Shopping");
}

TEST(ACardPayment, IsDistinguishedFromItsFee) {
  EXPECT_EQ(of("Service fee EGP 15.00. Purchase EGP 600.00 at Delta Furniture."),
            "expense 600.00 | Delta Furniture | Shopping");
}

TEST(ACardPayment, MayPutTheCardNumberBesideTheCurrency) {
  EXPECT_EQ(of("Card 4821 EGP 50.00 purchase at Metro Line 3"),
            "expense 50.00 | Metro Line 3 | Transport");
}

TEST(ACardPayment, MayOnlyBeCalledATransaction) {
  EXPECT_EQ(of("Card ending 1234: $23.45 transaction at Gas Station 42 on May 12"),
            "review USD 23.45 | Gas Station 42 | Transport");
}

TEST(ACardPayment, MayNameNoMerchant) {
  EXPECT_EQ(of("EGP 75.00 spent on your card *4821. Bal EGP 100.00"),
            "expense 75.00 | Card payment | Other");
}

TEST(ACardPayment, MayIncludeAWarningAboutCodes) {
  EXPECT_EQ(
      of("You paid LE 250 at Corner Grill using card 4821. Never share your OTP with anyone."),
      "expense 250.00 | Corner Grill | Dining");
}

TEST(ACardPayment, MayIncludeAnOffer) {
  EXPECT_EQ(of("EGP 300 was charged at Lotus Clinic. Enjoy up to EGP 500 cashback this month!"),
            "expense 300.00 | Lotus Clinic | Health");
}

TEST(ACardPayment, IsInTheUsersCurrencyWhenItStatesNone) {
  EXPECT_EQ(of("Purchase of 120.50 at Green Leaf Grocery on 12/05/2026", "SAR"),
            "expense 120.50 | Green Leaf Grocery | Groceries");
}

TEST(AnArabicCardPayment, IsAnExpenseAtItsMerchant) {
  EXPECT_EQ(of("تم خصم مبلغ 250.00 ج.م من بطاقتك رقم 4821 لدى صيدلية النور بتاريخ 12/05/2026. "
               "الرصيد المتاح 3,400.00 ج.م"),
            "expense 250.00 | صيدلية النور | Health");
}

TEST(AnArabicCardPayment, MayUseArabicDigitsAndSeparators) {
  EXPECT_EQ(of("عملية شراء بمبلغ ١٬٢٣٤٫٥٠ جنيه من سوق الواحة يوم ١٢/٠٥/٢٠٢٦"),
            "expense 1234.50 | سوق الواحة | Groceries");
}

TEST(AnArabicCardPayment, MayBeSpreadOverLabelledLines) {
  EXPECT_EQ(of("شراء عبر نقاط البيع\nبطاقة: ****7713\nمبلغ: ٤٥٫٧٥ ريال\nلدى: مقهى الركن\nفي: "
               "12-05-26 18:20"),
            "review SAR 45.75 | مقهى الركن | Dining");
}

TEST(AnATMWithdrawal, IsCash) {
  EXPECT_EQ(of("Cash withdrawal of EGP 2,000 from your account ****5566 at ATM Nilo Bank Maadi on "
               "12-MAY-2026. Balance EGP 7,500.00"),
            "expense 2000.00 | Cash withdrawal | Cash");
  EXPECT_EQ(of("تم سحب 1000 ج.م من حسابك. الرصيد: 5000 ج.م"),
            "expense 1000.00 | Cash withdrawal | Cash");
}

TEST(ATransferOut, IsAnExpenseToItsPayee) {
  EXPECT_EQ(of("EGP 1,500.00 has been transferred from your account XX5566 to Mona Samir on "
               "12/05/2026. Ref 883214"),
            "expense 1500.00 | Mona Samir | Transfer");
  EXPECT_EQ(of("تم تنفيذ تحويل بمبلغ 750 جنيه لصالح أحمد حسن"),
            "expense 750.00 | أحمد حسن | Transfer");
  EXPECT_EQ(of("تم تحويل مبلغ ٣٠٠ جنيه من حسابك إلى كريم عادل بنجاح"),
            "expense 300.00 | كريم عادل | Transfer");
}

TEST(ATransferBetweenOwnAccounts, IsATransfer) {
  EXPECT_EQ(of("Transfer of EGP 4,000.00 between your accounts was completed."),
            "transfer 4000.00 | Own transfer | Transfer");
}

TEST(ACreditCardSettlement, IsCategorisedAsOne) {
  EXPECT_EQ(of("Your credit card payment of EGP 3,200.00 has been received. Thank you."),
            "transfer 3200.00 | Credit card | Credit Card Settlement");
}

TEST(ABillPayment, IsAnExpense) {
  EXPECT_EQ(of("Payment of EGP 320.00 to Delta Electricity was successful. Ref: 77120"),
            "expense 320.00 | Delta Electricity | Utilities");
}

TEST(AFee, IsAnExpenseWhenItIsAllThatWasDebited) {
  EXPECT_EQ(of("Your account was debited with an annual fee of EGP 150.00"),
            "expense 150.00 | Annual fee | Fees");
}

TEST(ASalary, IsIncome) {
  EXPECT_EQ(of("Your salary of EGP 18,500.00 from Horizon Textiles has been credited to account "
               "**5566. Avail. bal. EGP 19,020.75"),
            "income 18500.00 | Horizon Textiles | Salary");
  EXPECT_EQ(of("تم إيداع راتب بمبلغ ٩٬٥٠٠٫٠٠ ر.س في حسابك"),
            "review SAR 9500.00 | Salary | Salary");
}

TEST(ADeposit, IsIncome) {
  EXPECT_EQ(of("Dear Customer, your account has been credited with AED 700.00 on 12/05/2026."),
            "review AED 700.00 | Deposit | Income");
  EXPECT_EQ(of("Your balance was credited with EGP 500.00"), "income 500.00 | Deposit | Income");
}

TEST(ATransferIn, IsIncomeFromItsSender) {
  EXPECT_EQ(of("You have received EGP 640.00 from Omar Fathy via instant transfer."),
            "income 640.00 | Omar Fathy | Income");
  EXPECT_EQ(of("حوالة واردة\nمبلغ: 1,200.00 ر.س\nمن: سارة خالد\nبتاريخ: 12/05/2026"),
            "review SAR 1200.00 | سارة خالد | Transfer");
}

TEST(ARefund, IsIncomeFromTheMerchant) {
  EXPECT_EQ(of("Refund of USD 35.00 from Bright Loom Fashion was credited to your card 0042."),
            "review USD 35.00 | Bright Loom Fashion | Refund");
  EXPECT_EQ(of("Your failed purchase of EGP 90.00 at Tulip Store was reversed."),
            "income 90.00 | Tulip Store | Refund");
}

TEST(ADeclinedPayment, IsDeclined) {
  EXPECT_EQ(
      of("Your purchase of EGP 900.00 at Tulip Store was declined due to insufficient funds."),
      "declined");
  EXPECT_EQ(of("Transaction rejected: card 4821 is blocked."), "declined");
  EXPECT_EQ(of("عملية شراء مرفوضة بمبلغ 100 ج.م لدى متجر الورد لعدم كفاية الرصيد"), "declined");
}

TEST(AOneTimeCode, IsNoTransactionThoughItNamesASum) {
  EXPECT_EQ(of("Your OTP for the purchase of EGP 1,250.00 at Palm Electronics is 884213. Do not "
               "share it with anyone."),
            "none");
  EXPECT_EQ(of("551902 is your verification code for a payment of $40.00."), "none");
  EXPECT_EQ(of("رمز التحقق الخاص بك 4417 لعملية شراء بمبلغ 300 ج.م. لا تشارك الرمز مع أحد"),
            "none");
}

TEST(AnOffer, IsNoTransaction) {
  EXPECT_EQ(of("Enjoy 20% off and up to EGP 500 cashback when you spend EGP 2,000 with your card!"),
            "none");
  EXPECT_EQ(of("You are eligible for a pre-approved loan of EGP 50,000. Apply now."), "none");
  EXPECT_EQ(of("استمتع بخصم حتى 500 ج.م عند الدفع ببطاقتك"), "none");
}

TEST(ABalance, IsNoTransaction) {
  EXPECT_EQ(of("Your account balance as of 12/05/2026 is EGP 5,430.10"), "none");
  EXPECT_EQ(of("EGP 5,430.10 is your available balance."), "none");
  EXPECT_EQ(of("رصيد حسابك المتاح ٥٬٤٣٠٫١٠ ج.م"), "none");
}

TEST(ABillToCome, IsNoTransaction) {
  EXPECT_EQ(of("Your card statement is ready. Total due EGP 3,200.00, minimum payment EGP 160.00, "
               "due date 25/05/2026"),
            "none");
  EXPECT_EQ(of("EGP 99.00 will be debited on 01/06/2026 for StreamNest."), "none");
}

TEST(AnyOtherText, IsNoTransaction) {
  EXPECT_EQ(of("Lunch at 1? I paid last time."), "none");
  EXPECT_EQ(of(""), "none");
  EXPECT_EQ(of("12345 67.89 **** :::: ..."), "none");
  EXPECT_EQ(of("Purchase of EGP 0.00 at Tulip Store"), "none");
}

TEST(ThePaymentSentence, IsReadToTheMinorUnit) {
  EXPECT_EQ(of("Paid 25.0 EGP at Cafe"), "expense 25.00 | Cafe | Dining");
  EXPECT_EQ(of("Paid 12.345 EUR at 7 Palms"), "review ? | 7 Palms | Other");
  EXPECT_EQ(of("Paid 1e+16 EGP at Tulip Store"), "review ? | Tulip Store | Shopping");
}

TEST(ThePaymentSentence, KeepsOddMerchantsAndCurrencies) {
  EXPECT_EQ(of("Paid 9.5  at Lunch at Mona's"), "expense 9.50 | Lunch at Mona's | Other");
  EXPECT_EQ(of("Paid 9.5 EGP at \n"), "expense 9.50 | Payment | Other");
  EXPECT_EQ(of("Paid 9.5 EGP at two\nlines"), "expense 9.50 | two lines | Other");
}

TEST(AVeryLongMessage, IsReadAtItsFrontOnly) {
  std::string message = "Purchase of EGP 80.00 at ";
  while (message.size() < 100000) message += "ب";
  const Reading reading = read(message, "EGP");
  EXPECT_EQ(reading.amount, (Money{8000, "EGP"}));
  EXPECT_EQ(reading.payee.size(), 60U);
}

TEST(AGermanDate, DoesNotEndTheSentence) {
  EXPECT_EQ(read("Ihre Karte wird am 10.05. mit 45,00 EUR belastet", "EUR").outcome,
            Outcome::notATransaction);
}

TEST(APayment, ToNobodyIsDescribedByTheWordsOfItsPurpose) {
  EXPECT_EQ(of("EGP 650 debited from account XX18 for SMS BANKING CHARGES, 03/02/2026"),
            "expense 650.00 | SMS BANKING CHARGES | Fees");
  EXPECT_EQ(of("Account XX6620 credited with EGP 41.00 on 31-DEC-2026 towards quarterly interest"),
            "income 41.00 | Quarterly interest | Income");
  EXPECT_EQ(of("Your locker rent of EGP 500.00 was debited from account XX18 on 03/02/2026"),
            "expense 500.00 | Locker rent | Rent");
  EXPECT_EQ(of("Debit card issuance fee of EGP 90.00 debited from A/c XX18 on 03/02/2026"),
            "expense 90.00 | Debit card issuance fee | Fees");
}

TEST(APayment, ToNobodyKeepsItsPlainDescriptionBehindPlainWords) {
  EXPECT_EQ(of("A transaction of EGP 650 was debited from account XX18 on 03/02/2026"),
            "expense 650.00 | Payment | Other");
  EXPECT_EQ(of("A deposit of EGP 650 was credited to your account XX18 on 03/02/2026"),
            "income 650.00 | Deposit | Income");
}

TEST(AMerchantsLabel, TellsThatACardPaid) {
  EXPECT_EQ(of("Merchant: Fern Books\nAmount: EGP 50.00\nCard: *1234\nDate: 11/12/2026"),
            "expense 50.00 | Fern Books | Shopping");
}

TEST(AFee, BesideAPaymentIsNotItsCategory) {
  EXPECT_EQ(of("Payment made for EGP 55.00 to Auntie Muni. Current Balance: EGP 210.75. Fee "
               "charged: EGP 0.00."),
            "expense 55.00 | Auntie Muni | Other");
}

TEST(ASalary, IsToldByAnyWordForIt) {
  EXPECT_EQ(read("Gutschrift 500,00 EUR von FERN GMBH, Gehalt 10/2026. Konto *12", "EUR").category,
            "Salary");
}

}  // namespace
}  // namespace kivo::recognition
