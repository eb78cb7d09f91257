// The links that Kivo's notifications open.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kivo::DeepLink {

/// Opens the app. The desktop file names its scheme as well.
constexpr const char* app = "kivo-expenses://";

/// Returns the link that opens the app on the page of a payment.
/// \param id a positive number of the book
std::string toPayment(std::int64_t id);

/// Returns the number in a link that `toPayment` can have made; nullopt for all other texts.
std::optional<std::int64_t> payment(std::string_view link);

}  // namespace kivo::DeepLink
