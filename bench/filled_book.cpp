#include "bench/filled_book.h"

#include <string>

#include "book/book.h"
#include "testkit/raw_store.h"

namespace kivo::bench {

void fill(const testkit::PrivateFolders& folders, std::int64_t count) {
  book::Book::open();
  testkit::RawStore(folders.dataHome() / "app.kivo.ledger" / "ledger.sqlite3")
      .run(
          "BEGIN; CREATE TEMP TABLE moves AS WITH RECURSIVE counting (n) AS (SELECT 1 UNION ALL "
          "SELECT n + 1 FROM counting WHERE n < " +
          std::to_string(count) +
          R"()
    SELECT n, date('2026-11-21', ((n - )" +
          std::to_string(count) + R"() / 55) || ' days') AS day,
      substr('4821779012345678', 1 + 4 * (n % 4), 4) AS account, n % 50 = 0 AS incoming,
      1000 + n * 7919 % 90000 AS units FROM counting;
    CREATE TEMP TABLE balances AS SELECT n, 100000000000 + sum(CASE WHEN incoming THEN units
      ELSE -units END) OVER (PARTITION BY account ORDER BY n) AS balance FROM moves;
    CREATE UNIQUE INDEX temp.balances_by_number ON balances (n);
    INSERT INTO transactions (user, key, date, kind, minor_units, currency, description, category,
      payee, folded_payee, account, reference, state, text, incoming, balance, balance_currency)
      SELECT 'user', 'KEY-' || n, day, CASE WHEN incoming THEN 'income' ELSE 'expense' END, units,
      'EGP', 'Payee ' || (n % 200), 'Category ' || (n % 19), 'Payee ' || (n % 200),
      'payee ' || (n % 200), account, CASE n % 3 WHEN 0 THEN 'REF' || n ELSE '' END, 'booked',
      'Your card ending 4821 was charged EGP 150.00 at Payee ' || (n % 200) || ' on 21-11-2026.',
      incoming, CASE WHEN n % 3 <> 1 THEN balance END, CASE WHEN n % 3 <> 1 THEN 'EGP' ELSE '' END
      FROM moves JOIN balances USING (n) WHERE n % 9973 <> 0;
    INSERT INTO answers SELECT user, key, '{"saved":true,"transaction_type":"expense","expense":' ||
      '{"id":"' || id || '","description":"Payee","amount":150.0,"category":"Category 1",' ||
      '"expense_date":"2026-11-21"}}' FROM transactions;
    COMMIT)");
}

}  // namespace kivo::bench
