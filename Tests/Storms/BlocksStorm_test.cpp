// Work that is done in blocks on several threads: made ahead, ended early, failing anywhere.

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "BWF/BlocksAhead.h"
#include "Base/PagesAhead.h"
#include "Program/BlockOutput.h"
#include "Program/WorkBlocks.h"
#include "Storms/Storm.h"
#include "Support/TemporaryFolder.h"

namespace velmora {
namespace {

using test::Dice;

class BlocksStorm : public testing::Test {
 protected:
  void SetUp() override {
    if (std::thread::hardware_concurrency() < 2) GTEST_SKIP() << "needs a second processor";
  }
};

/// Blocks come in order up to the first that cannot be made, and may be given up anywhere.
void TakeBlocks(Dice& dice) {
  const auto blocks = static_cast<std::size_t>(dice.Between(4, 40));
  const auto bad = static_cast<std::size_t>(dice.Between(0, 60));
  const auto wanted = static_cast<std::size_t>(dice.Between(0, 40));
  const std::size_t bytes = sizeof(std::size_t) * 100;
  Dice makers(dice.Seed());
  std::atomic<bool> gone = false;
  std::atomic<int> late = 0;
  {
    const auto ahead = BlocksAhead::Start(blocks, bytes, [&](std::size_t n, std::uint8_t* block) {
      if (gone) ++late;
      makers.Dawdle();
      for (std::size_t i = 0; i < 100; ++i) {
        std::memcpy(block + i * sizeof n, &n, sizeof n);
      }
      return n != bad;
    });
    ASSERT_NE(ahead, nullptr);
    for (std::size_t i = 0; i < std::min(blocks, wanted); ++i) {
      const std::uint8_t* const block = ahead->Next();
      ASSERT_EQ(block == nullptr, i == bad) << i;
      if (block == nullptr) break;
      dice.Dawdle();
      for (std::size_t at = 0; at < 100; ++at) {
        std::size_t number = 0;
        std::memcpy(&number, block + at * sizeof number, sizeof number);
        ASSERT_EQ(number, i);
      }
    }
  }
  gone = true;
  EXPECT_EQ(late, 0);
}

TEST_F(BlocksStorm, blocksAheadComeInOrder) {
  test::RunStorm(TakeBlocks);
}

TEST_F(BlocksStorm, eachBlockIsWorkedOnceOrTheFirstTroubleIsTold) {
  test::RunStorm([](Dice& dice) {
    const auto count = static_cast<std::size_t>(dice.Between(0, 200));
    const auto perBlock = static_cast<std::size_t>(dice.Between(1, 20));
    const auto bad = static_cast<std::size_t>(dice.Between(0, 400));
    const bool slow = dice.OneIn(3);
    std::vector<int> done(count);  // no atomics: each place belongs to one block
    bool thrown = false;
    try {
      program::WorkInBlocks(count, perBlock, [&](std::size_t begin, std::size_t end) {
        if (slow) test::GiveWay();
        for (std::size_t i = begin; i < end; ++i) {
          if (i == bad) throw std::runtime_error("bad");
          ++done[i];
        }
      });
    } catch (const std::runtime_error&) {
      thrown = true;
    }
    EXPECT_EQ(thrown, bad < count);
    for (const int times : done) {
      if (!thrown) {
        EXPECT_EQ(times, 1);
      }
      EXPECT_LE(times, 1);
    }
  });
}

TEST_F(BlocksStorm, outputIsInOrderOrItsFailureIsTold) {
  const test::TemporaryFolder folder;
  test::RunStorm([&](Dice& dice) {
    const std::string path = folder.Write("out", "");
    const bool full = dice.OneIn(5) && ::access("/dev/full", W_OK) == 0;
    const int descriptor = ::open(full ? "/dev/full" : path.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(descriptor, 0);
    std::string expected;
    {
      program::BlockOutput out(descriptor);
      for (int tables = dice.Between(1, 3); tables > 0; --tables) {
        out << "table ";
        expected += "table ";
        const auto count = static_cast<std::size_t>(dice.Between(0, 600));
        const auto perBlock = static_cast<std::size_t>(dice.Between(1, 50));
        out.InBlocks(count, perBlock,
                     [](program::CharBuffer& text, std::size_t begin, std::size_t end) {
                       for (std::size_t i = begin; i < end; ++i) {
                         text.Append(std::to_string(i));
                         text.AppendBlanks(i % 40);
                       }
                     });
        for (std::size_t i = 0; i < count; ++i) {
          expected += std::to_string(i) + std::string(i % 40, ' ');
        }
      }
      EXPECT_EQ(out.Finish(), !full);
    }
    ::close(descriptor);
    if (!full) {
      EXPECT_TRUE(test::TemporaryFolder::Read(path) == expected);
    }
  });
}

/// One stretch of memory for all rounds, given back now and then: else the system would do nothing
/// but zero pages.
class Stretch {
 public:
  explicit Stretch(std::size_t bytes)
      : bytes_(bytes),
        begin_(static_cast<char*>(::mmap(nullptr, bytes, PROT_READ | PROT_WRITE,
                                         MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0))) {}
  ~Stretch() { ::munmap(begin_, bytes_); }
  Stretch(const Stretch&) = delete;
  Stretch& operator=(const Stretch&) = delete;

  char* Begin() const { return begin_; }
  void GiveBack() const { ::madvise(begin_, bytes_, MADV_DONTNEED); }

 private:
  std::size_t bytes_;
  char* begin_;
};

TEST_F(BlocksStorm, memoryThatIsBackedHoldsWhatIsWritten) {
  constexpr int kMegabyte = 1 << 20;
  constexpr std::size_t kAll = std::size_t{100} * kMegabyte;
  constexpr std::size_t kStep = 64 * 1024;
  const Stretch memory(kAll);
  ASSERT_NE(static_cast<void*>(memory.Begin()), MAP_FAILED);
  test::RunStorm([&](Dice& dice) {
    if (dice.OneIn(50)) memory.GiveBack();
    PagesAhead pages;
    for (int starts = dice.Between(1, 2); starts > 0; --starts) {
      const auto skipped = static_cast<std::size_t>(dice.Throw(4 * kMegabyte));
      const std::size_t size =
          kAll - skipped - static_cast<std::size_t>(dice.Throw(40)) * kMegabyte;
      char* const begin = memory.Begin() + skipped;
      const auto filled = static_cast<std::size_t>(dice.Throw(24)) * kMegabyte / 2;
      const char mark = static_cast<char>(dice.Throw(100));
      pages.Start(begin, size);
      for (std::size_t at = 0; at < filled; at += kStep) {
        begin[at] = mark;
        pages.Filled(at);
        if (at % (32 * kStep) == 0) dice.Dawdle();
      }
      for (std::size_t at = 0; at < filled; at += kStep) ASSERT_EQ(begin[at], mark);
      if (dice.OneIn(2)) pages.Stop();  // else the next start, or the end, does it
    }
  });
}

}  // namespace
}  // namespace velmora
