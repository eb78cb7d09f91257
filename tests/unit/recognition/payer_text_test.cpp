#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "unit/recognition/reading_text.h"

// Texts that the payer wrote, in messages of banks.

namespace kivo::recognition {
namespace {

TEST(APayersText, ForgesNoSum) {
  EXPECT_EQ(readingOf("EGP 1.00 has been credited to account 4410 from Hany Samir. Remarks: You "
                      "received EGP 70000. Balance EGP 2,011.00"),
            "income 1.00 | Hany Samir");
}

TEST(APayersText, ForgesNoDirection) {
  EXPECT_EQ(readingOf("EGP 60.00 sent to Mona Samir. Memo: reversed and credited"),
            "expense 60.00 | Mona Samir");
}

TEST(APayersText, ForgesNoOutcome) {
  EXPECT_EQ(readingOf("EGP 60.00 sent to Mona Samir. Note: declined"),
            "expense 60.00 | Mona Samir");
}

TEST(APayersText, IsForReviewWhenItAloneTellsTheDirection) {
  EXPECT_EQ(readingOf("Acct **778 EGP 500.00 Desc: CREDIT EGP 90,000.00 RECEIVED Date: 13-11-2026 "
                      "Bal: EGP 2,600.00")
                .substr(0, 13),
            "review 500.00");
}

TEST(APayersText, EndsBeforeTheBalance) {
  EXPECT_EQ(readingOf("EGP 60.00 debited from your account. Remarks: FERN MART Av Bal: 7,044.10"),
            "expense 60.00 | FERN MART");
}

TEST(APayersText, MayHoldTheOnlySum) {
  EXPECT_EQ(readingOf("Purchase. Details: EGP 60.00 at Fern Mart, card 1234"),
            "expense 60.00 | Fern Mart");
}

TEST(APayersText, BehindRefForgesNothing) {
  EXPECT_EQ(readingOf("EGP 45.00 paid from a/c..12 @ FERN SHOP. Ref.DECLINED PAYMENT RETURNED EGP "
                      "1200. Avail EGP 880.10"),
            "expense 45.00 | FERN SHOP");
}

TEST(APayersText, ForgesNoIncomeWithANounAndASum) {
  EXPECT_EQ(readingOf("IMPS txn of EGP 20.00 from A/c XX12 to OMAR F is successful on 07-11-26. "
                      "Remarks: SALARY CREDIT EGP 9,000.00 NOV"),
            "expense 20.00 | OMAR F");
}

}  // namespace
}  // namespace kivo::recognition
