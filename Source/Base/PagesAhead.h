#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>

#include "Base/HelperThread.h"

namespace velmora {

/// Has the system back fresh memory in a thread of its own, some way before it is filled. The
/// system zeroes each page when it is touched first, and of a large array that is a third of the
/// time that filling it takes, on a virtual machine more: where a second processor is idle, that
/// time goes.
///
/// Nothing is written to the memory, so that it may be filled at the same time. A hint, as
/// AdviseLargePages is: where it cannot be had nothing happens.
class PagesAhead {
 public:
  PagesAhead() = default;
  ~PagesAhead() { Stop(); }
  PagesAhead(const PagesAhead&) = delete;
  PagesAhead& operator=(const PagesAhead&) = delete;

  /// For memory that will be filled from `begin` on, and is not freed before Stop. Below some
  /// megabytes nothing is done. Ends what was begun before.
  void Start(void* begin, std::size_t size);
  /// So many bytes have been filled. Memory is backed no more than some megabytes further, since
  /// the rest may stay unused.
  void Filled(std::size_t bytes) {
    if (thread_.IsRunning() && bytes >= nextWord_) Tell(bytes);
  }
  void Stop();

 private:
  void Tell(std::size_t bytes);
  void BackAll(char* begin, std::size_t size);
  [[nodiscard]] bool WaitFor(std::size_t place);

  std::size_t nextWord_ = 0;  ///< the thread is told no sooner

  std::mutex mutex_;  ///< for what follows
  std::condition_variable changed_;
  std::size_t filled_ = 0;
  bool stopped_ = false;

  HelperThread thread_;  ///< last: it uses all of the above
};

}  // namespace velmora
