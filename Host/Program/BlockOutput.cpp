#include "Program/BlockOutput.h"

#include <poll.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "Program/WorkBlocks.h"

namespace velmora::program {
namespace {

constexpr std::size_t kWriteFrom = std::size_t{1} << 16;
/// What the texts of a block take, and some more: memory that is not touched costs nothing.
constexpr std::size_t kBlockRoom = std::size_t{1} << 19;

/// Blocks that are being formatted, or wait for those before them to be written. There are two for
/// each worker, so that none waits for another's write unless it is far ahead.
class BlocksInOrder {
 public:
  /// `texts` are empty, and at least two for each worker.
  explicit BlocksInOrder(std::deque<CharBuffer>& texts) : slots_(texts.size()) {
    for (std::size_t i = 0; i < slots_.size(); ++i) slots_[i].text = &texts[i];
  }

  /// The empty text for a block, as soon as there is one; null when nothing more is wanted.
  CharBuffer* TextFor(std::size_t block) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return stopped_ || block < written_ + slots_.size(); });
    return stopped_ ? nullptr : SlotOf(block).text;
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
      const bool goesOn = write(slot.text->Text());
      slot.text->Clear();
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
    CharBuffer* text = nullptr;
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
  while (blockTexts_.size() < 2 * WorkersFor(blockCount)) blockTexts_.emplace_back(kBlockRoom);
  for (CharBuffer& text : blockTexts_) text.Clear();  // what a failed write has left
  BlocksInOrder blocks(blockTexts_);
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

/// Writes whole pages and keeps what is left over. A system that is given the end of a page in one
/// call and its beginning in another looks it up twice, and cannot put it into a larger one: 85 MB
/// take 25 ms of the system's time in pieces of any size, and 19 ms in these.
void BlockOutput::Write(std::string_view text) {
  constexpr std::size_t kPage = 4096;
  const std::size_t pages = (begun_.Size() + text.size()) / kPage * kPage;
  if (pages > 0) {
    const std::size_t taken = pages - begun_.Size();
    WriteBoth(begun_.Text(), text.substr(0, taken));
    begun_.Clear();
    text.remove_prefix(taken);
  }
  begun_.Append(text);
}

void BlockOutput::WriteBoth(std::string_view first, std::string_view second) {
  while (!failed_ && !(first.empty() && second.empty())) {
    // The call takes no pointer to what is constant, though it does not write there.
    const std::array<iovec, 2> parts = {{{const_cast<char*>(first.data()), first.size()},
                                         {const_cast<char*>(second.data()), second.size()}}};
    const ssize_t result = ::writev(descriptor_, parts.data(), parts.size());
    if (result > 0) {
      const auto written = static_cast<std::size_t>(result);
      const std::size_t ofFirst = std::min(written, first.size());
      first.remove_prefix(ofFirst);
      second.remove_prefix(written - ofFirst);
    } else if (result < 0 && errno == EAGAIN) {  // a pipe that its reader does not wait for
      pollfd ready{descriptor_, POLLOUT, 0};
      ::poll(&ready, 1, -1);
    } else if (result == 0 || errno != EINTR) {
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
  WriteBoth(begun_.Text(), {});
  begun_.Clear();
  return !failed_;
}

}  // namespace velmora::program
