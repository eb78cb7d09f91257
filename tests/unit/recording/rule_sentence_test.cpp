#include "recording/rule_sentence.h"

#include <gtest/gtest.h>

namespace kivo::recording {

using book::Rule;
using money::Kind;

TEST(ARuleSentence, SaysWhatLaterPaymentsWillBe) {
  EXPECT_EQ(ruleSentence({1, "TOWN GAS", {.category = "Utilities"}}, Kind::expense),
            "Later payments to TOWN GAS will be Utilities.");
  EXPECT_EQ(ruleSentence({1, "ACME", {.description = "Work", .category = "Salary"}}, Kind::income),
            "Later payments from ACME will be Salary and called Work.");
}

TEST(ARuleSentence, NamesTheKindThatTheRuleGives) {
  EXPECT_EQ(ruleSentence({1, "MONA", {.kind = Kind::income}}, Kind::expense),
            "Later payments from MONA will be income.");
  EXPECT_EQ(madeOf({.description = "Flat", .category = "Rent", .kind = Kind::transfer}),
            "transfers, Rent and called Flat");
}

}  // namespace kivo::recording
