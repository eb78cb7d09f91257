// Exchanges with servers that fail, lie or never finish.
#include <chrono>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "platform/linux/http/http_url_session.h"
#include "testkit/http_exchange.h"
#include "testkit/loopback_socket.h"
#include "testkit/scripted_server.h"

namespace kivo::testkit {
namespace {

using namespace std::chrono_literals;

class AFailingHTTPExchange : public testing::Test {
 protected:
  linux_platform::HTTPURLSession session_;

  Outcome with(Script script) {
    const ScriptedServer server(std::move(script));
    return exchange(session_, post(server.url()));
  }
  Outcome answeredWith(std::string bytes) { return with(answering(std::move(bytes))); }
};

TEST_F(AFailingHTTPExchange, RefusesOtherSchemesThanHTTPAndHTTPS) {
  for (const char* const url :
       {"kivo://127.0.0.1/x", "ftp://127.0.0.1/x", "example.com/x", "//127.0.0.1/x", ""}) {
    EXPECT_EQ(exchange(session_, post(url)).failure, Failure::unsupportedURL) << url;
  }
}

TEST_F(AFailingHTTPExchange, RefusesAURLWithoutAHost) {
  for (const char* const url :
       {"http://", "http:///x", "https://:443/x", "http:127.0.0.1", "http://user@/x"}) {
    EXPECT_EQ(exchange(session_, post(url)).failure, Failure::unsupportedURL) << url;
  }
}

TEST_F(AFailingHTTPExchange, RefusesAPortOutOfRange) {
  const ScriptedServer server(answering(httpAnswer(200, "{}")));
  // Cut to 16 bits, these ports are the port of the server.
  const auto cut = std::to_string(65536 + server.port());
  for (const auto& port : {std::string("0"), std::string("65536"), std::string("99999"), cut,
                           std::string("18446744073709551696")}) {
    EXPECT_EQ(exchange(session_, post("http://127.0.0.1:" + port + "/x")).failure,
              Failure::unsupportedURL)
        << port;
  }
  EXPECT_EQ(server.connections(), 0);
}

TEST_F(AFailingHTTPExchange, CannotConnectToARefusedPort) {
  const RefusedPort port;
  EXPECT_EQ(exchange(session_, post("http://127.0.0.1:" + std::to_string(port.port()))).failure,
            Failure::cannotConnectToHost);
}

TEST_F(AFailingHTTPExchange, IsLostWhenTheServerClosesWithoutAnAnswer) {
  EXPECT_EQ(answeredWith("").failure, Failure::networkConnectionLost);
  EXPECT_EQ(with([](ServerConnection&) {}).failure, Failure::networkConnectionLost);
}

TEST_F(AFailingHTTPExchange, IsLostWhenTheServerResetsBeforeReading) {
  EXPECT_EQ(with([](ServerConnection& connection) {
              connection.idle(50ms);
              connection.reset();
            }).failure,
            Failure::networkConnectionLost);
}

TEST_F(AFailingHTTPExchange, IsLostWhenTheServerResetsAfterReading) {
  EXPECT_EQ(with([](ServerConnection& connection) {
              connection.readRequest();
              connection.reset();
            }).failure,
            Failure::networkConnectionLost);
}

TEST_F(AFailingHTTPExchange, IsLostWhenTheServerResetsWithinTheAnswer) {
  EXPECT_EQ(with([](ServerConnection& connection) {
              connection.readRequest();
              connection.write("HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n{\"a\"");
              connection.idle(50ms);
              connection.reset();
            }).failure,
            Failure::networkConnectionLost);
}

TEST_F(AFailingHTTPExchange, IsLostWhenTheAnswerIsCutShort) {
  const std::string whole = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\n{\"a\":1234}";
  for (const std::size_t length : {std::size_t{1}, std::size_t{9}, std::size_t{15}, std::size_t{17},
                                   whole.size() - 12, whole.size() - 1}) {
    EXPECT_EQ(answeredWith(whole.substr(0, length)).failure, Failure::networkConnectionLost)
        << length;
  }
  EXPECT_EQ(answeredWith(whole).status(), 200);
}

TEST_F(AFailingHTTPExchange, IsLostWhenTheLastChunkIsMissing) {
  const std::string head = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (const char* const chunks : {"", "2\r\n{}\r\n", "2\r\n{", "2\r\n{}\r\n0\r\n"}) {
    EXPECT_EQ(answeredWith(head + chunks).failure, Failure::networkConnectionLost) << chunks;
  }
}

TEST_F(AFailingHTTPExchange, RefusesABrokenChunk) {
  const std::string head = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  for (const char* const chunks :
       {"x\r\n{}\r\n0\r\n\r\n", "2\r\n{}}\r\n0\r\n\r\n", "-1\r\n{}\r\n0\r\n\r\n",
        "fffffffffffffffff\r\n{}\r\n0\r\n\r\n"}) {
    EXPECT_EQ(answeredWith(head + chunks).failure, Failure::badServerResponse) << chunks;
  }
}

TEST_F(AFailingHTTPExchange, ReturnsAnAnswerWithoutAResponseWhenItIsNotHTTP) {
  for (const char* const bytes :
       {"garbage\r\n\r\n",
        "SSH-2.0-server\r\n",
        "HTTP/9.9 200 OK\r\n\r\n",
        "HTTP/1.1 20 OK\r\n\r\n",
        "HTTP/1.1 2000 OK\r\n\r\n",
        "HTTP/1.1 abc OK\r\n\r\n",
        "HTTP/1.1 000 OK\r\n\r\n",
        "HTTP/1.1 099 OK\r\n\r\n",
        "<html>not found</html>",
        "\x16\x03\x01 and more bytes that are no text\r\n\r\n",
        "HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\n",
        "HTTP/1.1 200 OK\r\nContent-Length: 2x\r\n\r\n{}",
        "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nContent-Length: 3\r\n\r\n{} ",
        "HTTP/1.1 200 OK\r\nContent-Length: 2\r\nTransfer-Encoding: chunked\r\n\r\n{}",
        "HTTP/1.1 200 OK\r\nNo colon\r\n\r\n",
        "HTTP/1.1 200 OK\r\nBad name: x\r\n\r\n",
        "HTTP/1.1 200 OK\n\n{}",
        "HTTP/1.1 20\r\n\r\n{}",
        "HTTP/1.1  200\r\n\r\n{}",
        "HTTP/1.1 200\t\r\n\r\n{}",
        "HTTP/1.1 100 Continue\r\n\r\ngarbage\r\n\r\n"}) {
    const Outcome outcome = answeredWith(bytes);
    EXPECT_EQ(outcome.body(), "") << bytes;
    EXPECT_FALSE(outcome.isHTTP()) << bytes;
  }
}

TEST_F(AFailingHTTPExchange, RefusesHeadersOfMoreThan64KiB) {
  const auto withHeader = [](std::size_t length) {
    std::string head = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n";
    head += "X: " + std::string(length - head.size() - 7, 'x') + "\r\n\r\n";
    return head + "{}";
  };
  EXPECT_EQ(answeredWith(withHeader(64 * 1024)).body(), "{}");
  EXPECT_EQ(answeredWith(withHeader(64 * 1024 + 1)).failure, Failure::dataLengthExceedsMaximum);
  EXPECT_EQ(answeredWith(withHeader(1024 * 1024)).failure, Failure::dataLengthExceedsMaximum);
}

TEST_F(AFailingHTTPExchange, RefusesABodyOfMoreThanOneMiB) {
  const std::string most(1024 * 1024, 'x');
  EXPECT_EQ(answeredWith(httpAnswer(200, most)).body(), most);
  EXPECT_EQ(answeredWith("HTTP/1.1 200 OK\r\n\r\n" + most).body(), most);
  EXPECT_EQ(answeredWith(httpAnswer(200, most + "x")).failure, Failure::dataLengthExceedsMaximum);
  EXPECT_EQ(answeredWith("HTTP/1.1 200 OK\r\n\r\n" + most + "x").failure,
            Failure::dataLengthExceedsMaximum);
}

TEST_F(AFailingHTTPExchange, RefusesAnEndlessAnswer) {
  const auto endlessly = [this](const std::string& head, const std::string& repeated) {
    return with([&](ServerConnection& connection) {
      connection.readRequest();
      connection.write(head);
      while (!connection.idle(0ms)) connection.write(repeated);
    });
  };
  const std::string block(8192, 'x');
  const std::string chunked = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n";
  EXPECT_EQ(endlessly("HTTP/1.1 200 OK\r\n\r\n", block).failure, Failure::dataLengthExceedsMaximum);
  EXPECT_EQ(endlessly(chunked, "2000\r\n" + block + "\r\n").failure,
            Failure::dataLengthExceedsMaximum);
  EXPECT_EQ(endlessly("HTTP/1.1 200 OK\r\nX: ", block).failure, Failure::dataLengthExceedsMaximum);
  EXPECT_EQ(endlessly("HTTP/1.1 200 OK\r\n", "A: b\r\n").failure,
            Failure::dataLengthExceedsMaximum);
  EXPECT_EQ(endlessly("HTTP/1.1 200 ", block).failure, Failure::dataLengthExceedsMaximum);
  EXPECT_EQ(endlessly(chunked + "2;", block).failure, Failure::dataLengthExceedsMaximum);
  EXPECT_EQ(endlessly(chunked + "0\r\n", "A: b\r\n").failure, Failure::dataLengthExceedsMaximum);
  EXPECT_EQ(endlessly("", "HTTP/1.1 100 Continue\r\n\r\n").failure, Failure::badServerResponse);
}

}  // namespace
}  // namespace kivo::testkit
