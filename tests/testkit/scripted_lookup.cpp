#include "testkit/scripted_lookup.h"

#include <map>
#include <mutex>
#include <optional>
#include <utility>

#include <dlfcn.h>
#include <netdb.h>
#include <unistd.h>

namespace kivo::testkit {
namespace {

struct Scripts {
  std::mutex mutex;
  /// Without addresses the lookup hangs.
  std::map<std::string, std::optional<std::vector<std::string>>> hosts;
};

// Never destroyed: a lookup may still hang when the process ends.
Scripts& scripts() {
  static auto* const all = new Scripts;
  return *all;
}

std::optional<std::vector<std::string>> scripted(const std::string& host, bool& known) {
  const std::lock_guard lock(scripts().mutex);
  const auto script = scripts().hosts.find(host);
  known = script != scripts().hosts.end();
  return known ? script->second : std::nullopt;
}

}  // namespace

void scriptLookup(const std::string& host, std::vector<std::string> addresses) {
  const std::lock_guard lock(scripts().mutex);
  scripts().hosts[host] = std::move(addresses);
}

void scriptHangingLookup(const std::string& host) {
  const std::lock_guard lock(scripts().mutex);
  scripts().hosts[host] = std::nullopt;
}

}  // namespace kivo::testkit

extern "C" int getaddrinfo(const char* node, const char* service, const addrinfo* hints,
                           addrinfo** result) {
  using Lookup = int (*)(const char*, const char*, const addrinfo*, addrinfo**);
  static const auto real = reinterpret_cast<Lookup>(dlsym(RTLD_NEXT, "getaddrinfo"));

  bool known = false;
  const auto addresses = kivo::testkit::scripted(node != nullptr ? node : "", known);
  if (!known) return real(node, service, hints, result);
  while (!addresses) pause();

  addrinfo* first = nullptr;
  addrinfo** last = &first;
  for (const std::string& address : *addresses) {
    const int error = real(address.c_str(), service, hints, last);
    if (error != 0) return error;
    while (*last != nullptr) last = &(*last)->ai_next;
  }
  if (first == nullptr) return EAI_NONAME;
  *result = first;
  return 0;
}
