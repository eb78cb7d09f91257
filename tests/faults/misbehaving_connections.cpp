#include "misbehaving_server.h"
#include "server_scripts.h"

namespace kivo::testkit {

std::vector<Misbehaviour> brokenConnections() {
  const std::string body = trackedBody();
  const std::string good = httpAnswer(200, body);
  const std::string head = withLength(body.size(), "");
  // A TLS record of a fatal alert, in plain text as before a handshake.
  const std::string alert("\x15\x03\x03\x00\x02\x02\x28", 7);
  const auto rudely = [](const std::string& bytes) -> Script {
    return [=](ServerConnection& connection) {
      connection.readRequest();
      connection.write(bytes);
      connection.closeWithoutNotify();
    };
  };
  const auto alerting = [](const std::string& bytes) -> Script {
    return [=](ServerConnection& connection) {
      connection.readRequest();
      connection.write(bytes);
      connection.sendFatalAlert();
      connection.idle(300ms);
    };
  };
  return {
      {"a close at once", [](ServerConnection&) {}, Ending::savedOffline, lost},
      {"a close after the request", answering(""), Ending::savedOffline, lost},
      {"a close in the status line", answering(good.substr(0, 9)), Ending::savedOffline, lost},
      {"a close in the headers", answering(good.substr(0, 40)), Ending::savedOffline, lost},
      {"a close after the headers", answering(head), Ending::savedOffline, lost},
      {"a close in the body", answering(good.substr(0, good.size() - 1)), Ending::savedOffline,
       lost},
      {"a close after interim answers", answering("HTTP/1.1 100 Continue\r\n\r\n"),
       Ending::savedOffline, lost},
      {"a reset at once", [](ServerConnection& connection) { connection.reset(); },
       Ending::savedOffline, "URLError "},
      {"a reset before the request is read",
       [](ServerConnection& connection) {
         connection.idle(300ms);
         connection.reset();
       },
       Ending::savedOffline, lost},
      {"a reset after the request", resetAfter(""), Ending::savedOffline, lost},
      {"a reset in the status line", resetAfter(good.substr(0, 9)), Ending::savedOffline, lost},
      {"a reset in the headers", resetAfter(good.substr(0, 40)), Ending::savedOffline, lost},
      {"a reset after the headers", resetAfter(head), Ending::savedOffline, lost},
      {"a reset in the body", resetAfter(good.substr(0, good.size() - 1)), Ending::savedOffline,
       lost},
      {"a reset in a chunk", resetAfter(chunkedHead + "ff\r\n" + body), Ending::savedOffline, lost},
      {"a reset together with the answer", resetAfter(good, 0ms), Ending::trackedOrSavedOffline},
      {"a reset after the answer", resetAfter(good), Ending::tracked},

      {"plain text where TLS was asked for",
       [good](ServerConnection& connection) { connection.write(good); }, Ending::savedOffline,
       insecure, Transport::plainWhereTlsWasAskedFor},
      {"an alert for the first greeting",
       [alert](ServerConnection& connection) { connection.write(alert); }, Ending::savedOffline,
       insecure, Transport::plainWhereTlsWasAskedFor},
      {"a close of TLS without an answer", answering(""), Ending::savedOffline, lost,
       Transport::tls},
      {"a close of TLS in the body", answering(good.substr(0, good.size() - 1)),
       Ending::savedOffline, lost, Transport::tls},
      {"no good-bye of TLS where the close ends the answer",
       rudely("HTTP/1.1 200 OK\r\n\r\n" + body), Ending::savedOffline, lost, Transport::tls},
      {"no good-bye of TLS after a whole answer", rudely(good), Ending::tracked, "",
       Transport::tls},
      {"an alert after the request", alerting(""), Ending::savedOffline, lost, Transport::tls},
      {"an alert in the headers", alerting(good.substr(0, 40)), Ending::savedOffline, lost,
       Transport::tls},
      {"an alert in the body", alerting(good.substr(0, good.size() - 1)), Ending::savedOffline,
       lost, Transport::tls},
      {"an alert after the answer", alerting(good), Ending::tracked, "", Transport::tls},
      {"a reset of TLS in the body", resetAfter(good.substr(0, good.size() - 1)),
       Ending::savedOffline, lost, Transport::tls},
  };
}

std::vector<Misbehaviour> slowServers() {
  const std::string body = trackedBody();
  const std::string good = httpAnswer(200, body);
  const std::string shortBody = R"({"saved":false})";
  const Script idle = [](ServerConnection& connection) { connection.idle(); };
  return {
      {"idle after the accept", idle, Ending::savedOffline, timedOut},
      {"idle after the request", silentAfter(""), Ending::savedOffline, timedOut},
      {"idle in the status line", silentAfter(good.substr(0, 9)), Ending::savedOffline, timedOut},
      {"idle in the headers", silentAfter(good.substr(0, 40)), Ending::savedOffline, timedOut},
      {"idle in the body", silentAfter(good.substr(0, good.size() - 1)), Ending::savedOffline,
       timedOut},
      {"idle in a chunk", silentAfter(chunkedHead + "ff\r\n" + body), Ending::savedOffline,
       timedOut},
      {"idle before the last chunk", silentAfter(chunkedHead + chunk(body)), Ending::savedOffline,
       timedOut},
      {"idle after interim answers", silentAfter("HTTP/1.1 100 Continue\r\n\r\n"),
       Ending::savedOffline, timedOut},
      {"idle with a length too long", silentAfter(withLength(body.size() + 1, body)),
       Ending::savedOffline, timedOut},
      {"idle though the answer without a length is there",
       silentAfter("HTTP/1.1 200 OK\r\n\r\n" + body), Ending::savedOffline, timedOut},
      {"a status line of a byte a second", dripping("", good), Ending::savedOffline, timedOut},
      {"headers of a byte a second", dripping("HTTP/1.1 200 OK\r\n", good.substr(17)),
       Ending::savedOffline, timedOut},
      {"a body of a byte a second", dripping(withLength(body.size(), ""), body),
       Ending::savedOffline, timedOut},
      {"chunks of a byte a second", dripping(chunkedHead, chunk(body)), Ending::savedOffline,
       timedOut},
      {"an interim answer a second",
       [](ServerConnection& connection) {
         connection.readRequest();
         while (!connection.idle(1s)) connection.write("HTTP/1.1 100 Continue\r\n\r\n");
       },
       Ending::savedOffline, timedOut},
      {"a handshake that is never answered",
       [](ServerConnection& connection) { connection.idle(); }, Ending::savedOffline, timedOut,
       Transport::plainWhereTlsWasAskedFor},
      {"a handshake of a byte a second",
       [](ServerConnection& connection) {
         connection.drip(
             std::string("\x16\x03\x03\x00\x50\x02\x00\x00\x4c\x03\x03", 11) + std::string(69, 'x'),
             1s);
       },
       Ending::savedOffline, timedOut, Transport::plainWhereTlsWasAskedFor},
      {"idle behind TLS", silentAfter(""), Ending::savedOffline, timedOut, Transport::tls},
      {"idle behind TLS in the body", silentAfter(good.substr(0, good.size() - 1)),
       Ending::savedOffline, timedOut, Transport::tls},

      {"a good answer whose last ten bytes take a second each",
       dripping(good.substr(0, good.size() - 10), good.substr(good.size() - 10)), Ending::tracked},
      {"a good answer that is there after 13 s",
       [good](ServerConnection& connection) {
         connection.readRequest();
         connection.idle(13s);
         connection.write(good);
       },
       Ending::tracked},
      {"a good answer that never closes", silentAfter(good), Ending::tracked},
      {"a good answer that never closes, by TLS", silentAfter(good), Ending::tracked, "",
       Transport::tls},
      {"a refusal of a byte a second",
       dripping("HTTP/1.1 500 X\r\nContent-Length: 10\r\n\r\n", "0123456789"), Ending::savedOffline,
       refusedStatus},
  };
}

}  // namespace kivo::testkit
