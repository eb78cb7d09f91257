#include "demo/message_recogniser.h"

#include <ostream>

#include <gtest/gtest.h>

// The banks, merchants and people below do not exist.

namespace kivo::MessageRecogniser {

bool operator==(const Transaction& one, const Transaction& other) {
  return one.kind == other.kind && one.amount == other.amount && one.currency == other.currency &&
         one.description == other.description && one.category == other.category;
}

void PrintTo(const Transaction& transaction, std::ostream* stream) {
  *stream << (transaction.kind == Transaction::Kind::income ? "income " : "expense ")
          << transaction.amount << " " << transaction.currency << " | " << transaction.description
          << " | " << transaction.category;
}
void PrintTo(const Declined&, std::ostream* stream) { *stream << "declined"; }
void PrintTo(const NotATransaction&, std::ostream* stream) { *stream << "not a transaction"; }
bool operator==(const Declined&, const Declined&) { return true; }
bool operator==(const NotATransaction&, const NotATransaction&) { return true; }

namespace {

Recognition of(std::string_view message) { return recognise(message, "EGP"); }

Recognition expense(double amount, std::string currency, std::string description,
                    std::string category) {
  return Transaction{Transaction::Kind::expense, amount, std::move(currency),
                     std::move(description), std::move(category)};
}

Recognition income(double amount, std::string currency, std::string description,
                   std::string category) {
  return Transaction{Transaction::Kind::income, amount, std::move(currency), std::move(description),
                     std::move(category)};
}

TEST(ACardPayment, IsAnExpenseAtItsMerchant) {
  EXPECT_EQ(of("Nilo Bank: Your debit card ending 4821 was used for EGP 415.75 at Sunny Basket "
               "Market on 12/05/2026 14:32. Avail. Bal. EGP 9,310.20"),
            expense(415.75, "EGP", "Sunny Basket Market", "Groceries"));
}

TEST(ACardPayment, MayNameTheCurrencyBehindTheSum) {
  EXPECT_EQ(of("A transaction of 1,250.00 AED has been charged to your credit card **7713 at Palm "
               "Electronics. Available limit: 18,750.00 AED."),
            expense(1250, "AED", "Palm Electronics", "Shopping"));
}

TEST(ACardPayment, MayBeSpreadOverLabelledLines) {
  EXPECT_EQ(of("POS Purchase\nAmount: SAR 86.50\nMerchant: Oasis Coffee\nCard: *9902\nDate: "
               "2026-05-12 09:10\nBalance: SAR 4,120.00"),
            expense(86.5, "SAR", "Oasis Coffee", "Dining"));
}

TEST(ACardPayment, MayWriteItsSumWithACommaForThePoint) {
  EXPECT_EQ(of("Kartenzahlung? No: card payment of 1.234,56 EUR at Hotel Alpenblick on 03.05.2026"),
            expense(1234.56, "EUR", "Hotel Alpenblick", "Travel"));
}

TEST(ACardPayment, MayUseTheSignOfTheCurrency) {
  EXPECT_EQ(of("You spent $12.99 at StreamNest. Your balance is $240.10."),
            expense(12.99, "USD", "StreamNest", "Entertainment"));
  EXPECT_EQ(of("Purchase of £7.20 at The Copper Kettle Cafe, card 0042"),
            expense(7.2, "GBP", "The Copper Kettle Cafe", "Dining"));
  EXPECT_EQ(of("Debit alert! €45 at Blue Tram Tickets on 5 May"),
            expense(45, "EUR", "Blue Tram Tickets", "Other"));
}

TEST(ACardPayment, MayHaveThreeDecimals) {
  EXPECT_EQ(of("Dear customer, KWD 4.250 was debited from your card for purchase at Gulf Pharmacy"),
            expense(4.25, "KWD", "Gulf Pharmacy", "Health"));
}

TEST(ACardPayment, CountsInTheUsersCurrencyWhenBothAreStated) {
  EXPECT_EQ(of("Purchase USD 20.00 (EGP 980.00) at Cloud Shelf Books with card 3310"),
            expense(980, "EGP", "Cloud Shelf Books", "Shopping"));
}

TEST(ACardPayment, IsToldFromItsFee) {
  EXPECT_EQ(of("Service fee EGP 15.00. Purchase EGP 600.00 at Delta Furniture."),
            expense(600, "EGP", "Delta Furniture", "Shopping"));
}

TEST(ACardPayment, MayPutTheCardNumberBesideTheCurrency) {
  EXPECT_EQ(of("Card 4821 EGP 50.00 purchase at Metro Line 3"),
            expense(50, "EGP", "Metro Line 3", "Transport"));
}

TEST(ACardPayment, MayOnlyBeCalledATransaction) {
  EXPECT_EQ(of("Card ending 1234: $23.45 transaction at Gas Station 42 on May 12"),
            expense(23.45, "USD", "Gas Station 42", "Transport"));
}

TEST(ACardPayment, MayNameNoMerchant) {
  EXPECT_EQ(of("EGP 75.00 spent on your card *4821. Bal EGP 100.00"),
            expense(75, "EGP", "Card payment", "Other"));
}

TEST(ACardPayment, MayWarnAboutCodesBesides) {
  EXPECT_EQ(
      of("You paid LE 250 at Corner Grill using card 4821. Never share your OTP with anyone."),
      expense(250, "EGP", "Corner Grill", "Dining"));
}

TEST(ACardPayment, MayCarryAnOfferBesides) {
  EXPECT_EQ(of("EGP 300 was charged at Lotus Clinic. Enjoy up to EGP 500 cashback this month!"),
            expense(300, "EGP", "Lotus Clinic", "Health"));
}

TEST(ACardPayment, WithoutACurrencyIsInTheUsers) {
  EXPECT_EQ(recognise("Purchase of 120.50 at Green Leaf Grocery on 12/05/2026", "SAR"),
            expense(120.5, "SAR", "Green Leaf Grocery", "Groceries"));
}

TEST(AnArabicCardPayment, IsAnExpenseAtItsMerchant) {
  EXPECT_EQ(of("تم خصم مبلغ 250.00 ج.م من بطاقتك رقم 4821 لدى صيدلية النور بتاريخ 12/05/2026. "
               "الرصيد المتاح 3,400.00 ج.م"),
            expense(250, "EGP", "صيدلية النور", "Health"));
}

TEST(AnArabicCardPayment, MayUseArabicDigitsAndSeparators) {
  EXPECT_EQ(of("عملية شراء بمبلغ ١٬٢٣٤٫٥٠ جنيه من سوق الواحة يوم ١٢/٠٥/٢٠٢٦"),
            expense(1234.5, "EGP", "سوق الواحة", "Groceries"));
}

TEST(AnArabicCardPayment, MayBeSpreadOverLabelledLines) {
  EXPECT_EQ(of("شراء عبر نقاط البيع\nبطاقة: ****7713\nمبلغ: ٤٥٫٧٥ ريال\nلدى: مقهى الركن\nفي: "
               "12-05-26 18:20"),
            expense(45.75, "SAR", "مقهى الركن", "Dining"));
}

TEST(AnATMWithdrawal, IsCash) {
  EXPECT_EQ(of("Cash withdrawal of EGP 2,000 from your account ****5566 at ATM Nilo Bank Maadi on "
               "12-MAY-2026. Balance EGP 7,500.00"),
            expense(2000, "EGP", "ATM Nilo Bank Maadi", "Cash"));
  EXPECT_EQ(of("تم سحب 1000 ج.م من حسابك. الرصيد: 5000 ج.م"),
            expense(1000, "EGP", "ATM withdrawal", "Cash"));
}

TEST(ATransferOut, IsAnExpenseToItsPayee) {
  EXPECT_EQ(of("EGP 1,500.00 has been transferred from your account XX5566 to Mona Samir on "
               "12/05/2026. Ref 883214"),
            expense(1500, "EGP", "Mona Samir", "Transfer"));
  EXPECT_EQ(of("تم تنفيذ تحويل بمبلغ 750 جنيه لصالح أحمد حسن"),
            expense(750, "EGP", "أحمد حسن", "Transfer"));
  EXPECT_EQ(of("تم تحويل مبلغ ٣٠٠ جنيه من حسابك إلى كريم عادل بنجاح"),
            expense(300, "EGP", "كريم عادل", "Transfer"));
}

TEST(ATransferBetweenOwnAccounts, IsASystemTransfer) {
  EXPECT_EQ(of("Transfer of EGP 4,000.00 between your accounts was completed."),
            expense(4000, "EGP", "Own transfer", "__system_transfer__"));
}

TEST(ACreditCardSettlement, IsCategorisedAsOne) {
  EXPECT_EQ(of("Your credit card payment of EGP 3,200.00 has been received. Thank you."),
            expense(3200, "EGP", "Credit card", "Credit Card Settlement"));
}

TEST(ABillPayment, IsAnExpense) {
  EXPECT_EQ(of("Payment of EGP 320.00 to Delta Electricity was successful. Ref: 77120"),
            expense(320, "EGP", "Delta Electricity", "Utilities"));
}

TEST(AFee, IsAnExpenseWhenItIsAllThatWasDebited) {
  EXPECT_EQ(of("Your account was debited with an annual fee of EGP 150.00"),
            expense(150, "EGP", "Payment", "Other"));
}

TEST(ASalary, IsIncome) {
  EXPECT_EQ(of("Your salary of EGP 18,500.00 from Horizon Textiles has been credited to account "
               "**5566. Avail. bal. EGP 19,020.75"),
            income(18500, "EGP", "Horizon Textiles", "Salary"));
  EXPECT_EQ(of("تم إيداع راتب بمبلغ ٩٬٥٠٠٫٠٠ ر.س في حسابك"),
            income(9500, "SAR", "Salary", "Salary"));
}

TEST(ADeposit, IsIncome) {
  EXPECT_EQ(of("Dear Customer, your account has been credited with AED 700.00 on 12/05/2026."),
            income(700, "AED", "Deposit", "Income"));
  EXPECT_EQ(of("Your balance was credited with EGP 500.00"),
            income(500, "EGP", "Deposit", "Income"));
}

TEST(ATransferIn, IsIncomeFromItsSender) {
  EXPECT_EQ(of("You have received EGP 640.00 from Omar Fathy via instant transfer."),
            income(640, "EGP", "Omar Fathy", "Income"));
  EXPECT_EQ(of("حوالة واردة\nمبلغ: 1,200.00 ر.س\nمن: سارة خالد\nبتاريخ: 12/05/2026"),
            income(1200, "SAR", "سارة خالد", "Transfer"));
}

TEST(ARefund, IsIncomeFromTheMerchant) {
  EXPECT_EQ(of("Refund of USD 35.00 from Bright Loom Fashion was credited to your card 0042."),
            income(35, "USD", "Bright Loom Fashion", "Refund"));
  EXPECT_EQ(of("Your failed purchase of EGP 90.00 at Tulip Store was reversed."),
            income(90, "EGP", "Tulip Store", "Refund"));
}

TEST(ADeclinedPayment, IsDeclined) {
  EXPECT_EQ(
      of("Your purchase of EGP 900.00 at Tulip Store was declined due to insufficient funds."),
      Recognition(Declined{}));
  EXPECT_EQ(of("Transaction rejected: card 4821 is blocked."), Recognition(Declined{}));
  EXPECT_EQ(of("عملية شراء مرفوضة بمبلغ 100 ج.م لدى متجر الورد لعدم كفاية الرصيد"),
            Recognition(Declined{}));
}

TEST(AOneTimeCode, IsNoTransactionThoughItNamesASum) {
  EXPECT_EQ(of("Your OTP for the purchase of EGP 1,250.00 at Palm Electronics is 884213. Do not "
               "share it with anyone."),
            Recognition(NotATransaction{}));
  EXPECT_EQ(of("551902 is your verification code for a payment of $40.00."),
            Recognition(NotATransaction{}));
  EXPECT_EQ(of("رمز التحقق الخاص بك 4417 لعملية شراء بمبلغ 300 ج.م. لا تشارك الرمز مع أحد"),
            Recognition(NotATransaction{}));
}

TEST(AnOffer, IsNoTransaction) {
  EXPECT_EQ(of("Enjoy 20% off and up to EGP 500 cashback when you spend EGP 2,000 with your card!"),
            Recognition(NotATransaction{}));
  EXPECT_EQ(of("You are eligible for a pre-approved loan of EGP 50,000. Apply now."),
            Recognition(NotATransaction{}));
  EXPECT_EQ(of("استمتع بخصم حتى 500 ج.م عند الدفع ببطاقتك"), Recognition(NotATransaction{}));
}

TEST(ABalance, IsNoTransaction) {
  EXPECT_EQ(of("Your account balance as of 12/05/2026 is EGP 5,430.10"),
            Recognition(NotATransaction{}));
  EXPECT_EQ(of("EGP 5,430.10 is your available balance."), Recognition(NotATransaction{}));
  EXPECT_EQ(of("رصيد حسابك المتاح ٥٬٤٣٠٫١٠ ج.م"), Recognition(NotATransaction{}));
}

TEST(ABillToCome, IsNoTransaction) {
  EXPECT_EQ(of("Your card statement is ready. Total due EGP 3,200.00, minimum payment EGP 160.00, "
               "due date 25/05/2026"),
            Recognition(NotATransaction{}));
  EXPECT_EQ(of("EGP 99.00 will be debited on 01/06/2026 for StreamNest."),
            Recognition(NotATransaction{}));
}

TEST(AnyOtherText, IsNoTransaction) {
  EXPECT_EQ(of("Lunch at 1? I paid last time."), Recognition(NotATransaction{}));
  EXPECT_EQ(of(""), Recognition(NotATransaction{}));
  EXPECT_EQ(of("12345 67.89 **** :::: ..."), Recognition(NotATransaction{}));
  EXPECT_EQ(of("Purchase of EGP 0.00 at Tulip Store"), Recognition(NotATransaction{}));
}

TEST(ThePaymentSentence, IsReadToTheDouble) {
  EXPECT_EQ(of("Paid 25.0 EGP at Cafe"), expense(25, "EGP", "Cafe", "Dining"));
  EXPECT_EQ(of("Paid 12.345 EUR at 7 Palms"), expense(12.345, "EUR", "7 Palms", "Other"));
  EXPECT_EQ(of("Paid 1e+16 EGP at Tulip Store"), expense(1e16, "EGP", "Tulip Store", "Shopping"));
}

TEST(ThePaymentSentence, KeepsOddMerchantsAndCurrencies) {
  EXPECT_EQ(of("Paid 9.5  at Lunch at Mona's"), expense(9.5, "", "Lunch at Mona's", "Other"));
  EXPECT_EQ(of("Paid 9.5 EGP at \n"), expense(9.5, "EGP", "Payment", "Other"));
  EXPECT_EQ(of("Paid 9.5 EGP at two\nlines"), expense(9.5, "EGP", "two lines", "Other"));
}

TEST(AVeryLongMessage, IsReadAtItsFrontOnly) {
  std::string message = "Purchase of EGP 80.00 at ";
  while (message.size() < 100000) message += "ب";
  const auto recognised = of(message);
  ASSERT_TRUE(std::holds_alternative<Transaction>(recognised));
  EXPECT_EQ(std::get<Transaction>(recognised).amount, 80);
  EXPECT_EQ(std::get<Transaction>(recognised).description.size(), 60U);
}

}  // namespace
}  // namespace kivo::MessageRecogniser
