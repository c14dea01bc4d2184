#include "plugin_rng/thread_supply.h"

#include <atomic>
#include <limits>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace plugin_rng {
namespace {

// Starts `count` threads that live at the same time, and ends them.
bool startTogether(std::size_t count) {
  std::mutex gate;
  std::vector<std::jthread> threads;
  const std::unique_lock closed(gate);  // opens before the threads are waited for
  try {
    threads.reserve(count);
    while (threads.size() < count)
      threads.emplace_back([&gate] { const std::lock_guard passing(gate); });
    return true;
  } catch (std::system_error const&) {
    return false;
  }
}

}  // namespace

bool canHaveThreads(std::size_t count) {
  static std::atomic<std::size_t> most = 0;  // that were to be had
  static std::atomic<std::size_t> refused = std::numeric_limits<std::size_t>::max();
  if (count <= most) return true;
  if (count >= refused) return false;
  const bool had = startTogether(2 * count);
  (had ? most : refused) = count;
  return had;
}

}  // namespace plugin_rng
