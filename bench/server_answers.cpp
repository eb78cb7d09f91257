// Measures the answers of kivo-server on PostgreSQL against the bare statements of one answer,
// which pgbench runs: those that the server was seen to send. Both wait for the disk at each
// commit.
//   kivo_server_answers [ANSWERS]     measures so many answers each time (default 600)
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <exception>
#include <fstream>
#include <memory>
#include <regex>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <nlohmann/json.hpp>

#include "bench/booked_message.h"
#include "book_postgresql/postgres_connection.h"
#include "platform/linux/process/child_process.h"
#include "postgresql/private_postgres.h"
#include "testkit/loopback_socket.h"
#include "testkit/private_folders.h"
#include "testkit/private_phone.h"

namespace kivo::bench {
namespace {

using book_postgresql::PostgresConnection;
using linux_platform::ChildProcess;
using linux_platform::ProgramCall;
using testkit::PrivatePostgres;

constexpr int answersUnlessTold = 400;
constexpr int rounds = 3;
constexpr int people = 16;
// What differs from message to message: with one sum or day, each would be compared with all.
constexpr const char* keyInLog = "'KEY-IN-THE-LOG'";
constexpr const char* sumInLog = "'9876543'";
constexpr const char* dayInLog = "'2026-11-21'";
constexpr int days = 600;

std::string dayOf(int number) {
  const std::chrono::sys_days day =
      std::chrono::sys_days(std::chrono::year(2025) / 1 / 1) + std::chrono::days(number % days);
  const std::chrono::year_month_day parts(day);
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(parts.year()),
                static_cast<unsigned>(parts.month()), static_cast<unsigned>(parts.day()));
  return text.data();
}

// A household whose book is in a cluster of its own, and its server.
class Household {
 public:
  Household() {
    PostgresConnection settings(cluster_.url());
    settings.run("ALTER SYSTEM SET logging_collector = on");
    settings.run("ALTER SYSTEM SET log_destination = 'jsonlog'");
    cluster_.killAndRestart();
    called({"book", "add", "Family", "--currency", "EGP"});
    server_ = std::make_unique<ChildProcess>(
        call({"serve", "--listen", "127.0.0.1:" + std::to_string(port_), "--public-url", base()}));
    const bool listens = testkit::eventually([&] { return !server_->outputSoFar().empty(); },
                                             std::chrono::seconds(30));
    if (!listens) throw std::runtime_error("kivo-server does not listen");
    for (int number = 0; number < people; ++number) {
      const std::string name = "Person" + std::to_string(number);
      called({"person", "add", name, "--book", "Family"});
      const std::string shown = called({"device", "add", name, "--name", "phone"});
      const std::size_t begin = shown.find("/p/");
      paths_.push_back(shown.substr(begin, shown.find_first_of(" \n", begin) - begin) +
                       "/functions/v1/sms-extraction");
    }
  }

  [[nodiscard]] const PrivatePostgres& cluster() const { return cluster_; }

  // Posts a message of the person `number`, counted around.
  void post(int number, const std::string& key, const std::string& sum) const {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port_);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int person = number % people;
    const bool booked = isBooked(reinterpret_cast<const sockaddr*>(&address), sizeof address,
                                 {.user = "Person" + std::to_string(person),
                                  .path = paths_[static_cast<std::size_t>(person)],
                                  .key = key,
                                  .sum = sum,
                                  .day = key == "KEY-IN-THE-LOG" ? "2026-11-21" : dayOf(number)});
    if (!booked) throw std::runtime_error("a message was not booked");
  }

 private:
  [[nodiscard]] std::string base() const { return "http://127.0.0.1:" + std::to_string(port_); }
  [[nodiscard]] ProgramCall call(std::vector<std::string> arguments) const {
    return {.program = linux_platform::programFolder() / "kivo-server",
            .arguments = std::move(arguments),
            .environment = {{"KIVO_DATABASE", cluster_.url()}}};
  }
  std::string called(std::vector<std::string> arguments) const {
    const auto result = linux_platform::runProgram(call(std::move(arguments)));
    if (result.status != 0) throw std::runtime_error(result.errors);
    return result.output;
  }

  testkit::PrivateFolders folders_;
  PrivatePostgres cluster_{PrivatePostgres::Commits::synced};
  std::uint16_t port_ = testkit::RefusedPort().port();
  std::unique_ptr<ChildProcess> server_;
  std::vector<std::string> paths_;
};

// A script of pgbench, and the values of its variables.
struct Script {
  std::string text;
  std::vector<std::string> definitions = {};
};

// Returns a parameter of the script in the place of one that was logged. Digits are a number, since
// the message names no account, and NULL is where one is missing.
std::string parameterFor(Script& script, const std::string& logged) {
  if (logged == keyInLog) return "('K' || :key)";
  if (logged == sumInLog) return ":sum::BIGINT";
  if (logged == dayInLog) return "to_char(DATE '2025-01-01' + :day::INTEGER, 'YYYY-MM-DD')";
  if (logged == "NULL") return "NULL::BIGINT";
  if (logged == "''") return "repeat('x', :none::INTEGER)";  // a variable of pgbench is not empty
  const bool isNumber = logged.find_first_not_of("'0123456789") == std::string::npos;
  const std::string name = "v" + std::to_string(script.definitions.size());
  script.definitions.push_back("--define=" + name + "=" + logged.substr(1, logged.size() - 2));
  return ":" + name + (isNumber ? "::BIGINT" : "::TEXT");
}

void append(Script& script, std::string statement, const std::string& detail) {
  static const std::regex value(R"(\$(\d+) = ('(?:[^']|'')*'|NULL))");
  std::vector<std::string> values;
  for (std::sregex_iterator found(detail.begin(), detail.end(), value), end; found != end;
       ++found) {
    values.push_back(parameterFor(script, (*found)[2]));
  }
  for (std::size_t number = values.size(); number > 0; --number) {
    const std::regex parameter("\\$" + std::to_string(number) + "(?![0-9])");
    statement = std::regex_replace(statement, parameter, values[number - 1]);
  }
  std::replace(statement.begin(), statement.end(), '\n', ' ');
  script.text += statement + ";\n";
}

// The statements of one answer.
Script bareStatements(const Household& household) {
  PostgresConnection settings(household.cluster().url());
  const auto keepLog = [&](const char* limit) {
    settings.run(std::string("ALTER SYSTEM SET log_min_duration_statement = ") + limit);
    settings.run("SELECT pg_reload_conf()");
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
  };
  keepLog("0");
  household.post(0, "KEY-IN-THE-LOG", "98765.43");
  keepLog("-1");
  const auto log = settings.run("SELECT pg_read_file(pg_current_logfile('jsonlog'))", {});
  std::istringstream lines{std::string(book_postgresql::valueOf(log, 0, 0))};
  Script script{"\\set key random(1, 1000000000000000)\n\\set sum random(1, 1000000)\n"};
  script.text += "\\set day random(0, " + std::to_string(days) + ")\n\\set none 0\n";
  static const std::regex executed(R"(duration: [^ ]+ ms +(?:execute [^:]*|statement): ([^]*))");
  for (std::string line; std::getline(lines, line);) {
    const auto entry = nlohmann::json::parse(line);
    const std::string message = entry.value("message", "");
    std::smatch found;
    const bool isOwn = message.find("pg_") != std::string::npos ||
                       message.find("ALTER SYSTEM") != std::string::npos;
    if (isOwn || !std::regex_match(message, found, executed)) continue;
    append(script, found[1], entry.value("detail", ""));
  }
  return script;
}

// Answers or transactions a second.
double answered(const Household& household, int connections, int answers) {
  static int series = 0;
  ++series;
  std::atomic<int> next = 0;
  const auto begin = std::chrono::steady_clock::now();
  std::vector<std::thread> clients;
  for (int client = 0; client < connections; ++client) {
    clients.emplace_back([&] {
      for (int number = next++; number < answers; number = next++) {
        household.post(number, std::to_string(series) + "-" + std::to_string(number),
                       std::to_string(series * answers + number));
      }
    });
  }
  for (std::thread& client : clients) client.join();
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  // The server lets a thousand requests through at once, and 500 a second after that.
  std::this_thread::sleep_for(std::chrono::milliseconds(2 * answers));
  return answers / taken.count();
}

// For so long that the plans of a connection's first transactions do not count.
double bare(const Household& household, const Script& script, int connections, int answers) {
  const testkit::TemporaryFolder folder;
  const std::string file = folder.path() / "answer.sql";
  std::ofstream(file) << script.text;
  std::vector<std::string> arguments = {"--no-vacuum", "--protocol=prepared", "--file=" + file,
                                        "--client=" + std::to_string(connections),
                                        "--time=" + std::to_string(answers / 50 + 1)};
  arguments.insert(arguments.end(), script.definitions.begin(), script.definitions.end());
  const std::string shown = household.cluster().run("pgbench", std::move(arguments));
  const std::string figure = "tps = ";
  return std::stod(shown.substr(shown.find(figure) + figure.size()));
}

double median(std::vector<double> figures) {
  std::sort(figures.begin(), figures.end());
  return figures[figures.size() / 2];
}

void measure(int answers) {
  const Household household;
  for (int number = 0; number < 100; ++number)
    household.post(number, "warm-" + std::to_string(number), std::to_string(number + 1) + ".50");
  // What the server sets once on a connection.
  PostgresConnection settings(household.cluster().url());
  settings.run("ALTER ROLE kivo SET kivo.book = '1'");
  settings.run("ALTER ROLE kivo SET search_path = kivo_book, kivo");
  settings.run("ALTER ROLE kivo SET plan_cache_mode = force_generic_plan");
  const Script script = bareStatements(household);
  std::printf("%ld statements for an answer\n\n%11s %12s %12s %14s\n",
              std::count(script.text.begin(), script.text.end(), '\n') - 4, "connections", "bare/s",
              "answers/s", "times the bare");
  for (const int connections : {1, 16}) {
    std::vector<double> without;
    std::vector<double> with;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
      without.push_back(bare(household, script, connections, answers));
      with.push_back(answered(household, connections, answers));
      ratios.push_back(without.back() / with.back());
    }
    std::printf("%11d %12.0f %12.0f %14.2f\n", connections, median(without), median(with),
                median(ratios));
  }
}

}  // namespace
}  // namespace kivo::bench

int main(int argc, char** argv) {
  try {
    kivo::bench::measure(argc > 1 ? std::stoi(argv[1]) : kivo::bench::answersUnlessTold);
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
  }
}
