#include "feedback/deep_link.h"

#include <charconv>

namespace kivo {

namespace {

constexpr std::string_view paymentPath = "kivo-expenses://payment/";

}  // namespace

std::string DeepLink::toPayment(std::int64_t id) {
  return std::string(paymentPath) + std::to_string(id);
}

std::optional<std::int64_t> DeepLink::payment(std::string_view link) {
  if (!link.starts_with(paymentPath)) return std::nullopt;
  const std::string_view digits = link.substr(paymentPath.size());
  std::int64_t id = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), id);
  if (id <= 0 || toPayment(id) != link) return std::nullopt;
  return id;
}

}  // namespace kivo
