#include "platform/linux/http/http_answer.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>

#include <boost/asio/local/stream_protocol.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/ssl/stream.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/core/tcp_stream.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>

#include "platform/foundation/errors.h"

namespace kivo::linux_platform {
namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;

using boost::system::error_code;
using platform::HTTPURLResponse;
using platform::Task;
using platform::URLAnswer;
using platform::URLError;
using Code = URLError::Code;

namespace {

using Parser = http::response_parser<http::string_body>;

constexpr unsigned lowestStatus = 100;
constexpr int mostInterimAnswers = 16;
constexpr std::uint32_t longestHeader = 64U << 10U;
constexpr std::uint64_t longestBody = 1U << 20U;
// Room for unparsed bytes: a header block, or one read of a body.
constexpr std::size_t readBuffer = longestHeader << 1U;

Code failureOf(const error_code& error) {
  if (error == http::error::header_limit || error == http::error::body_limit ||
      error == http::error::buffer_overflow) {
    return Code::dataLengthExceedsMaximum;
  }
  static const auto& httpErrors = make_error_code(http::error::bad_value).category();
  const bool cutShort =
      error == http::error::end_of_stream || error == http::error::partial_message;
  return error.category() == httpErrors && !cutShort ? Code::badServerResponse
                                                     : Code::networkConnectionLost;
}

// Servers without a word for a status often leave out the blank before it as well, which the parser
// needs. Adds it to a status line that ends after the status; returns false for any other.
bool addBlankAfterStatus(beast::flat_buffer& buffer) {
  constexpr std::size_t blank = std::string_view("HTTP/1.1 200").size();
  const auto bytes = [&buffer] { return static_cast<char*>(buffer.data().data()); };
  if (buffer.size() <= blank || bytes()[blank] != '\r') return false;
  buffer.prepare(1);
  buffer.commit(1);
  std::copy_backward(bytes() + blank, bytes() + buffer.size() - 1, bytes() + buffer.size());
  bytes()[blank] = ' ';
  return true;
}

// Reads the status line and the headers into a new parser. Returns false when they are malformed.
template <typename Stream>
Task<bool> readHeader(Stream& stream, beast::flat_buffer& buffer, std::optional<Parser>& parser) {
  error_code error;
  std::size_t length = 0;
  do {
    parser.emplace();
    parser->header_limit(longestHeader);
    parser->body_limit(longestBody);
    length = co_await http::async_read_header(stream, buffer, *parser,
                                              asio::redirect_error(asio::use_awaitable, error));
  } while (error == http::error::bad_status && addBlankAfterStatus(buffer));
  // The parser's own limit holds for the status line and for the fields, one by one.
  if (length > longestHeader) throw URLError(Code::dataLengthExceedsMaximum);
  if (!error) co_return parser->get().result_int() >= lowestStatus;
  if (failureOf(error) != Code::badServerResponse) throw URLError(failureOf(error));
  co_return false;
}

}  // namespace

template <typename Stream>
Task<URLAnswer> readAnswer(Stream& stream) {
  beast::flat_buffer buffer(readBuffer);
  std::optional<Parser> parser;
  for (int answers = 0; !parser || parser->get().result_int() / 100 == 1; ++answers) {
    if (answers > mostInterimAnswers) throw URLError(Code::badServerResponse);
    const bool isHTTP = co_await readHeader(stream, buffer, parser);
    if (!isHTTP) co_return URLAnswer{};
  }
  error_code error;
  co_await http::async_read(stream, buffer, *parser,
                            asio::redirect_error(asio::use_awaitable, error));
  if (error) throw URLError(failureOf(error));
  const HTTPURLResponse response{.statusCode = static_cast<int>(parser->get().result_int())};
  co_return URLAnswer{.data = std::move(parser->get().body()), .response = response};
}

template Task<URLAnswer> readAnswer(beast::tcp_stream&);
template Task<URLAnswer> readAnswer(asio::ssl::stream<beast::tcp_stream&>&);
template Task<URLAnswer> readAnswer(beast::basic_stream<asio::local::stream_protocol>&);

}  // namespace kivo::linux_platform
