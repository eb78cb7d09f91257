#include "feedback/deep_link.h"

#include <cstdint>
#include <limits>
#include <optional>

#include <gtest/gtest.h>

namespace kivo {
namespace {

TEST(ADeepLink, NamesThePaymentThatItOpens) {
  EXPECT_EQ(DeepLink::toPayment(42), "kivo-expenses://payment/42");
  for (const std::int64_t id : {std::int64_t{1}, std::numeric_limits<std::int64_t>::max()}) {
    EXPECT_EQ(DeepLink::payment(DeepLink::toPayment(id)), id);
  }
}

TEST(ADeepLink, HasNoPaymentInAnyOtherForm) {
  for (const char* const link :
       {"", "kivo-expenses://", "kivo-expenses://payment/", "kivo-expenses://payment/0",
        "kivo-expenses://payment/-1", "kivo-expenses://payment/+1", "kivo-expenses://payment/01",
        "kivo-expenses://payment/1 ", "kivo-expenses://payment/1/delete",
        "kivo-expenses://payment/1?x", "kivo-expenses://payment/9223372036854775808",
        "kivo-expenses://delete/1", "https://payment/1", "KIVO-EXPENSES://payment/1"}) {
    EXPECT_EQ(DeepLink::payment(link), std::nullopt) << link;
  }
}

}  // namespace
}  // namespace kivo
