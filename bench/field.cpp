#include "bench/field.h"

#include <fstream>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "platform/linux/process/child_process.h"
#include "platform/linux/process/descriptor.h"
#include "queue/pending_sms_queue.h"
#include "store/shared_store.h"
#include "testkit/queued_items.h"

namespace kivo::bench {

namespace fs = std::filesystem;
using testkit::ScopedVariable;

namespace {

constexpr const char* notAuthorized = "1";
constexpr const char* authorized = "2";

std::string message(int number) {
  return "Your card ending 1234 was charged EGP " + std::to_string(100 + number) + "." +
         std::to_string(10 + number % 90) + " at Carrefour, reference " +
         std::to_string(number * 7919);
}

std::string requestBody(int number) {
  return R"({"sms_text":")" + message(number) +
         R"(","user_id":"user-1","expense_date":"2026-01-31","idempotency_key":")" +
         std::to_string(10'000'000 + number) + "-0000-4000-8000-000000000000\"}";
}

std::vector<std::string> perform() {
  return {linux_platform::programFolder() / "kivo-intents", "perform", "ProcessSMSIntent",
          "--smsText", "-"};
}

// A program that was just linked is in the page cache in larger pieces than an installed one that
// was read from disk, and a piece counts as a whole when one of its bytes is used.
void forgetLinking(const fs::path& program) {
  const linux_platform::Descriptor file(open(program.c_str(), O_RDONLY | O_CLOEXEC));
  fdatasync(file.number());
  posix_fadvise(file.number(), 0, 0, POSIX_FADV_DONTNEED);
}

std::vector<std::string> curl(const std::string& url, std::vector<std::string> options = {}) {
  std::vector<std::string> command{
      "curl",          "--silent", "--show-error", "--header", "Content-Type: application/json",
      "--data-binary", "@-"};
  command.insert(command.end(), options.begin(), options.end());
  command.push_back(url + "/functions/v1/sms-extraction");
  return command;
}

}  // namespace

Field::Field() {
  fs::create_directories(folder_);
  for (const char* const program : {"kivo-intents", "kivo_bench_floor"}) {
    forgetLinking(linux_platform::programFolder() / program);
  }
  phone_.startCenter();
  forgetNotifications();
  trust();
  addCurl();
  addFloor();
  addScript();
  addSaved();
  addWithQueue();
}

void Field::forgetNotifications() {
  for (const char* const status : {notAuthorized, authorized}) {
    const std::string bundle(extensionBundle);
    if (phone_.callCenter("SetAuthorizationStatus", {bundle, status}).status != 0) {
      throw std::runtime_error("the notification center does not answer");
    }
  }
}

// Our server's authority alone, and together with all that this system trusts, both as a file and
// as a hashed directory.
void Field::trust() {
  const fs::path system = "/etc/ssl/certs";
  const fs::path systemBundle = system / "ca-certificates.crt";
  authority_.addTo(ownTrust_);
  authority_.addTo(systemTrust_);
  ownCertificate_ = fs::directory_iterator(ownTrust_)->path();
  for (const auto& entry : fs::directory_iterator(system)) {
    if (entry.path() == systemBundle) continue;
    fs::create_symlink(fs::canonical(entry.path()), systemTrust_ / entry.path().filename());
  }
  std::ofstream(bundle_) << std::ifstream(systemBundle).rdbuf()
                         << std::ifstream(ownCertificate_).rdbuf();
}

void Field::addCurl() {
  const auto add = [this](const std::string& name, std::vector<std::string> command) -> Contender& {
    return contenders_.emplace_back(Contender{.name = name,
                                              .command = std::move(command),
                                              .input = requestBody,
                                              .expected = R"({"saved":true)"});
  };
  add("curl, http", curl(http_.url()));
  add("curl, https, one CA", curl(https_.url(), {"--cacert", ownCertificate_}));
  add("curl, https, defaults", curl(https_.url())).environment = {{"CURL_CA_BUNDLE", bundle_}};
}

void Field::addFloor() {
  constexpr const char* fsyncsOfASavedRun = "2";
  const std::string url = http_.url();
  contenders_.push_back(
      {.name = "floor, http",
       .reference = "curl, http",
       .command = {linux_platform::programFolder() / "kivo_bench_floor",
                   url.substr(url.rfind(':') + 1), folder_ / "floor", fsyncsOfASavedRun},
       .input = requestBody,
       .expected = R"({"saved":true)"});
}

void Field::addScript() {
  const fs::path home = signIn("script", http_.url());
  contenders_.push_back({.name = "Python script, http",
                         .reference = "curl, http",
                         .command = {"/usr/bin/python3", KIVO_BENCH_SCRIPT},
                         .environment = {{"XDG_DATA_HOME", home}},
                         .input = message,
                         .expected = "Tracked EGP"});
}

void Field::addSaved() {
  const auto add = [this](const std::string& scheme, const std::string& url) -> Contender& {
    const std::string home = signIn(scheme, url);
    return contenders_.emplace_back(Contender{.name = "kivo-intents, " + scheme,
                                              .reference = "curl, " + scheme,
                                              .command = perform(),
                                              .environment = {{"XDG_DATA_HOME", home}},
                                              .input = message,
                                              .expected = "Tracked EGP"});
  };
  add("http", http_.url());
  add("https, one CA", https_.url()).environment["SSL_CERT_DIR"] = ownTrust_;
  add("https, defaults", https_.url()).environment["SSL_CERT_DIR"] = systemTrust_;
}

void Field::addWithQueue() {
  const fs::path offline = signIn("offline", "http://127.0.0.1:" + std::to_string(nobody_.port()));
  fillQueue(offline);
  contenders_.push_back({.name = "kivo-intents, offline beside 200",
                         .reference = "curl, http",
                         .command = perform(),
                         .environment = {{"XDG_DATA_HOME", offline}},
                         .input = message,
                         .expected = "ProcessSMSIntent error: "});

  const fs::path draining = signIn("draining", http_.url());
  contenders_.push_back({.name = "kivo-intents, http, draining 3 of 200",
                         .reference = "curl, http",
                         .command = perform(),
                         .environment = {{"XDG_DATA_HOME", draining}},
                         .input = message,
                         .expected = "Tracked EGP",
                         .prepare = [this, draining] { fillQueue(draining); }});
}

fs::path Field::signIn(const std::string& name, const std::string& url) {
  const fs::path home = folder_ / name;
  const ScopedVariable variable("XDG_DATA_HOME", home);
  SharedStore store = SharedStore::open(appGroup).value();
  store.writeText(StoreKeys::userId, "user-1");
  store.writeText(StoreKeys::supabaseUrl, url);
  store.writeText(StoreKeys::currency, "EGP");
  store.synchronize();
  return home;
}

void Field::fillQueue(const fs::path& dataHome) {
  const ScopedVariable variable("XDG_DATA_HOME", dataHome);
  SharedStore store = SharedStore::open(appGroup).value();
  std::vector<PendingSmsItem> items;
  for (std::size_t count = 0; count < PendingSmsQueue::capacity; ++count) {
    const int number = ++queued_;
    items.push_back(
        testkit::queuedItem(std::to_string(10'000'000 + number) + "-0000-4000-8000-000000000000"));
    items.back().smsText = message(number);
  }
  PendingSmsQueue::save(items, store);
}

}  // namespace kivo::bench
