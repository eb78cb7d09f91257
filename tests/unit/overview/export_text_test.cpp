#include "overview/exports/export_text.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "exported_entry.h"

namespace kivo::overview {

using book::LedgerEntry;
using money::Money;

namespace {

TEST(OneLine, MakesEachRunOfBlanksAndControlCharactersASpace) {
  EXPECT_EQ(oneLine("  a \t\r\n b\u00a0\u2028c\x01\x7f\u0085 "), "a b c");
  EXPECT_EQ(oneLine(std::string("a\0b", 3)), "a b");
  EXPECT_EQ(oneLine(" \n "), "");
  EXPECT_EQ(oneLine("a\ufffe\U0001ffffb"), "a b");
}

TEST(OneLine, KeepsLettersOfAllScriptsAndJoinedEmoji) {
  EXPECT_EQ(oneLine("بقالة 👩‍👩‍👧 हिन्दी"),
            "بقالة 👩‍👩‍👧 हिन्दी");
}

TEST(AnImportId, IsTheIdAndAHashOfTheKey) { EXPECT_EQ(importId(exportedEntry()), exportedId); }

TEST(AnImportId, StaysWhenTheEntryIsCorrected) {
  LedgerEntry entry = exportedEntry();
  entry.date = "2026-12-01";
  entry.amount = Money{1, "USD"};
  entry.description = entry.category = "Other";
  EXPECT_EQ(importId(entry), exportedId);
}

TEST(AnImportId, DiffersFromThatOfTheSameNumberInAnotherBook) {
  LedgerEntry other = exportedEntry();
  other.key = "KEY-2";
  EXPECT_NE(importId(other), exportedId);
}

}  // namespace
}  // namespace kivo::overview
