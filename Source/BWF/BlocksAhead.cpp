#include "BWF/BlocksAhead.h"

#include <exception>
#include <new>
#include <thread>
#include <utility>

namespace velmora {
namespace {

/// With fewer blocks, starting the thread takes a good part of what it saves.
constexpr std::size_t kFewestBlocks = 4;

}  // namespace

std::unique_ptr<BlocksAhead> BlocksAhead::Start(std::size_t blocks, std::size_t blockBytes,
                                                Make make) {
  if (blocks < kFewestBlocks || std::thread::hardware_concurrency() < 2) return nullptr;
  try {
    std::unique_ptr<BlocksAhead> ahead(new BlocksAhead(blocks, std::move(make)));
    for (Memory& block : ahead->held_) {
      block.reset(new (std::nothrow) std::uint8_t[blockBytes]);
      if (block == nullptr) return nullptr;
    }
    ahead->maker_ = HelperThread([&running = *ahead] { running.MakeAll(); });
    return ahead;
  } catch (const std::exception&) {  // no memory, or no further thread
    return nullptr;
  }
}

BlocksAhead::~BlocksAhead() {
  {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
  }
  changed_.notify_all();
  maker_.Join();
}

void BlocksAhead::MakeAll() {
  for (std::size_t number = 0; number < blocks_; ++number) {
    if (!WaitForRoom(number)) return;
    const bool made = make_(number, BlockOf(number));
    {
      const std::lock_guard lock(mutex_);
      if (made) ++made_;
      failed_ = !made;
    }
    changed_.notify_all();
    if (!made) return;
  }
}

bool BlocksAhead::WaitForRoom(std::size_t number) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return stopped_ || number < done_ + kHeld; });
  return !stopped_;
}

const std::uint8_t* BlocksAhead::Next() {
  std::unique_lock lock(mutex_);
  done_ = next_;
  changed_.notify_all();
  changed_.wait(lock, [&] { return failed_ || made_ > next_; });
  return made_ > next_ ? BlockOf(next_++) : nullptr;
}

}  // namespace velmora
