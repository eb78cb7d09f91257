// Measures the reading of one bank message, in several scripts.
#include <array>
#include <string_view>

#include <benchmark/benchmark.h>

#include "recognition/reading.h"

namespace kivo::bench {
namespace {

constexpr auto messages = std::to_array<std::string_view>({
    "Your card ending 4821 was charged EGP 150.75 at Carrefour City on 21-11-2026. Available "
    "balance EGP 4,210.00. Ref 552210",
    "تم خصم 250.00 جنيه من بطاقتك المنتهية بـ 4821 لدى كارفور المعادي بتاريخ 21/11/2026. الرصيد "
    "المتاح 4,210.00 جنيه",
    "Покупка 1 250,00 руб в МАГАЗИН РИГА, карта *4821, 21.11.2026 14:05. Баланс 42 100,00 руб",
    "Vous avez dépensé 25,00 EUR chez CAFÉ LUNE le 21/11/2026 avec votre carte 4821. Solde 310,00 "
    "EUR",
});

void messageRead(benchmark::State& state) {
  const std::string_view message = messages.at(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) benchmark::DoNotOptimize(recognition::read(message, "EGP"));
}
BENCHMARK(messageRead)->DenseRange(0, messages.size() - 1);

}  // namespace
}  // namespace kivo::bench
