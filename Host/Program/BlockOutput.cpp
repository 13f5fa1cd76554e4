#include "Program/BlockOutput.h"

#include <poll.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "Program/WorkBlocks.h"

namespace velmora::program {
namespace {

constexpr std::size_t kWriteFrom = std::size_t{1} << 16;

/// Blocks that are being formatted, or wait for those before them to be written. There are two for
/// each worker, so that none waits for another's write unless it is far ahead.
class BlocksInOrder {
 public:
  explicit BlocksInOrder(std::size_t workers) : slots_(2 * workers) {}

  /// The empty text for a block, as soon as there is one; null when nothing more is wanted.
  CharBuffer* TextFor(std::size_t block) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return stopped_ || block < written_ + slots_.size(); });
    return stopped_ ? nullptr : &SlotOf(block).text;
  }

  /// Takes a block's text. Whoever hands over the block that is next writes it, and those after it
  /// that are ready: `write` is never called twice at a time.
  template <class Write>
  void HandOver(std::size_t block, const Write& write) {
    std::unique_lock lock(mutex_);
    SlotOf(block).isReady = true;
    if (isWriting_) return;
    isWriting_ = true;
    while (!stopped_ && SlotOf(written_).isReady) {
      Slot& slot = SlotOf(written_);
      lock.unlock();
      const bool goesOn = write(slot.text.Text());
      slot.text.Clear();
      lock.lock();
      slot.isReady = false;
      ++written_;
      stopped_ = stopped_ || !goesOn;
      changed_.notify_all();
    }
    isWriting_ = false;
  }

  void Stop() {
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    changed_.notify_all();
  }

 private:
  struct Slot {
    CharBuffer text;
    bool isReady = false;
  };
  Slot& SlotOf(std::size_t block) { return slots_[block % slots_.size()]; }

  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<Slot> slots_;
  std::size_t written_ = 0;  ///< blocks that are
  bool isWriting_ = false;
  bool stopped_ = false;
};

}  // namespace

void BlockOutput::InBlocks(
    std::size_t count, std::size_t perBlock,
    const std::function<void(CharBuffer& text, std::size_t begin, std::size_t end)>& format) {
  if (failed_) {
    text_.Clear();  // or the words between the blocks would gather
    return;
  }
  if (count <= perBlock) {
    if (count > 0) format(text_, 0, count);
    if (text_.Size() >= kWriteFrom) WriteText();
    return;
  }
  WriteText();
  const std::size_t blockCount = (count - 1) / perBlock + 1;
  BlocksInOrder blocks(WorkersFor(blockCount));
  WorkInBlocks(count, perBlock, [&](std::size_t begin, std::size_t end) {
    const std::size_t block = begin / perBlock;
    CharBuffer* const text = blocks.TextFor(block);
    if (text == nullptr) return;
    try {
      format(*text, begin, end);
    } catch (...) {
      blocks.Stop();  // or others would wait for this block for ever
      throw;
    }
    blocks.HandOver(block, [this](std::string_view ready) {
      Write(ready);
      return !failed_;
    });
  });
}

void BlockOutput::Write(std::string_view text) {
  while (!failed_ && !text.empty()) {
    const ssize_t written = ::write(descriptor_, text.data(), text.size());
    if (written > 0) {
      text.remove_prefix(static_cast<std::size_t>(written));
    } else if (written < 0 && errno == EAGAIN) {  // a pipe that its reader does not wait for
      pollfd ready{descriptor_, POLLOUT, 0};
      ::poll(&ready, 1, -1);
    } else if (written == 0 || errno != EINTR) {
      failed_ = true;
    }
  }
}

void BlockOutput::WriteText() {
  Write(text_.Text());
  text_.Clear();
}

bool BlockOutput::Finish() {
  WriteText();
  return !failed_;
}

}  // namespace velmora::program
