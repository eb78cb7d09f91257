#include "overview/balance_chain.h"

#include <algorithm>
#include <deque>
#include <iterator>
#include <map>
#include <set>

namespace kivo::overview {
namespace {

using Order = std::vector<std::size_t>;

// The links of one day that have no place yet.
struct Pool {
  money::Day date;
  // Those with a balance, by the balance before them; of one balance, in the order of arrival.
  std::multimap<std::int64_t, std::size_t> byBefore = {};
  // Their indices and the balances after them.
  std::set<std::size_t> indices = {};
  std::multiset<std::int64_t> afters = {};
};

// A damaged file may hold sums that exceed 64 bits together.
std::int64_t plus(std::int64_t one, std::int64_t other) {
  std::int64_t sum = 0;
  return __builtin_add_overflow(one, other, &sum) ? one : sum;
}

std::int64_t beforeOf(const Link& link) { return plus(*link.balance, -link.moved); }

// Gives places to links, the next one always from the first day that has links left, or from the
// day after it.
class Chaining {
 public:
  explicit Chaining(const std::vector<Link>& links) : links_(links) {
    for (std::size_t index = 0; index < links.size(); ++index) {
      if (pools_.empty() || pools_.back().date != links[index].date) {
        pools_.push_back({.date = links[index].date});
      }
      if (!links[index].balance) {
        silent_.push_back(index);
        continue;
      }
      Pool& pool = pools_.back();
      pool.byBefore.emplace(beforeOf(links[index]), index);
      pool.indices.insert(index);
      pool.afters.insert(*links[index].balance);
    }
  }

  Order order() {
    while (true) {
      while (!pools_.empty() && pools_.front().indices.empty()) pools_.pop_front();
      if (pools_.empty()) break;
      takeSilentBefore(pools_.front().date.before(1));
      if (!takeFollowing()) takeNearest();
    }
    for (; !silent_.empty(); silent_.pop_front()) order_.push_back(silent_.front());
    return std::move(order_);
  }

 private:
  // At most so many links without a balance, or near one, are looked at for each place.
  static constexpr int mostTried = 16;

  // The second day, if it is the day after the first.
  Pool* adjacent() {
    if (pools_.size() < 2) return nullptr;
    return pools_[1].date.before(1) == pools_[0].date ? &pools_[1] : nullptr;
  }

  void takeSilent() {
    const std::size_t index = silent_.front();
    silent_.pop_front();
    order_.push_back(index);
    if (now_) now_ = plus(*now_, links_[index].booked);
  }

  void takeSilentBefore(const money::Day& date) {
    while (!silent_.empty() && links_[silent_.front()].date < date) takeSilent();
  }

  void take(Pool& pool, std::multimap<std::int64_t, std::size_t>::iterator found) {
    const std::size_t index = found->second;
    pool.byBefore.erase(found);
    pool.indices.erase(index);
    pool.afters.erase(pool.afters.find(*links_[index].balance));
    order_.push_back(index);
    now_ = links_[index].balance;
  }

  bool takeWithBefore(std::int64_t before) {
    for (Pool* const pool : {&pools_.front(), adjacent()}) {
      if (pool == nullptr) continue;
      const auto found = pool->byBefore.find(before);
      if (found == pool->byBefore.end()) continue;
      // the first in the order of arrival
      take(*pool, pool->byBefore.lower_bound(before));
      return true;
    }
    return false;
  }

  // The link that follows from the balance now, or from it and the next links without a balance.
  bool takeFollowing() {
    if (!now_) return false;
    if (takeWithBefore(*now_)) return true;
    std::int64_t sum = *now_;
    const money::Day latest = pools_.front().date;
    for (std::size_t count = 0; count < silent_.size() && count < mostTried; ++count) {
      const Link& link = links_[silent_[count]];
      if (latest < link.date.before(1)) break;
      sum = plus(sum, link.moved);
      if (!follows(sum)) continue;
      for (std::size_t taken = 0; taken <= count; ++taken) takeSilent();
      return takeWithBefore(sum);
    }
    return false;
  }

  bool follows(std::int64_t before) {
    Pool* const next = adjacent();
    return pools_.front().byBefore.contains(before) ||
           (next != nullptr && next->byBefore.contains(before));
  }

  // Whether no link that has no place yet leads to this one.
  bool begins(std::size_t index) {
    const std::int64_t before = beforeOf(links_[index]);
    std::size_t leading = pools_.front().afters.count(before);
    if (Pool* const next = adjacent()) leading += next->afters.count(before);
    return leading == (links_[index].balance == before ? 1U : 0U);
  }

  // Where nothing follows: the first link of a part of the chain, the one whose balance before it
  // is the nearest; without a balance now, the first that arrived.
  void takeNearest() {
    for (Pool* const pool : {&pools_.front(), adjacent()}) {
      if (pool == nullptr) continue;
      const auto found = now_ ? nearest(*pool, *now_) : firstIn(*pool);
      if (found == pool->byBefore.end()) continue;
      takeSilentUntil(found->second);
      return take(*pool, found);
    }
    Pool& pool = pools_.front();
    take(pool, at(pool, *pool.indices.begin()));
  }

  void takeSilentUntil(std::size_t index) {
    while (!silent_.empty() && silent_.front() < index) takeSilent();
  }

  std::multimap<std::int64_t, std::size_t>::iterator at(Pool& pool, std::size_t index) {
    auto found = pool.byBefore.lower_bound(beforeOf(links_[index]));
    while (found->second != index) ++found;
    return found;
  }

  // Called until one is found: only the first link of all has no balance before it.
  std::multimap<std::int64_t, std::size_t>::iterator firstIn(Pool& pool) {
    for (const std::size_t index : pool.indices) {
      if (begins(index)) return at(pool, index);
    }
    return pool.byBefore.end();
  }

  std::multimap<std::int64_t, std::size_t>::iterator nearest(Pool& pool, std::int64_t now) {
    auto above = pool.byBefore.lower_bound(now);
    auto below = above;
    for (int tried = 0; tried < mostTried; ++tried) {
      const bool hasBelow = below != pool.byBefore.begin();
      const bool hasAbove = above != pool.byBefore.end();
      if (!hasBelow && !hasAbove) break;
      const bool takesBelow =
          hasBelow && (!hasAbove || now - std::prev(below)->first < above->first - now);
      const auto found = takesBelow ? --below : above++;
      if (begins(found->second)) return found;
    }
    return pool.byBefore.end();
  }

  const std::vector<Link>& links_;
  std::deque<Pool> pools_;
  std::deque<std::size_t> silent_;
  std::optional<std::int64_t> now_;
  Order order_;
};

BalanceChain chainIn(const std::vector<Link>& links, const Order& order) {
  BalanceChain chain;
  std::int64_t expected = 0;
  for (const std::size_t index : order) {
    const Link& link = links[index];
    expected = plus(expected, link.booked);
    if (!link.balance) continue;
    const std::int64_t missing = plus(expected, -*link.balance);
    if (chain.last && missing != 0) {
      const auto [from, to] = std::minmax(links[*chain.last].date, link.date);
      chain.gaps.push_back({.from = from, .to = to, .amount = missing});
    }
    expected = *link.balance;
    chain.last = index;
  }
  if (chain.last) chain.now = expected;
  return chain;
}

}  // namespace

BalanceChain balanceChain(const std::vector<Link>& links) {
  Order arrival(links.size());
  for (std::size_t index = 0; index < links.size(); ++index) arrival[index] = index;
  BalanceChain asArrived = chainIn(links, arrival);
  if (asArrived.gaps.empty()) return asArrived;
  BalanceChain chained = chainIn(links, Chaining(links).order());
  return chained.gaps.size() < asArrived.gaps.size() ? chained : asArrived;
}

}  // namespace kivo::overview
