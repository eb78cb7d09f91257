#include "platform/linux/http/last_exchange.h"

#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "platform/foundation/iso8601_date_formatter.h"
#include "platform/foundation/json_decoder.h"
#include "platform/foundation/json_encoder.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/process/descriptor.h"

namespace kivo::linux_platform {
namespace {

std::optional<std::filesystem::path> file() {
  const auto home = stateHome();
  if (!home) return std::nullopt;
  return *home / "kivo" / "last-exchange";
}

std::string textOf(const ExchangeOutcome& outcome) {
  platform::JSONEncoder object;
  object.encodeString("endedAt", platform::ISO8601DateFormatter::string(platform::Date::now()));
  if (const int* const status = std::get_if<int>(&outcome)) {
    object.encodeInteger("statusCode", *status);
  } else {
    object.encodeString("failure", std::get<platform::URLError>(outcome).localizedDescription());
  }
  return object.text() + "\n";
}

// Returns a file descriptor, or a negative number.
int openForWriting(const std::filesystem::path& path) {
  constexpr int flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW;
  const int opened = open(path.c_str(), flags, 0600);
  if (opened >= 0) return opened;
  std::error_code ignored;
  std::filesystem::create_directories(path.parent_path(), ignored);
  return open(path.c_str(), flags, 0600);
}

void remember(const ExchangeOutcome& outcome) {
  const auto path = file();
  if (!path) return;
  const Descriptor opened(openForWriting(*path));
  if (opened.number() < 0) return;
  const std::string text = textOf(outcome);
  // A truncated line does not parse and then counts as absent.
  static_cast<void>(!write(opened.number(), text.data(), text.size()));
}

}  // namespace

ExchangeOutcome outcomeOf(const platform::URLAnswer& answer) {
  if (answer.response) return answer.response->statusCode;
  return platform::URLError(platform::URLError::Code::badServerResponse);
}

platform::Task<platform::URLAnswer> RememberingURLSession::data(platform::URLRequest request) {
  std::optional<platform::URLError> failure;
  platform::URLAnswer answer;
  try {
    answer = co_await exchanging_.data(std::move(request));
  } catch (const platform::URLError& error) {
    failure = error;
  }
  remember(failure ? *failure : outcomeOf(answer));
  if (failure) throw *failure;
  co_return answer;
}

std::optional<LastExchange> lastExchange() {
  const auto path = file();
  if (!path) return std::nullopt;
  const Descriptor opened(open(path->c_str(), O_RDONLY | O_CLOEXEC));
  std::array<char, 512> bytes{};
  const ssize_t size = opened.number() < 0 ? -1 : read(opened.number(), bytes.data(), bytes.size());
  if (size <= 0) return std::nullopt;
  try {
    const auto object =
        platform::JSONDecoder::object({bytes.data(), static_cast<std::size_t>(size)});
    const auto endedAt = platform::ISO8601DateFormatter::date(object.decodeString("endedAt"));
    if (!endedAt) return std::nullopt;
    LastExchange last{.endedAt = *endedAt, .statusCode = std::nullopt, .failure = ""};
    if (auto failure = object.decodeStringIfPresent("failure")) {
      last.failure = *std::move(failure);
    } else {
      last.statusCode = static_cast<int>(object.decodeInteger("statusCode"));
    }
    return last;
  } catch (const platform::DecodingError&) {
    return std::nullopt;
  }
}

}  // namespace kivo::linux_platform
