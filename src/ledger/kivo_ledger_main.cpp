// The program kivo-ledger: the backend on one's own machine.
#include <chrono>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ledger/commands/all_commands.h"
#include "ledger/extraction_endpoint.h"
#include "ledger/review_notifier.h"
#include "platform/linux/foundation/device_folders.h"
#include "platform/linux/process/process_start.h"
#include "platform/linux/terminal/command_failure.h"
#include "platform/linux/terminal/command_line.h"
#include "recording/book_currency.h"
#include "recording/template_file.h"

namespace kivo::ledger {

using book::Book;
using book::LedgerEntry;

namespace {

using linux_platform::CommandFailure;
using linux_platform::GivenParameters;

// For a server that the service manager started: it starts it again at the next connection.
constexpr std::chrono::seconds longestIdleTime(60);

ListeningSocket ownSocket(const GivenParameters& given) {
  if (const auto path = given.find("--socket"); path != given.end()) {
    return ListeningSocket::create(path->second);
  }
  const auto path = linux_platform::localBackendSocket();
  if (!path) throw CommandFailure("XDG_RUNTIME_DIR is not set; name a socket by --socket");
  return ListeningSocket::create(*path);
}

void serveOn(const ListeningSocket& socket, std::optional<std::chrono::milliseconds> idleLimit) {
  ReviewNotifier notifier;
  ExtractionEndpoint endpoint(
      recording::bookCurrency, [&notifier](const LedgerEntry& entry) { notifier.post(entry); },
      recording::TemplateFile::reader(),
      [&notifier](const BudgetNotice& notice) { notifier.post(notice); });
  HttpServer server([&endpoint](const std::vector<HttpServer::Request>& requests) {
    return endpoint.answers(requests);
  });
  server.run(socket, idleLimit);
}

void serve(const GivenParameters& given) {
  if (const auto handedOver = ListeningSocket::handedOver()) {
    serveOn(*handedOver, longestIdleTime);
  } else {
    serveOn(ownSocket(given), std::nullopt);
  }
}

linux_platform::CommandProgram program() {
  linux_platform::CommandProgram made{.name = "kivo-ledger",
                                      .purpose = "Keeps the book of your payments on this machine.",
                                      .version = KIVO_VERSION,
                                      .commands = bookCommands(KIVO_VERSION)};
  made.commands.push_back(
      {"serve",
       "Answer the extension's requests on a UNIX socket",
       {{"--socket", "The socket's path; kivo/ledger.sock in XDG_RUNTIME_DIR when not given",
         linux_platform::CommandParameter::Kind::optional}},
       serve,
       "Service"});
  return made;
}

}  // namespace
}  // namespace kivo::ledger

int main(int argc, char** argv) {
  kivo::linux_platform::startProcess();
  return kivo::linux_platform::runCommand(kivo::ledger::program(), argc, argv);
}
