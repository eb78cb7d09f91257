#include "book_postgresql/postgres_tables.h"

#include <array>
#include <cstdlib>
#include <sstream>
#include <string_view>
#include <utility>

#include <libpq-fe.h>

namespace kivo::book_postgresql {
namespace {

// Bytes are compared as SQLite does, so that both databases sort and find alike. The checks are
// those of SQLite's tables. Past rows have no checks: they were in a table that has them.
constexpr std::array forms = {
    TableForm{"answers", R"("user" TEXT COLLATE "C" NOT NULL, key TEXT COLLATE "C" NOT NULL,
      answer TEXT COLLATE "C" NOT NULL)",
              "\"user\", key", ""},
    TableForm{"transactions", R"(id BIGINT NOT NULL, "user" TEXT COLLATE "C" NOT NULL,
      key TEXT COLLATE "C" NOT NULL, date TEXT COLLATE "C" NOT NULL,
      kind TEXT COLLATE "C" NOT NULL, minor_units BIGINT, currency TEXT COLLATE "C" NOT NULL,
      description TEXT COLLATE "C" NOT NULL, category TEXT COLLATE "C" NOT NULL,
      payee TEXT COLLATE "C" NOT NULL, folded_payee TEXT COLLATE "C" NOT NULL,
      account TEXT COLLATE "C" NOT NULL, reference TEXT COLLATE "C" NOT NULL,
      state TEXT COLLATE "C" NOT NULL, possible_duplicate_of BIGINT, text TEXT COLLATE "C",
      edited BIGINT NOT NULL DEFAULT 0, balance BIGINT,
      balance_currency TEXT COLLATE "C" NOT NULL DEFAULT '', original BIGINT,
      original_currency TEXT COLLATE "C" NOT NULL DEFAULT '', refund BIGINT NOT NULL DEFAULT 0,
      incoming BIGINT NOT NULL DEFAULT 0, counterpart BIGINT,
      UNIQUE (book, "user", key),
      CHECK (state IN ('booked', 'review', 'set_aside')),
      CHECK (state = 'set_aside' OR date ~ '^[0-9]{4}-[0-9]{2}-[0-9]{2}$'),
      CHECK (state = 'set_aside' OR kind IN ('expense', 'income', 'transfer')),
      CHECK (CASE
        WHEN state = 'set_aside' THEN TRUE
        WHEN minor_units IS NULL THEN state = 'review' AND currency = ''
        ELSE minor_units BETWEEN 1 AND 9007199254740992 AND currency ~ '^[A-Z]{3}$' END))",
              "id", "id"},
    TableForm{"ignored", R"(number BIGINT NOT NULL, "user" TEXT COLLATE "C" NOT NULL,
      key TEXT COLLATE "C" NOT NULL, date TEXT COLLATE "C" NOT NULL,
      reason TEXT COLLATE "C" NOT NULL, text TEXT COLLATE "C" NOT NULL, taken_by BIGINT)",
              "number", "number"},
    TableForm{"categories", R"(folded TEXT COLLATE "C" NOT NULL, name TEXT COLLATE "C" NOT NULL)",
              "folded", ""},
    TableForm{"separated",
              "number BIGINT NOT NULL, one BIGINT NOT NULL, other BIGINT NOT NULL, "
              "UNIQUE (book, one, other)",
              "number", "number"},
    TableForm{"accounts", R"(digits TEXT COLLATE "C" NOT NULL, name TEXT COLLATE "C" NOT NULL,
      credit BIGINT NOT NULL)",
              "digits", ""},
    TableForm{"rules", R"(number BIGINT NOT NULL, payee TEXT COLLATE "C" NOT NULL,
      written TEXT COLLATE "C" NOT NULL, has_wildcard BIGINT NOT NULL,
      description TEXT COLLATE "C", category TEXT COLLATE "C", kind TEXT COLLATE "C",
      UNIQUE (book, payee))",
              "number", "number"},
    TableForm{"rates", R"(currency TEXT COLLATE "C" NOT NULL, first_day TEXT COLLATE "C" NOT NULL,
      rate TEXT COLLATE "C" NOT NULL)",
              "currency, first_day", ""},
    TableForm{"budgets", R"(folded TEXT COLLATE "C" NOT NULL, month TEXT COLLATE "C" NOT NULL,
      category TEXT COLLATE "C" NOT NULL, minor_units BIGINT NOT NULL,
      currency TEXT COLLATE "C" NOT NULL)",
              "folded, month", ""},
    TableForm{"passed_budgets", R"(folded TEXT COLLATE "C" NOT NULL,
      month TEXT COLLATE "C" NOT NULL, percent BIGINT NOT NULL)",
              "folded, month", ""},
    TableForm{"commands", R"(number BIGINT NOT NULL, moment BIGINT NOT NULL,
      words TEXT COLLATE "C" NOT NULL, template TEXT COLLATE "C" NOT NULL)",
              "number", "number"},
    TableForm{"past_transactions", R"(command BIGINT NOT NULL, existed BIGINT NOT NULL,
      id BIGINT NOT NULL, "user" TEXT COLLATE "C", key TEXT COLLATE "C", date TEXT COLLATE "C",
      kind TEXT COLLATE "C", minor_units BIGINT, currency TEXT COLLATE "C",
      description TEXT COLLATE "C", category TEXT COLLATE "C", payee TEXT COLLATE "C",
      folded_payee TEXT COLLATE "C", account TEXT COLLATE "C", reference TEXT COLLATE "C",
      state TEXT COLLATE "C", edited BIGINT, balance BIGINT, balance_currency TEXT COLLATE "C",
      original BIGINT, original_currency TEXT COLLATE "C", refund BIGINT, incoming BIGINT,
      counterpart BIGINT)",
              "command, id", ""},
    TableForm{"past_answers", R"(command BIGINT NOT NULL, "user" TEXT COLLATE "C" NOT NULL,
      key TEXT COLLATE "C" NOT NULL)",
              "command, \"user\", key", ""},
    TableForm{"past_rules", R"(command BIGINT NOT NULL, existed BIGINT NOT NULL,
      number BIGINT NOT NULL, payee TEXT COLLATE "C", written TEXT COLLATE "C",
      has_wildcard BIGINT, description TEXT COLLATE "C", category TEXT COLLATE "C",
      kind TEXT COLLATE "C")",
              "command, number", ""},
    TableForm{"past_rates", R"(command BIGINT NOT NULL, existed BIGINT NOT NULL,
      currency TEXT COLLATE "C" NOT NULL, first_day TEXT COLLATE "C" NOT NULL DEFAULT '',
      rate TEXT COLLATE "C")",
              "command, currency, first_day", ""},
    TableForm{"past_accounts", R"(command BIGINT NOT NULL, existed BIGINT NOT NULL,
      digits TEXT COLLATE "C" NOT NULL, name TEXT COLLATE "C", credit BIGINT)",
              "command, digits", ""},
    TableForm{"past_separated", R"(command BIGINT NOT NULL, existed BIGINT NOT NULL,
      number BIGINT NOT NULL, one BIGINT, other BIGINT)",
              "command, number", ""},
    TableForm{"past_categories", R"(command BIGINT NOT NULL, existed BIGINT NOT NULL,
      folded TEXT COLLATE "C" NOT NULL, name TEXT COLLATE "C")",
              "command, folded", ""},
    TableForm{"past_budgets", R"(command BIGINT NOT NULL, existed BIGINT NOT NULL,
      folded TEXT COLLATE "C" NOT NULL, month TEXT COLLATE "C" NOT NULL DEFAULT '',
      category TEXT COLLATE "C", minor_units BIGINT, currency TEXT COLLATE "C")",
              "command, folded, month", ""}};

// `kivo.numbers` has the last number that each book gave in a table, so that none is given twice.
constexpr const char* beginning = R"(
CREATE SCHEMA kivo;
CREATE SCHEMA kivo_book;
CREATE TABLE kivo.version (number BIGINT NOT NULL);
CREATE TABLE kivo.books (
  number BIGINT GENERATED ALWAYS AS IDENTITY PRIMARY KEY, name TEXT COLLATE "C" NOT NULL,
  changes BIGINT NOT NULL DEFAULT 0
);
CREATE UNIQUE INDEX ON kivo.books (lower(name));
CREATE TABLE kivo.people (
  number BIGINT GENERATED ALWAYS AS IDENTITY PRIMARY KEY, name TEXT COLLATE "C" NOT NULL,
  book BIGINT NOT NULL REFERENCES kivo.books (number)
);
CREATE UNIQUE INDEX ON kivo.people (lower(name));
CREATE INDEX ON kivo.people (book);
CREATE TABLE kivo.devices (
  number BIGINT GENERATED ALWAYS AS IDENTITY PRIMARY KEY, name TEXT COLLATE "C" NOT NULL,
  person BIGINT NOT NULL REFERENCES kivo.people (number), added TEXT NOT NULL,
  secret_hash TEXT COLLATE "C" NOT NULL UNIQUE
);
CREATE UNIQUE INDEX ON kivo.devices (person, lower(name));
CREATE TABLE kivo.settings (name TEXT PRIMARY KEY, value TEXT NOT NULL);
CREATE TABLE kivo.book_settings (
  book BIGINT PRIMARY KEY REFERENCES kivo.books (number), currency TEXT NOT NULL,
  templates TEXT NOT NULL DEFAULT '', senders TEXT NOT NULL DEFAULT ''
);
CREATE TABLE kivo.numbers (
  book BIGINT NOT NULL REFERENCES kivo.books (number), table_name TEXT NOT NULL,
  last BIGINT NOT NULL, PRIMARY KEY (book, table_name)
);
CREATE FUNCTION kivo.used_book() RETURNS BIGINT LANGUAGE sql STABLE AS
  $$ SELECT current_setting('kivo.book')::BIGINT $$;
CREATE FUNCTION kivo.next_number(of_table TEXT) RETURNS BIGINT LANGUAGE sql VOLATILE AS $$
  UPDATE kivo.numbers SET last = last + 1 WHERE book = kivo.used_book() AND table_name = of_table
  RETURNING last $$;
)";

constexpr const char* indices = R"(
CREATE INDEX ON kivo.transactions (book, state, date, id);
CREATE INDEX ON kivo.transactions (book, date, minor_units, folded_payee);
CREATE INDEX ON kivo.transactions (book, reference) WHERE reference <> '';
CREATE INDEX ON kivo.transactions (book, possible_duplicate_of)
  WHERE possible_duplicate_of IS NOT NULL;
CREATE INDEX ON kivo.transactions (book, category);
CREATE INDEX ON kivo.transactions (book, counterpart) WHERE counterpart IS NOT NULL;
CREATE INDEX ON kivo.transactions (book, folded_payee, date) WHERE folded_payee <> '';
CREATE INDEX ON kivo.transactions (book, account, date, id) WHERE account <> '';
CREATE INDEX ON kivo.transactions (book, date, id) WHERE kind = 'transfer' AND category = 'Cash';
CREATE INDEX ON kivo.ignored (book, date);
)";

constexpr int partitions = 16;
constexpr std::int64_t currentVersion = 1;

std::string sqlFor(const TableForm& form) {
  const std::string name = form.name;
  std::string sql = "CREATE TABLE kivo." + name +
                    " (book BIGINT NOT NULL DEFAULT kivo.used_book(), " + form.columns +
                    ", PRIMARY KEY (book, " + form.key + ")) PARTITION BY HASH (book);\n";
  for (int part = 0; part < partitions; ++part) {
    const std::string number = std::to_string(part);
    sql.append("CREATE TABLE kivo.").append(name).append("_").append(number);
    sql.append(" PARTITION OF kivo.").append(name).append(" FOR VALUES WITH (MODULUS ");
    sql.append(std::to_string(partitions)).append(", REMAINDER ").append(number).append(");\n");
  }
  const std::string numbered = form.numbered;
  if (!numbered.empty()) {
    sql += "ALTER TABLE kivo." + name + " ALTER COLUMN " + numbered +
           " SET DEFAULT kivo.next_number('" + name + "');\n";
  }
  return sql + "CREATE VIEW kivo_book." + name + " AS SELECT " + columnNames(form) + " FROM kivo." +
         name + " WHERE book = kivo.used_book();\n";
}

std::string versionOne() {
  std::string sql = beginning;
  for (const TableForm& form : forms) sql += sqlFor(form);
  return sql + indices + "INSERT INTO kivo.version VALUES (1)";
}

struct Column {
  std::string name;
  std::string type;
};

// The first two words of each part between commas outside of brackets, but for conditions.
std::vector<Column> columnsOf(const TableForm& table) {
  std::vector<Column> columns;
  int depth = 0;
  std::string part;
  const auto add = [&] {
    std::istringstream words(part);
    Column column;
    words >> column.name >> column.type;
    if (column.name != "UNIQUE" && column.name != "CHECK") columns.push_back(std::move(column));
    part.clear();
  };
  for (const char c : std::string_view(table.columns)) {
    if (c == '(') ++depth;
    if (c == ')') --depth;
    if (c == ',' && depth == 0) {
      add();
    } else {
      part += c == '(' ? ' ' : c;
    }
  }
  add();
  return columns;
}

// 0 for a database without tables.
std::int64_t versionOf(PostgresConnection& connection) {
  const Result found = connection.run(
      "SELECT 1 FROM information_schema.tables WHERE table_schema = 'kivo' AND table_name = "
      "'version'",
      {});
  if (PQntuples(found.get()) == 0) return 0;
  const Result version = connection.run("SELECT max(number) FROM kivo.version", {});
  return std::atoll(std::string(valueOf(version, 0, 0)).c_str());
}

}  // namespace

std::span<const TableForm> tableForms() { return forms; }

std::string columnNames(const TableForm& table) {
  std::string names;
  for (const Column& column : columnsOf(table)) names += (names.empty() ? "" : ", ") + column.name;
  return names;
}

std::vector<bool> numberColumns(const TableForm& table) {
  std::vector<bool> numbers;
  for (const Column& column : columnsOf(table)) numbers.push_back(column.type == "BIGINT");
  return numbers;
}

void createTables(PostgresConnection& connection) {
  const std::int64_t version = versionOf(connection);
  if (version > currentVersion) {
    throw book::BookFailure("its tables are of a newer version of Kivo; update Kivo");
  }
  if (version == currentVersion) return;
  try {
    PostgresTransaction transaction(connection);
    connection.run(versionOne());
    transaction.commit();
  } catch (const book::BookFailure&) {  // unless another server did it at the same time
    if (versionOf(connection) != currentVersion) throw;
  }
}

}  // namespace kivo::book_postgresql
