#pragma once

#include <atomic>
#include <mutex>

namespace velmora::media {

/// Work that the first of several threads to need it does, while the others wait.
///
/// Unlike std::once_flag it may be left by an exception (no memory): nothing is done then, and the
/// next thread that needs the work tries again. std::call_once sends the exception through the C
/// library, which loads libgcc_s.so.1 to let it pass, and ends the program if there is no memory
/// for that.
class Once {
 public:
  template <typename Work>
  void Do(const Work& work) {
    if (isDone_.load(std::memory_order_acquire)) return;
    const std::lock_guard lock(mutex_);
    if (isDone_.load(std::memory_order_relaxed)) return;
    work();
    isDone_.store(true, std::memory_order_release);
  }

 private:
  std::mutex mutex_;
  std::atomic<bool> isDone_ = false;
};

}  // namespace velmora::media
