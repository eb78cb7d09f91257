// Reading a stored queue that another program wrote.
#include <gmock/gmock.h>

#include "testkit/written_output.h"
#include "unit/queue/a_queue.h"

namespace kivo {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testkit::idsAndCounts;
using testkit::queuedItem;

TEST_F(AQueue, ReadsANullAmountAndMerchantAsAbsent) {
  storeText(R"([{"id":"A","smsText":"text A","expenseDate":"2026-01-30",)"
            R"("queuedAt":"2026-01-30T10:00:00Z","retryCount":0,"source":"sms",)"
            R"("amount":null,"merchant":null}])");
  ASSERT_THAT(load(), ElementsAre(queuedItem("A")));
  save(load());
  EXPECT_EQ(storedText(), R"([{"id":"A","smsText":"text A","expenseDate":"2026-01-30",)"
                          R"("queuedAt":"2026-01-30T10:00:00Z","retryCount":0,"source":"sms"}])");
}

TEST_F(AQueue, IgnoresUnknownKeys) {
  storeText(R"([{"ID":1,"id":"A","smsText":"text A","expenseDate":"2026-01-30",)"
            R"("queuedAt":"2026-01-30T10:00:00Z","retryCount":0,"source":"sms","x":[{}]}])");
  EXPECT_THAT(load(), ElementsAre(queuedItem("A")));
}

TEST_F(AQueue, ReadsAnIntegerRetryCountInAnyFormat) {
  for (const auto* const three : {"3", "3.0", "3e0"}) {
    storeText(R"([{"id":"A","smsText":"text A","expenseDate":"2026-01-30","source":"sms",)"
              R"("queuedAt":"2026-01-30T10:00:00Z","retryCount":)" +
              std::string(three) + "}]");
    EXPECT_THAT(idsAndCounts(load()), ElementsAre("A:3")) << three;
  }
}

TEST_F(AQueue, IsEmptyWhenItIsStoredAsANumber) {
  phone_.put(StoreKeys::pendingSmsQueue, 1.0);
  EXPECT_THAT(load(), IsEmpty());
}

// Stored queues that cannot be read.
class ABrokenQueue : public AQueue, public ::testing::WithParamInterface<std::string> {};

TEST_P(ABrokenQueue, ReadsAsEmptyAndStaysUntilTheNextItemReplacesIt) {
  storeText(GetParam());
  std::vector<PendingSmsItem> loaded;
  const auto written = testkit::writtenBy([&] { loaded = load(); });
  EXPECT_THAT(loaded, IsEmpty());
  EXPECT_EQ(written.out, "");
  EXPECT_EQ(written.err, "");
  EXPECT_EQ(storedText(), GetParam());

  enqueue(queuedItem("new"));
  EXPECT_THAT(load(), ElementsAre(queuedItem("new")));
  EXPECT_EQ(storedCount(), "1");
}

const std::string sixButOne = R"("smsText":"t","expenseDate":"d","queuedAt":"q")";

INSTANTIATE_TEST_SUITE_P(
    Forms, ABrokenQueue,
    ::testing::Values(
        "", "[", "nonsense", "{}", "null", "[1]", "[[]]", "[null]", "[] []",
        R"([{"id":"A",)" + sixButOne + R"(,"retryCount":0}])",
        R"([{"id":"A",)" + sixButOne + R"(,"source":"sms"}])",
        R"([{)" + sixButOne + R"(,"retryCount":0,"source":"sms"}])",
        R"([{"id":7,)" + sixButOne + R"(,"retryCount":0,"source":"sms"}])",
        R"([{"id":null,)" + sixButOne + R"(,"retryCount":0,"source":"sms"}])",
        R"([{"id":"A",)" + sixButOne + R"(,"retryCount":"0","source":"sms"}])",
        R"([{"id":"A",)" + sixButOne + R"(,"retryCount":0.5,"source":"sms"}])",
        R"([{"id":"A",)" + sixButOne + R"(,"retryCount":9223372036854775808,"source":"sms"}])",
        R"([{"id":"A",)" + sixButOne + R"(,"retryCount":0,"source":"sms","amount":"12"}])",
        R"([{"id":"A",)" + sixButOne + R"(,"retryCount":0,"source":"sms","merchant":1}])",
        R"([{"ID":"A",)" + sixButOne + R"(,"retryCount":0,"source":"sms"}])"));

TEST_F(AQueue, IsEmptyWhenOneElementOfSeveralLacksAMember) {
  save({queuedItem("A"), queuedItem("B")});
  std::string text = storedText().value();
  text.replace(text.rfind("\"source\""), 8, "\"sauce\"");
  storeText(text);
  EXPECT_THAT(load(), IsEmpty());
  enqueue(queuedItem("C"));
  EXPECT_THAT(idsAndCounts(load()), ElementsAre("C:0"));
}

}  // namespace
}  // namespace kivo
