#include <algorithm>
#include <cctype>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "unit/recognition/reading_text.h"

// Reads whole files of invented messages and holds the share of right readings against bars.
// docs/ledger.md has the figures and how they were obtained.

namespace kivo::recognition {

using money::Money;
using money::moneyFromText;

namespace {

struct Message {
  std::string book;
  std::string kind;
  std::string amount;
  std::string payee;
  std::string text;
};

std::vector<Message> messagesIn(const std::string& file) {
  std::ifstream lines(std::string(KIVO_MESSAGES_FOLDER) + "/" + file);
  std::vector<Message> messages;
  for (std::string line; std::getline(lines, line);) {
    if (line.empty() || line.starts_with('#')) continue;
    std::istringstream fields(line);
    Message message;
    for (std::string* const field :
         {&message.book, &message.kind, &message.amount, &message.payee, &message.text}) {
      std::getline(fields, *field, '\t');
    }
    for (std::size_t at = message.text.find("\\n"); at != std::string::npos;
         at = message.text.find("\\n", at)) {
      message.text.replace(at, 2, "\n");
    }
    messages.push_back(std::move(message));
  }
  return messages;
}

std::string inSmallLetters(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return text;
}

struct Count {
  int right = 0;
  int all = 0;

  void add(bool isRight) {
    right += isRight ? 1 : 0;
    ++all;
  }
  [[nodiscard]] double percent() const { return all == 0 ? 100.0 : 100.0 * right / all; }
};

bool moves(const std::string& kind) {
  return kind == "expense" || kind == "income" || kind == "transfer";
}

bool isOffByTen(const Money& sum, const std::string& expected) {
  const auto right = moneyFromText(expected, sum.currency);
  return !right || sum.minorUnits >= 10 * right->minorUnits ||
         right->minorUnits >= 10 * sum.minorUnits;
}

class MeasuredMessages : public ::testing::Test {
 protected:
  void measure(const std::string& file) {
    const auto messages = messagesIn(file);
    ASSERT_FALSE(messages.empty()) << file;
    for (const Message& message : messages) add(message);
    std::cout << file << ": kind and amount " << kindAndAmount_.right << "/" << kindAndAmount_.all
              << ", payee " << payee_.right << "/" << payee_.all << ", wrongly booked "
              << wronglyBooked_.right << "/" << wronglyBooked_.all << "\n";
    EXPECT_GE(kindAndAmount_.percent(), 90.0);
    EXPECT_GE(payee_.percent(), 65.0);
    EXPECT_LE(wronglyBooked_.percent(), 5.0);
  }

 private:
  void add(const Message& message) {
    const Reading reading = read(message.text, message.book);
    const std::string kind = kindText(reading);
    const bool booked = reading.outcome == Outcome::transaction;
    if (!moves(message.kind)) {
      kindAndAmount_.add(kind == message.kind);
      wronglyBooked_.add(booked);
      EXPECT_FALSE(booked && message.kind == "review") << "booked a foreign sum: " << message.text;
      return;
    }
    const auto expected = moneyFromText(message.amount, message.book);
    ASSERT_TRUE(expected) << message.text;
    kindAndAmount_.add(kind == message.kind && reading.amount == expected);
    EXPECT_FALSE(booked && isOffByTen(*reading.amount, message.amount)) << message.text;
    if (!message.payee.empty() && message.payee != "-") {
      payee_.add(booked && inSmallLetters(reading.payee) == inSmallLetters(message.payee));
    }
  }

  Count kindAndAmount_;
  Count payee_;
  Count wronglyBooked_;  // "right" counts the messages that were booked and must not be
};

TEST_F(MeasuredMessages, OfTheKnownSetReachTheBars) { measure("messages_known.tsv"); }

TEST_F(MeasuredMessages, OfTheFirstSetReachTheBars) { measure("messages_first_measure.tsv"); }

TEST_F(MeasuredMessages, OfTheSecondSetReachTheBars) { measure("messages_second_measure.tsv"); }

TEST_F(MeasuredMessages, OfTheThirdSetReachTheBars) { measure("messages_third_measure.tsv"); }

TEST_F(MeasuredMessages, OfTheFourthSetReachTheBars) { measure("messages_fourth_measure.tsv"); }

TEST_F(MeasuredMessages, OfTheFifthSetReachTheBars) { measure("messages_fifth_measure.tsv"); }

TEST_F(MeasuredMessages, OfTheSixthSetReachTheBars) { measure("messages_sixth_measure.tsv"); }

TEST_F(MeasuredMessages, OfTheSeventhSetReachTheBars) { measure("messages_seventh_measure.tsv"); }

}  // namespace
}  // namespace kivo::recognition
