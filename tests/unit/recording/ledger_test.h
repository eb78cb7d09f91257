// The fixture of the book's tests.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "extraction/sms_extraction_response.h"
#include "recording/recording.h"
#include "recording/rereading.h"
#include "testkit/private_folders.h"
#include "testkit/raw_book.h"
#include "testkit/raw_store.h"

namespace kivo::recording {

using book::Book;
using book::LedgerEntry;
using money::Money;
using money::Rate;
using recognition::Outcome;
using recognition::Reading;

class LedgerTest : public testing::Test {
 protected:
  [[nodiscard]] std::filesystem::path file() const {
    return folders_.dataHome() / "app.kivo.ledger" / "ledger.sqlite3";
  }

  // Runs SQL on the tables of the book, in a file or elsewhere.
  std::string raw(const std::string& sql) {
    return testkit::rawBook ? testkit::rawBook(sql) : testkit::RawStore(file()).run(sql);
  }

  static Reading spent(std::int64_t minorUnits, const std::string& payee = "Sunny Market",
                       const money::CurrencyCode& currency = "EGP") {
    Reading reading;
    reading.outcome = Outcome::transaction;
    reading.amount = Money{minorUnits, currency};
    reading.payee = payee;
    reading.description = payee;
    reading.category = "Groceries";
    return reading;
  }

  static Rate rate(const char* text) { return Rate::fromText(text).value(); }

  static Book open() { return Book::open(); }

  // Reads each message as `reading_`, whatever its text.
  MessageReader reader() {
    return [this](std::string_view, const money::CurrencyCode& currency) {
      ++read_;
      return readings_ ? readings_(currency) : reading_;
    };
  }

  static Message message(const std::string& key, const money::Day& date = "2026-11-21") {
    return {.text = "text of " + key, .userId = "user", .expenseDate = date, .idempotencyKey = key};
  }

  std::string answer(Book& book, const Message& message,
                     const money::CurrencyCode& currency = "EGP") {
    return recording::record(book, message, reader(), currency).answer;
  }

  SMSExtractionResponse record(Book& book, const Message& message) {
    return SMSExtractionResponse::decode(answer(book, message));
  }

  std::optional<LedgerEntry> reread(const Book& book, std::int64_t id) {
    return recording::reread(book, id, reader(), "EGP");
  }

  static std::optional<BookedSum> accept(Book& book, std::int64_t id) {
    return recording::accept(book, id, "EGP");
  }

  // Edits the entry `id`, with a rule for its payee.
  static void correct(Book& book, std::int64_t id, const book::EntryChange& change) {
    ASSERT_TRUE(book.edit(id, change));
    book.keepRuleOf(id, change);
  }

  // Records `reading` under `key` and returns the entry.
  LedgerEntry recorded(Book& book, const std::string& key, const Reading& reading,
                       const money::Day& date = "2026-11-21") {
    reading_ = reading;
    record(book, message(key, date));
    for (const auto state : {LedgerEntry::State::booked, LedgerEntry::State::review}) {
      for (LedgerEntry& entry : book.entries({.state = state})) {
        if (entry.key == key) return entry;
      }
    }
    throw std::runtime_error("nothing was recorded");
  }

  testkit::PrivateFolders folders_;
  Reading reading_ = spent(15000);
  // In the place of `reading_`, by the book's currency.
  std::function<Reading(const money::CurrencyCode& currency)> readings_;
  int read_ = 0;
};

}  // namespace kivo::recording
