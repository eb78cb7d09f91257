// Measures an import of old messages, from the file to the book.
#include "recording/import.h"

#include <fstream>
#include <string>

#include <benchmark/benchmark.h>

#include "ledger/commands/import_messages.h"
#include "recognition/reading.h"
#include "testkit/private_folders.h"

namespace kivo::bench {
namespace {

using benchmark::State;
using ledger::ChosenSenders;
using ledger::ImportedFiles;
using recording::Import;

// A file of SMS Backup & Restore with `count` messages of a bank, some 50 a day, about payments at
// 200 shops.
std::string fileOf(const testkit::PrivateFolders& folders, std::int64_t count) {
  const auto path = folders.home() / "sms.xml";
  std::ofstream file(path);
  file << "<?xml version='1.0' encoding='UTF-8' standalone='yes' ?>\n<smses>\n";
  for (std::int64_t number = 0; number < count; ++number) {
    constexpr std::int64_t begin = 1'577'880'000'000;  // 2020-01-01T12:00:00Z
    constexpr std::int64_t apart = 1'700'000;
    file << R"(  <sms protocol="0" address="MyBank" date=")" << begin + number * apart
         << R"(" type="1" body="Your card ending 4821 was charged EGP )" << 10 + number % 9'000
         << ".50 at Payee " << number % 200 << ". Ref " << number
         << R"( &#55357;&#56832;" read="1" status="-1" />)"
         << "\n";
  }
  file << "</smses>\n";
  return path;
}

// The work of `kivo-ledger import FILE --sender MyBank`, without starting a process.
void ledgerImport(State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    const testkit::PrivateFolders folders;
    const ImportedFiles files({old_messages::MessageFile(fileOf(folders, state.range(0)))}, {});
    state.ResumeTiming();
    book::Book book = book::Book::open();
    Import importing(book, {.userId = "user",
                            .currency = "EGP",
                            .read = recognition::read,
                            .importKeys = ledger::importKeys,
                            .command = {.words = "import"}});
    ChosenSenders chosen({"MyBank"});
    files.read(chosen, "user", "Reading",
               [&](const recording::Message& message) { importing.expect(message); });
    files.read(chosen, "user", "Importing",
               [&](recording::Message message) { importing.add(std::move(message)); });
    importing.finish();
    if (importing.counts().booked != state.range(0)) state.SkipWithError("not all were booked");
  }
}
BENCHMARK(ledgerImport)->Arg(1'000)->Arg(100'000)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kivo::bench
