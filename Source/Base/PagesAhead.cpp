#include "Base/PagesAhead.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <system_error>
#include <thread>

namespace velmora {
namespace {

constexpr std::size_t kLargePage = std::size_t{2} << 20;
/// With less memory to back, the wait for the thread at its end can cost more than it buys.
constexpr std::size_t kLeast = 8 * kLargePage;
constexpr std::size_t kAhead = 4 * kLargePage;

/// Makes the system back whole pages. False if it does not.
bool Back([[maybe_unused]] char* begin, [[maybe_unused]] std::size_t size) {
#if defined(MADV_POPULATE_WRITE)
  return madvise(begin, size, MADV_POPULATE_WRITE) == 0;
#else
  return false;
#endif
}

}  // namespace

void PagesAhead::Start(void* begin, std::size_t size) {
  Stop();
  if (size < kLeast || std::thread::hardware_concurrency() < 2) return;
  nextWord_ = kLargePage;
  filled_ = 0;
  stopped_ = false;
  try {
    thread_ = HelperThread([this, begin, size] { BackAll(static_cast<char*>(begin), size); });
  } catch (
      const std::system_error&) {  // no thread is to be had: the memory is backed as it is used
  }
}

void PagesAhead::Stop() {
  if (!thread_.IsRunning()) return;
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_one();
  thread_.Join();
}

void PagesAhead::Tell(std::size_t bytes) {
  nextWord_ = bytes + kLargePage;
  {
    const std::lock_guard lock(mutex_);
    filled_ = bytes;
  }
  changed_.notify_one();
}

/// Large page by large page, as the addresses have them. What is no whole one at either end is left
/// to whoever fills it.
void PagesAhead::BackAll(char* begin, std::size_t size) {
  const auto address = reinterpret_cast<std::uintptr_t>(begin);
  for (std::size_t place = (kLargePage - address % kLargePage) % kLargePage;
       place + kLargePage <= size; place += kLargePage) {
    if (!WaitFor(place) || !Back(begin + place, kLargePage)) return;
  }
}

/// False if the thread is to end.
bool PagesAhead::WaitFor(std::size_t place) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this, place] { return stopped_ || place < filled_ + kAhead; });
  return !stopped_;
}

}  // namespace velmora
