#include "book/recorded_messages.h"

#include "book/database.h"
#include "platform/foundation/utf8.h"

namespace kivo::book {

// A transaction without an answer was entered by hand. A booked ignored message has a transaction.
std::vector<RecordedMessage> recordedMessages(Database& database, const std::string& userId,
                                              const std::string& exceptKeys) {
  Statement query(database, R"(
    SELECT transactions.date, transactions.text, answer FROM answers
      LEFT JOIN transactions USING (user, key)
      WHERE user = ?1 AND substr(key, 1, length(?2)) <> ?2
        AND (transactions.text IS NOT NULL OR substr(answer, 1, 13) = '{"saved":true')
    UNION ALL
    SELECT date, text, '' FROM ignored
      WHERE user = ?1 AND substr(key, 1, length(?2)) <> ?2 AND taken_by IS NULL)");
  query.bind(userId).bind(exceptKeys);
  std::vector<RecordedMessage> found;
  while (next(query)) {
    auto& message = found.emplace_back();
    message.date = money::Day::fromText(query.text(0));
    if (!query.isNull(1)) message.text = platform::repairedUtf8(query.text(1));
    message.answer = query.text(2);
  }
  return found;
}

}  // namespace kivo::book
