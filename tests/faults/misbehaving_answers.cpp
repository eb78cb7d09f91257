#include "misbehaving_server.h"
#include "server_scripts.h"
#include "testkit/extension_program.h"

namespace kivo::testkit {

std::string trackedBody() { return savedAnswer("expense"); }

std::vector<Misbehaviour> brokenAnswers() {
  const std::string body = trackedBody();
  const std::string good = httpAnswer(200, body);
  const std::string interim = "HTTP/1.1 100 Continue\r\n\r\n";
  const std::string block(8192, 'x');
  return {
      // Valid answers in unusual formats.
      {"HTTP/1.0", answering("HTTP/1.0 200 OK\r\n\r\n" + body), Ending::tracked},
      {"HTTP/1.0 with a length", answering("HTTP/1.0" + good.substr(8)), Ending::tracked},
      {"no length, ended by the close", answering("HTTP/1.1 200 OK\r\n\r\n" + body),
       Ending::tracked},
      {"chunks of a byte each, extensions and trailers", answering([&] {
         std::string bytes = chunkedHead;
         for (const char letter : body) bytes += std::string("1;a=b\r\n") + letter + "\r\n";
         return bytes + "0\r\nA: b\r\n\r\n";
       }()),
       Ending::tracked},
      {"16 interim answers", answering(repeated(interim, 16) + good), Ending::tracked},
      {"early hints with headers",
       answering("HTTP/1.1 103 Early Hints\r\nLink: </x>\r\nA: b\r\n\r\n" + good), Ending::tracked},
      {"no reason phrase", answering(withLength(body.size(), body).replace(12, 3, " ")),
       Ending::tracked},
      {"bytes after the answer", answering(good + "garbage"), Ending::tracked},
      {"two answers", answering(good + httpAnswer(500, "")), Ending::tracked},
      {"an answer without waiting for the request",
       [good](ServerConnection& connection) {
         connection.write(good);
         connection.readRequest();
       },
       Ending::tracked},
      {"declined by HTTP/1.0",
       answering("HTTP/1.0 200 OK\r\n\r\n"
                 R"({"saved":false,"reason":"declined"})"),
       Ending::declined},
      {"ignored after interim answers",
       answering(repeated(interim, 3) + httpAnswer(200, R"({"saved":false})")), Ending::ignored},

      // Wrong lengths and chunks.
      {"a length too short", answering(withLength(body.size() - 1, body)), Ending::savedOffline,
       undecodable},
      {"a length too long", answering(withLength(body.size() + 1, body)), Ending::savedOffline,
       lost},
      {"a length past 64 bits",
       answering("HTTP/1.1 200 OK\r\nContent-Length: 18446744073709551616\r\n\r\n" + body),
       Ending::savedOffline, noHTTP},
      {"a negative length", answering("HTTP/1.1 200 OK\r\nContent-Length: -1\r\n\r\n" + body),
       Ending::savedOffline, noHTTP},
      {"two lengths",
       answering("HTTP/1.1 200 OK\r\nContent-Length: 1\r\nContent-Length: 2\r\n\r\n" + body),
       Ending::savedOffline, noHTTP},
      {"a huge length", answering(withLength(std::size_t{1} << 40U, body)), Ending::savedOffline,
       tooLarge},
      {"no body", answering(withLength(0, "")), Ending::savedOffline, undecodable},
      {"a chunk shorter than it says", answering(chunkedHead + "ff\r\n" + body + "\r\n0\r\n\r\n"),
       Ending::savedOffline, lost},
      {"a chunk longer than it says", answering(chunkedHead + "2\r\n" + body + "\r\n0\r\n\r\n"),
       Ending::savedOffline, badAnswer},
      {"a chunk of no size", answering(chunkedHead + "zz\r\n" + body + "\r\n0\r\n\r\n"),
       Ending::savedOffline, badAnswer},
      {"a chunk of a size past 64 bits",
       answering(chunkedHead + "fffffffffffffffff\r\n" + body + "\r\n0\r\n\r\n"),
       Ending::savedOffline, badAnswer},
      {"no last chunk", answering(chunkedHead + chunk(body)), Ending::savedOffline, lost},

      // Endless answers.
      {"an endless status line", endless("HTTP/1.1 200 ", block), Ending::savedOffline, tooLarge},
      {"an endless header", endless("HTTP/1.1 200 OK\r\nA: ", block), Ending::savedOffline,
       tooLarge},
      {"endless headers", endless("HTTP/1.1 200 OK\r\n", "A: b\r\n"), Ending::savedOffline,
       tooLarge},
      {"an endless body", endless("HTTP/1.1 200 OK\r\n\r\n", block), Ending::savedOffline,
       tooLarge},
      {"endless chunks", endless(chunkedHead, chunk(block)), Ending::savedOffline, tooLarge},
      {"an endless chunk extension", endless(chunkedHead + "2;", block), Ending::savedOffline,
       tooLarge},
      {"endless trailers", endless(chunkedHead + "0\r\n", "A: b\r\n"), Ending::savedOffline,
       tooLarge},
      {"17 interim answers", answering(repeated(interim, 17) + good), Ending::savedOffline,
       badAnswer},
      {"a storm of interim answers", endless("", interim), Ending::savedOffline, badAnswer},

      // Not HTTP/1.
      {"the preface of HTTP/2", answering("PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n"), Ending::savedOffline,
       noHTTP},
      {"settings of HTTP/2",
       answering(std::string("\0\0\x06\4\0\0\0\0\0\0\3\0\0\0\x64\r\n\r\n", 19)),
       Ending::savedOffline, noHTTP},
      {"HTTP/2 in the status line", answering("HTTP/2 200\r\n\r\n" + body), Ending::savedOffline,
       noHTTP},
      {"HTTP/0.9", answering(body + "\r\n\r\n"), Ending::savedOffline, noHTTP},
      {"another protocol", answering("SSH-2.0-server\r\n\r\n"), Ending::savedOffline, noHTTP},
      {"TLS instead of plain text", answering("\x15\x03\x03\x01\x02\x02\x28\r\n\r\n"),
       Ending::savedOffline, noHTTP},
      {"a page of a captive portal", answering(httpAnswer(200, "<html>Log in</html>")),
       Ending::savedOffline, undecodable},
  };
}

std::vector<Misbehaviour> answersOfEachStatus(const std::string& elsewhere) {
  const std::string body = trackedBody();
  std::vector<Misbehaviour> all;
  for (const int status :
       {201, 202, 203, 204, 205, 206, 207, 226, 300, 301, 302, 303, 304, 305, 307, 308, 400, 401,
        403, 404, 407, 408, 413, 418, 425, 429, 451, 500, 501, 502, 503, 504, 511, 600, 999}) {
    std::string answer = "HTTP/1.1 " + std::to_string(status) + " X\r\n";
    if (status / 100 == 3) answer += "Location: " + elsewhere + "/functions/v1/sms-extraction\r\n";
    if (status == 401) answer += "WWW-Authenticate: Basic realm=x\r\n";
    if (status == 429 || status == 503) answer += "Retry-After: 1\r\n";
    answer += "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body;
    all.push_back({"status " + std::to_string(status), answering(answer), Ending::savedOffline,
                   refusedStatus});
  }
  all.push_back({"status 200 with a Location and a Refresh",
                 answering("HTTP/1.1 200 OK\r\nLocation: " + elsewhere +
                           "\r\nRefresh: 0; url=" + elsewhere + "\r\n\r\n" + body),
                 Ending::tracked});
  return all;
}

}  // namespace kivo::testkit
