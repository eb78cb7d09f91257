// The platform's asynchronous operation.
#pragma once

#include <boost/asio/awaitable.hpp>

namespace kivo::platform {

/// An asynchronous operation that returns a `Value`. Await it once, with co_await. It suspends
/// without blocking a thread and resumes on any worker of its executor.
///
/// Cancelling a task cancels the network exchange that it waits for, and nothing else: the task
/// continues. Coroutines take their arguments by value, since they may outlive the caller's
/// temporaries.
template <typename Value>
using Task = boost::asio::awaitable<Value>;

}  // namespace kivo::platform
