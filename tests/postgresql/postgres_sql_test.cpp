#include "book_postgresql/postgres_sql.h"

#include <gtest/gtest.h>

namespace kivo::book_postgresql {
namespace {

TEST(SqlForPostgres, NumbersParametersAsSqliteDoes) {
  EXPECT_EQ(postgresSql("a = ? AND b = ?"), "a = $1 AND b = $2");
  EXPECT_EQ(postgresSql("a = ?2 AND b = ?1 AND c = ?"), "a = $2 AND b = $1 AND c = $3");
  EXPECT_EQ(postgresSql("VALUES (?, ?12)"), "VALUES ($1, $12)");
}

TEST(SqlForPostgres, QuotesTheColumnWhoseNameIsTheDatabasesUser) {
  EXPECT_EQ(postgresSql("SELECT user, went.user FROM users"),
            "SELECT \"user\", went.\"user\" FROM users");
  EXPECT_EQ(postgresSql("SELECT \"user\""), "SELECT \"user\"");
}

TEST(SqlForPostgres, LeavesHintsForSqliteOut) {
  EXPECT_EQ(postgresSql("+state = 'booked' AND (+went.user = 'a')"),
            "state = 'booked' AND (went.\"user\" = 'a')");
  EXPECT_EQ(postgresSql("FROM transactions INDEXED BY by_day WHERE a = 1"),
            "FROM transactions  WHERE a = 1");
  EXPECT_EQ(postgresSql("last + 1, a +1"), "last + 1, a +1");
}

TEST(SqlForPostgres, ChangesNothingWithinQuotes) {
  EXPECT_EQ(postgresSql("'user ? +a INDEXED BY b' || ?"), "'user ? +a INDEXED BY b' || $1");
  EXPECT_EQ(postgresSql("'it''s a user' = ?"), "'it''s a user' = $1");
  EXPECT_EQ(postgresSql("'no end ?"), "'no end ?");
}

}  // namespace
}  // namespace kivo::book_postgresql
