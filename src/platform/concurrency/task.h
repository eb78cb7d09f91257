// The platform's asynchronous operation. Says nothing about which threads run it.
#pragma once

#include <boost/asio/awaitable.hpp>

namespace kivo::platform {

/// An asynchronous operation that yields a `Value`. Awaited once, with co_await; it suspends
/// without blocking a thread and resumes on any worker of the executor that runs the task.
///
/// A task that was cancelled keeps running: cancelling ends the network exchange it waits for,
/// nothing else. Arguments of a coroutine are passed by value, since it may outlive its caller's
/// temporaries.
template <typename Value>
using Task = boost::asio::awaitable<Value>;

}  // namespace kivo::platform
