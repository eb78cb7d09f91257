#include "server/commands/serve_command.h"

#include <memory>
#include <optional>
#include <string>

#include "ledger/http_server.h"
#include "ledger/listening_socket.h"
#include "platform/linux/terminal/command_output.h"
#include "server/commands/chosen_shelf.h"
#include "server/directory.h"
#include "server/public_address.h"
#include "server/server_endpoint.h"

namespace kivo::server {

using ledger::HttpServer;
using ledger::ListeningSocket;
using linux_platform::GivenParameters;

namespace {

void serve(const GivenParameters& given) {
  const std::string publicUrl = PublicAddress::from(given.at("--public-url"));
  const std::unique_ptr<Shelf> shelf = openedShelf(given);
  Directory(*shelf).keepPublicUrl(publicUrl);
  const ListeningSocket socket = ListeningSocket::onAddress(given.at("--listen"));
  ServerEndpoint endpoint(*shelf);
  HttpServer server([&endpoint](const auto& requests) { return endpoint.answers(requests); },
                    [&endpoint](const auto& request) { return endpoint.pauseFor(request); });
  linux_platform::print("Listening on port " + std::to_string(socket.port()) + "\n");
  server.run(socket, std::nullopt);
}

}  // namespace

linux_platform::Command serveCommand() {
  using ParameterKind = linux_platform::CommandParameter::Kind;
  return {"serve",
          "Answer the requests of people's devices",
          {{"--listen", "Address and port, as 127.0.0.1:8787", ParameterKind::required},
           {"--public-url", "Where devices reach it, as https://kivo.example.org",
            ParameterKind::required},
           databaseOption()},
          serve,
          "Service"};
}

}  // namespace kivo::server
