#include "Program/WorkBlocks.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "Base/HelperThread.h"

namespace velmora::program {
namespace {

/// The blocks that are not begun yet, and what went wrong in one.
class Blocks {
 public:
  Blocks(std::size_t count, std::size_t perBlock,
         const std::function<void(std::size_t, std::size_t)>& work)
      : count_(count), perBlock_(perBlock), work_(work) {}

  /// Works until no block is left.
  void Work() noexcept {
    try {
      for (;;) {
        const std::size_t begin = next_.fetch_add(perBlock_, std::memory_order_relaxed);
        if (begin >= count_) return;
        work_(begin, std::min(count_, begin + perBlock_));
      }
    } catch (...) {
      next_ = count_;
      const std::lock_guard lock(mutex_);
      if (!trouble_) trouble_ = std::current_exception();
    }
  }

  void Rethrow() const {
    if (trouble_) std::rethrow_exception(trouble_);
  }

 private:
  const std::size_t count_;
  const std::size_t perBlock_;
  const std::function<void(std::size_t, std::size_t)>& work_;
  std::atomic<std::size_t> next_ = 0;
  std::mutex mutex_;
  std::exception_ptr trouble_;
};

}  // namespace

std::size_t WorkersFor(std::size_t blocks) {
  // The pages of a file and a pipe take no more than a few threads can format.
  constexpr unsigned kMost = 8;
  const std::size_t processors = std::clamp(std::thread::hardware_concurrency(), 1u, kMost);
  return std::max<std::size_t>(1, std::min(processors, blocks));
}

void WorkInBlocks(std::size_t count, std::size_t perBlock,
                  const std::function<void(std::size_t begin, std::size_t end)>& work) {
  if (count == 0) return;
  Blocks blocks(count, perBlock, work);
  std::vector<HelperThread> helpers;
  const std::size_t workers = WorkersFor((count + perBlock - 1) / perBlock);
  helpers.reserve(workers - 1);
  try {
    while (helpers.size() + 1 < workers) helpers.emplace_back([&blocks] { blocks.Work(); });
  } catch (const std::system_error&) {
    // No further thread is to be had: those there are do the work.
  }
  blocks.Work();
  for (HelperThread& helper : helpers) helper.Join();
  blocks.Rethrow();
}

}  // namespace velmora::program
