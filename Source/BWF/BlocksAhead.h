#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include "Base/HelperThread.h"

namespace velmora {

/// Blocks of a file that are made in a thread of their own, some before they are taken: one
/// processor reads and converts while the other writes. Where a second one is idle, that takes 0.6
/// of the time by the clock, for a tenth more of processor time.
///
/// The blocks come in order, each once, just as they would without the thread. Everything but
/// `make` is for one thread.
class BlocksAhead {
 public:
  /// Makes block `number` (from 0) at `block`. Runs in the other thread, one call at a time.
  /// @return false if it cannot: no further block is made
  using Make = std::function<bool(std::size_t number, std::uint8_t* block)>;

  /// Null where it cannot pay or cannot be had: with one processor, few blocks or without memory.
  [[nodiscard]] static std::unique_ptr<BlocksAhead> Start(std::size_t blocks,
                                                          std::size_t blockBytes, Make make);
  /// Ends the thread, also before all blocks have been made. What `make` uses is free then.
  ~BlocksAhead();
  BlocksAhead(const BlocksAhead&) = delete;
  BlocksAhead& operator=(const BlocksAhead&) = delete;

  /// The next block, valid until the next call; null if it could not be made. To be called no more
  /// often than there are blocks.
  [[nodiscard]] const std::uint8_t* Next();

 private:
  using Memory = std::unique_ptr<std::uint8_t[]>;
  /// One that is written, one that is ready and one that is made.
  static constexpr std::size_t kHeld = 3;

  BlocksAhead(std::size_t blocks, Make make) : blocks_(blocks), make_(std::move(make)) {}

  [[nodiscard]] std::uint8_t* BlockOf(std::size_t number) { return held_[number % kHeld].get(); }
  void MakeAll();
  /// Waits for memory for a block. False if the thread is to end.
  [[nodiscard]] bool WaitForRoom(std::size_t number);

  const std::size_t blocks_;
  const Make make_;
  std::array<Memory, kHeld> held_;
  std::size_t next_ = 0;  ///< the block that Next gives next

  std::mutex mutex_;  ///< for what follows
  std::condition_variable changed_;
  std::size_t made_ = 0;
  std::size_t done_ = 0;  ///< blocks whose memory is free again
  bool failed_ = false;
  bool stopped_ = false;

  HelperThread maker_;  ///< last: it uses all of the above
};

}  // namespace velmora
