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
constexpr std::size_t kBlockRoom = std::size_t{1} << 20;

/// What is written at once, as far as there is so much: whole stretches of the file.
constexpr std::size_t kStretch = std::size_t{1} << 18;

/// Texts for so many workers: two for each, so that none waits for another's write unless it is far
/// ahead, and one of which the end is not written yet.
std::size_t TextsFor(std::size_t workers) {
  return 2 * workers + 1;
}

/// Blocks that are being formatted, or wait for those before them to be written.
class BlocksInOrder {
 public:
  /// @param texts TextsFor the workers
  explicit BlocksInOrder(std::deque<CharBuffer>& texts) : slots_(texts.size()) {
    for (std::size_t i = 0; i < slots_.size(); ++i) slots_[i].text = &texts[i];
  }

  /// The empty text for a block, as soon as there is one; null when nothing more is wanted.
  CharBuffer* TextFor(std::size_t block) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return stopped_ || block < freed_ + slots_.size(); });
    if (stopped_) return nullptr;
    CharBuffer* const text = SlotOf(block).text;
    text->Clear();
    return text;
  }

  /// Takes a block's text. Whoever hands over the block that is next writes it, and those after it
  /// that are ready: `write` is never called twice at a time. A text stays as it is until the one
  /// after it has been written.
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
      lock.lock();
      slot.isReady = false;
      freed_ = written_++;
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
  std::size_t freed_ = 0;    ///< blocks whose texts may be used anew
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
  const std::size_t texts = TextsFor(WorkersFor(blockCount));
  while (blockTexts_.size() < texts) blockTexts_.emplace_back(kBlockRoom);
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

/// Writes whole stretches and remembers what is left over, which has to stay where it is. Pages of
/// a file that are written together are kept together by the system: 85 MB take 60 ms of its time
/// page by page, 21 in pieces of some 80 KiB and 14 in these.
void BlockOutput::Write(std::string_view text) {
  const std::size_t kept = begun_.Size() + rest_.size();
  const std::size_t whole = (kept + text.size()) / kStretch * kStretch;
  if (whole == 0) {
    KeepRest();
    rest_ = text;
    return;
  }
  const std::size_t taken = whole - kept;  // there is never a whole stretch in what was kept
  WriteAll({begun_.Text(), rest_, text.substr(0, taken)});
  begun_.Clear();
  rest_ = text.substr(taken);
}

/// Makes what is remembered independent of the text that it stands in.
void BlockOutput::KeepRest() {
  begun_.Append(rest_);
  rest_ = {};
}

void BlockOutput::WriteAll(std::array<std::string_view, 3> texts) {
  while (!failed_) {
    std::array<iovec, 3> parts{};
    std::size_t size = 0;
    for (std::size_t i = 0; i < texts.size(); ++i) {
      // The call takes no pointer to what is constant, though it does not write there.
      parts[i] = {const_cast<char*>(texts[i].data()), texts[i].size()};
      size += texts[i].size();
    }
    if (size == 0) return;
    room_.Book(size);
    const ssize_t result = ::writev(descriptor_, parts.data(), static_cast<int>(parts.size()));
    if (result > 0) {
      auto written = static_cast<std::size_t>(result);
      for (std::string_view& text : texts) {
        const std::size_t ofText = std::min(written, text.size());
        text.remove_prefix(ofText);
        written -= ofText;
      }
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
  KeepRest();
  text_.Clear();
}

bool BlockOutput::Finish() {
  WriteText();
  WriteAll({begun_.Text()});
  begun_.Clear();
  return !failed_;
}

}  // namespace velmora::program
