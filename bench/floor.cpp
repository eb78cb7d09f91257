// The lower bound of a saved run: its connection, request, fsyncs and D-Bus calls, with the same
// bytes, and nothing else. No store, no JSON, no locale, no coroutine.
//   kivo_bench_floor PORT FILE FSYNCS      posts standard input and prints the response's body
// Appends to FILE before each fsync. The exit status is 1 when a step fails.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <arpa/inet.h>
#include <dbus/dbus.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr int waitingMilliseconds = 1000;

void require(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "kivo_bench_floor: %s\n", what);
  std::exit(1);
}

std::string readAll(int file) {
  std::string all;
  std::array<char, 4096> piece{};
  for (ssize_t size = 0; (size = read(file, piece.data(), piece.size())) > 0;) {
    all.append(piece.data(), static_cast<std::size_t>(size));
  }
  return all;
}

// Posts `body` to the server on loopback and returns the whole response.
std::string post(int port, const std::string& body) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const int connection = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto* const peer = static_cast<const sockaddr*>(static_cast<const void*>(&address));
  require(connect(connection, peer, sizeof address) == 0, "the server takes no connection");
  const std::string request =
      "POST /functions/v1/sms-extraction HTTP/1.1\r\nHost: 127.0.0.1\r\n"
      "Content-Type: application/json\r\nConnection: close\r\nContent-Length: " +
      std::to_string(body.size()) + "\r\n\r\n" + body;
  require(write(connection, request.data(), request.size()) == static_cast<ssize_t>(request.size()),
          "the request cannot be sent");
  std::string answer = readAll(connection);
  close(connection);
  require(answer.starts_with("HTTP/1.1 200"), "the answer is not 200");
  return answer.substr(answer.find("\r\n\r\n") + 4);
}

void commit(const char* path, int fsyncs) {
  const int file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  const std::array<char, 4096> page{};
  for (int number = 0; number < fsyncs; ++number) {
    require(write(file, page.data(), page.size()) == static_cast<ssize_t>(page.size()) &&
                fdatasync(file) == 0,
            "the file cannot be written");
  }
  close(file);
}

DBusMessage* centerCall(const char* member) {
  return dbus_message_new_method_call("app.kivo.NotificationCenter", "/app/kivo/NotificationCenter",
                                      "app.kivo.NotificationCenter1", member);
}

void addText(DBusMessageIter& entries, const char* key, const char* text) {
  DBusMessageIter entry;
  DBusMessageIter variant;
  dbus_message_iter_open_container(&entries, DBUS_TYPE_DICT_ENTRY, nullptr, &entry);
  dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &key);
  dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, "s", &variant);
  dbus_message_iter_append_basic(&variant, DBUS_TYPE_STRING, &text);
  dbus_message_iter_close_container(&entry, &variant);
  dbus_message_iter_close_container(&entries, &entry);
}

void answered(DBusConnection* bus, DBusMessage* call) {
  DBusMessage* const reply =
      dbus_connection_send_with_reply_and_block(bus, call, waitingMilliseconds, nullptr);
  require(reply != nullptr, "the notification center does not answer");
  dbus_message_unref(reply);
  dbus_message_unref(call);
}

// Reads the permission, posts a notification and reloads the widgets, like a saved run.
void notify(const std::string& identifier) {
  const char* bundle = "app.kivo.expenses.intents";
  DBusConnection* const bus = dbus_bus_get_private(DBUS_BUS_SESSION, nullptr);
  require(bus != nullptr, "there is no session bus");
  DBusMessage* const reload = dbus_message_new_signal(
      "/app/kivo/WidgetCenter", "app.kivo.WidgetCenter1", "ReloadAllTimelines");
  dbus_connection_send(bus, reload, nullptr);
  dbus_message_unref(reload);

  DBusMessage* const status = centerCall("AuthorizationStatus");
  dbus_message_append_args(status, DBUS_TYPE_STRING, &bundle, DBUS_TYPE_INVALID);
  answered(bus, status);

  DBusMessage* const add = centerCall("Add");
  const char* const id = identifier.c_str();
  const double interval = 1;
  const dbus_bool_t repeats = 0;
  DBusMessageIter arguments;
  DBusMessageIter content;
  dbus_message_iter_init_append(add, &arguments);
  dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &bundle);
  dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &id);
  dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, "{sv}", &content);
  addText(content, "title", "Expense Tracked");
  addText(content, "body", "EGP 150.00 at Carrefour (Groceries)");
  dbus_message_iter_close_container(&arguments, &content);
  dbus_message_iter_append_basic(&arguments, DBUS_TYPE_DOUBLE, &interval);
  dbus_message_iter_append_basic(&arguments, DBUS_TYPE_BOOLEAN, &repeats);
  answered(bus, add);
}

}  // namespace

int main(int argc, char** argv) {
  require(argc == 4, "usage: kivo_bench_floor PORT FILE FSYNCS");
  const std::string answer = post(std::atoi(argv[1]), readAll(STDIN_FILENO));
  commit(argv[2], std::atoi(argv[3]));
  notify("floor-" + std::to_string(getpid()));
  std::fwrite(answer.data(), 1, answer.size(), stdout);
  return 0;
}
